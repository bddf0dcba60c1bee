#include "platform/directory.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

/// Returns the type of what was found, as stat has it: of a link's target, if `follow`; 0
/// if there is none.
mode_t TypeOf(int directory, const dirent& found, bool follow) {
    // Some file systems leave the type out.
    if (found.d_type != DT_UNKNOWN && !(follow && found.d_type == DT_LNK))
        return DTTOIF(found.d_type);
    struct stat status;
    const int flags = follow ? 0 : AT_SYMLINK_NOFOLLOW;
    return fstatat(directory, found.d_name, &status, flags) == 0 ? status.st_mode & S_IFMT : 0;
}

/// Opens what is said to be a regular file; -1 if that fails.
int OpenAt(int directory, const char* name) {
    // Where a pipe has taken the file's place, an ordinary open would wait for its writer.
    return openat(directory, name, O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC);
}

} // namespace

struct Directory::Handle {
    explicit Handle(const char* path) : Stream(opendir(path)) {}
    ~Handle() {
        if (Stream != nullptr) closedir(Stream);
    }

    DIR* const Stream;
};

Directory::Directory(const std::string& path) {
    auto handle = std::make_unique<Handle>(path.c_str());
    if (handle->Stream != nullptr) m_Handle = std::move(handle);
}

Directory::~Directory() = default;

bool Directory::Next(DirectoryEntry& entry) {
    if (m_Handle == nullptr) return false;
    const int directory = dirfd(m_Handle->Stream);
    while (const dirent* const found = readdir(m_Handle->Stream)) {
        mode_t type = TypeOf(directory, *found, false);
        const bool isDirectory = S_ISDIR(type);
        if (S_ISLNK(type)) type = TypeOf(directory, *found, true);
        if (type == 0 || (!isDirectory && S_ISDIR(type))) continue;
        entry.Name = found->d_name;
        entry.IsDirectory = isDirectory;
        entry.IsFile = S_ISREG(type);
        return true;
    }
    return false;
}

InputFile::InputFile(const char* path) {
    // Nobody has told yet what stands there, and to open a device can set it going.
    struct stat status;
    if (stat(path, &status) == 0 && S_ISREG(status.st_mode)) m_Handle = OpenAt(AT_FDCWD, path);
}

InputFile::InputFile(const Directory& directory, const std::string& name)
    : m_Handle(OpenAt(dirfd(directory.m_Handle->Stream), name.c_str())) {}

InputFile::~InputFile() {
    if (IsOpen()) close(static_cast<int>(m_Handle));
}

size_t InputFile::Read(char* buffer, size_t size) {
    if (!IsOpen()) return 0;
    // A pipe, a socket or a terminal that has taken the file's place since the directory told its
    // type has no places to read from, and refuses: nothing is taken from another reader. So no
    // further call per file has to ask for the type.
    const ssize_t count =
        pread(static_cast<int>(m_Handle), buffer, size, static_cast<off_t>(m_Place));
    if (count <= 0) return 0;
    m_Place += static_cast<uint64_t>(count);
    return static_cast<size_t>(count);
}
