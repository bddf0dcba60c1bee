#include "platform/directory.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>

struct Directory::Handle {
    explicit Handle(const char* path) : Stream(opendir(path)) {}
    ~Handle() {
        if (Stream) closedir(Stream);
    }

    DIR* const Stream;
};

Directory::Directory(const std::string& path) {
    auto handle = std::make_unique<Handle>(path.c_str());
    if (handle->Stream) m_Handle = std::move(handle);
}

Directory::~Directory() = default;

bool Directory::Next(DirectoryEntry& entry) {
    if (!m_Handle) return false;
    const int directory = dirfd(m_Handle->Stream);
    while (const dirent* const found = readdir(m_Handle->Stream)) {
        struct stat status;
        if (fstatat(directory, found->d_name, &status, AT_SYMLINK_NOFOLLOW) != 0) continue;
        const bool isDirectory = S_ISDIR(status.st_mode);
        if (S_ISLNK(status.st_mode) && fstatat(directory, found->d_name, &status, 0) != 0) continue;
        if (!isDirectory && S_ISDIR(status.st_mode)) continue;
        entry.Name = found->d_name;
        entry.IsDirectory = isDirectory;
        return true;
    }
    return false;
}
