#include "platform/directory.h"

#include <windows.h>

#include "platform/paths.h"

namespace {

/// Opens a file of a disk. The call refuses directories by itself.
HANDLE OpenOnDisk(const char* path) {
    const HANDLE file = CreateFileA(path, GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                                    OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
    if (file == INVALID_HANDLE_VALUE || GetFileType(file) == FILE_TYPE_DISK) return file;
    CloseHandle(file);
    return INVALID_HANDLE_VALUE;
}

} // namespace

// The call that opens a directory delivers its first entry too, so one entry is
// always read ahead.
struct Directory::Handle {
    explicit Handle(const std::string& path)
        : Path(path), Search(FindFirstFileA(JoinPath(path, "*").c_str(), &Ahead)) {}
    ~Handle() {
        if (IsValid()) FindClose(Search);
    }
    bool IsValid() const { return Search != INVALID_HANDLE_VALUE; }

    const std::string Path; // no file is opened relative to a directory here
    WIN32_FIND_DATAA Ahead;
    bool HasAhead = true;
    const HANDLE Search;
};

Directory::Directory(const std::string& path) {
    if (path.empty()) return; // what is joined below would be the root
    auto handle = std::make_unique<Handle>(path);
    if (handle->IsValid()) m_Handle = std::move(handle);
}

Directory::~Directory() = default;

bool Directory::Next(DirectoryEntry& entry) {
    while (m_Handle != nullptr && m_Handle->HasAhead) {
        const DWORD attributes = m_Handle->Ahead.dwFileAttributes;
        entry.Name = m_Handle->Ahead.cFileName;
        entry.IsDirectory = (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
        entry.IsFile = !entry.IsDirectory;
        m_Handle->HasAhead = FindNextFileA(m_Handle->Search, &m_Handle->Ahead) != 0;
        if (!entry.IsDirectory || (attributes & FILE_ATTRIBUTE_REPARSE_POINT) == 0) return true;
    }
    return false;
}

InputFile::InputFile(const char* path) : m_Handle(reinterpret_cast<intptr_t>(OpenOnDisk(path))) {}

InputFile::InputFile(const Directory& directory, const std::string& name)
    : InputFile(JoinPath(directory.m_Handle->Path, name).c_str()) {}

InputFile::~InputFile() {
    if (IsOpen()) CloseHandle(reinterpret_cast<HANDLE>(m_Handle));
}

size_t InputFile::Read(char* buffer, size_t size) {
    DWORD count = 0;
    const DWORD most = size < MAXDWORD ? static_cast<DWORD>(size) : MAXDWORD;
    const BOOL read =
        IsOpen() && ReadFile(reinterpret_cast<HANDLE>(m_Handle), buffer, most, &count, nullptr);
    return read ? count : 0;
}
