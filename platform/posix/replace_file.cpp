#include "platform/replace_file.h"

#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <string_view>
#include <sys/stat.h>
#include <unistd.h>

#include "platform/paths.h"

namespace {

// More leftovers of dead processes than that are no accident.
constexpr int kMaxTries = 1000;

/// A new file, which goes with the object unless it was renamed.
class NewFile {
public:
    NewFile(const std::string& directory, mode_t mode) {
        const std::string start = JoinPath(directory, ".kvetm-" + std::to_string(getpid()) + "-");
        for (int i = 0; i < kMaxTries && m_Handle < 0; ++i) {
            m_Path = start + std::to_string(i);
            m_Handle = open(m_Path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, mode);
            if (m_Handle < 0 && errno != EEXIST) return;
        }
    }
    ~NewFile() {
        if (m_Handle < 0) return;
        close(m_Handle);
        if (!m_Renamed) unlink(m_Path.c_str());
    }
    NewFile(const NewFile&) = delete;
    NewFile& operator=(const NewFile&) = delete;

    bool IsOpen() const { return m_Handle >= 0; }

    bool SetMode(mode_t mode) const { return fchmod(m_Handle, mode) == 0; }

    bool Write(std::string_view bytes) const {
        while (!bytes.empty()) {
            const ssize_t written = write(m_Handle, bytes.data(), bytes.size());
            if (written < 0 && errno == EINTR) continue;
            if (written <= 0) return false;
            bytes.remove_prefix(static_cast<size_t>(written));
        }
        return fsync(m_Handle) == 0 || errno == EINVAL; // EINVAL: nothing there to flush to
    }

    bool Rename(const std::string& path) {
        m_Renamed = rename(m_Path.c_str(), path.c_str()) == 0;
        return m_Renamed;
    }

private:
    std::string m_Path;
    int m_Handle = -1;
    bool m_Renamed = false;
};

/// Makes a rename in `directory` last. The new content is there whether that works or not.
void FlushDirectory(const std::string& directory) {
    const int handle = open(directory.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (handle < 0) return;
    fsync(handle);
    close(handle);
}

} // namespace

bool ReplaceFileContent(const std::string& path, const std::string& bytes) {
    std::string directory = DirectoryOf(path);
    if (directory.empty()) directory = ".";
    struct stat old {};
    const bool replaces = lstat(path.c_str(), &old) == 0;
    if (replaces && (!S_ISREG(old.st_mode) || access(path.c_str(), W_OK) != 0)) return false;

    // Never open to more people than the old file was, and else left to the process' mask.
    NewFile file(directory, replaces ? old.st_mode & 0600 : 0666);
    if (!file.IsOpen() || (replaces && !file.SetMode(old.st_mode & 07777))) return false;
    if (!file.Write(bytes) || !file.Rename(path)) return false;
    FlushDirectory(directory);
    return true;
}
