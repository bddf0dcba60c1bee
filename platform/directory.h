// Directory: the entries of one directory, one after another.
//
//     Directory directory("/opt/boards");
//     DirectoryEntry entry;
//     while (directory.Next(entry)) ...
//
// The order is the platform's. Delivered are regular files, links to such, and
// real directories, "." and ".." among them where the platform has them. Pipes and devices are
// passed over, since opening one could wait for ever; so are links to
// directories, since a walk down the tree could go round in circles.

#pragma once

#include <memory>
#include <string>

struct DirectoryEntry {
    std::string Name; // without the directory
    bool IsDirectory = false;
};

class Directory {
public:
    /// Opens the directory at `path`. See IsOpen.
    explicit Directory(const std::string& path);
    ~Directory();
    Directory(const Directory&) = delete;
    Directory& operator=(const Directory&) = delete;

    /// False if there is no such directory, or it may not be read.
    bool IsOpen() const { return m_Handle != nullptr; }

    /// Stores the next entry. Returns false behind the last one.
    bool Next(DirectoryEntry& entry);

private:
    struct Handle;
    std::unique_ptr<Handle> m_Handle;
};
