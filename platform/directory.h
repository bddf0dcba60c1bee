// Directory: the entries of one directory, one after another.
//
//     Directory directory("/opt/boards");
//     DirectoryEntry entry;
//     while (directory.Next(entry)) ...
//
// The order is the platform's. Delivered is what exists, "." and ".." where the
// platform has them, pipes and devices too: whoever opens an entry looks whether it is a
// file. Links to directories are passed over, since a walk down the tree could go
// round in circles.

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
