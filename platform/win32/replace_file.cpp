#include "platform/replace_file.h"

#include <utility>
#include <windows.h>

#include "platform/paths.h"

namespace {

// More leftovers of dead processes than that are no accident.
constexpr unsigned kMaxTries = 1000;

constexpr DWORD kNoFile = FILE_ATTRIBUTE_DIRECTORY | FILE_ATTRIBUTE_DEVICE |
                          FILE_ATTRIBUTE_REPARSE_POINT | FILE_ATTRIBUTE_READONLY;
constexpr DWORD kTakenOver = FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_SYSTEM |
                             FILE_ATTRIBUTE_ARCHIVE | FILE_ATTRIBUTE_NOT_CONTENT_INDEXED;

/// "~" and three digits of base 36: no longer than the shortest name of a board file, so
/// that it fits wherever that does.
std::string ShortName(unsigned number) {
    std::string name = "~000";
    for (size_t i = name.size() - 1; i > 0; --i, number /= 36)
        name[i] = "0123456789abcdefghijklmnopqrstuvwxyz"[number % 36];
    return name;
}

/// A new file, which goes with the object unless it was renamed.
class NewFile {
public:
    NewFile(const std::string& directory, DWORD attributes) {
        const unsigned first = GetCurrentProcessId() * kMaxTries;
        for (unsigned i = 0; i < kMaxTries && !IsOpen(); ++i) {
            m_Path = JoinPath(directory, ShortName(first + i));
            m_Handle = CreateFileA(m_Path.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_NEW,
                                   attributes, nullptr);
            if (!IsOpen() && GetLastError() != ERROR_FILE_EXISTS) return;
        }
        m_Made = IsOpen();
    }
    ~NewFile() {
        Close();
        if (m_Made && !m_Renamed) DeleteFileA(m_Path.c_str());
    }
    NewFile(const NewFile&) = delete;
    NewFile& operator=(const NewFile&) = delete;

    bool IsOpen() const { return m_Handle != INVALID_HANDLE_VALUE; }

    /// Writes the whole of it and closes the file.
    bool Write(const std::string& bytes) {
        DWORD written = 0;
        const auto size = static_cast<DWORD>(bytes.size());
        return WriteFile(m_Handle, bytes.data(), size, &written, nullptr) != 0 && written == size &&
               FlushFileBuffers(m_Handle) != 0 && Close();
    }

    bool Rename(const std::string& path) {
        constexpr DWORD flags = MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH;
        m_Renamed = MoveFileExA(m_Path.c_str(), path.c_str(), flags) != 0;
        return m_Renamed;
    }

private:
    bool Close() {
        return IsOpen() && CloseHandle(std::exchange(m_Handle, INVALID_HANDLE_VALUE)) != 0;
    }

    std::string m_Path;
    HANDLE m_Handle = INVALID_HANDLE_VALUE;
    bool m_Made = false;
    bool m_Renamed = false;
};

} // namespace

bool ReplaceFileContent(const std::string& path, const std::string& bytes) {
    const DWORD old = GetFileAttributesA(path.c_str());
    const bool replaces = old != INVALID_FILE_ATTRIBUTES;
    if (replaces && (old & kNoFile) != 0) return false;
    const DWORD takenOver = replaces ? old & kTakenOver : 0;
    // A path without a directory is one of the current directory.
    const std::string directory = DirectoryOf(path);
    NewFile file(directory.empty() ? "." : directory,
                 takenOver != 0 ? takenOver : FILE_ATTRIBUTE_NORMAL);
    return file.IsOpen() && file.Write(bytes) && file.Rename(path);
}
