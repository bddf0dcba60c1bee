// Directory: the entries of one directory, one after another.
// InputFile: a file of it, or of any other, that is open for reading.
//
//     Directory directory("/opt/boards");
//     DirectoryEntry entry;
//     while (directory.Next(entry))
//         if (entry.IsFile && InputFile file(directory, entry.Name); file.IsOpen()) ...
//
// The order is the platform's. Delivered is what exists, "." and ".." where the
// platform has them, pipes and devices too. Links to directories are passed over, since a
// walk down the tree could go round in circles.
//
// A directory can hold thousands of files on a slow disk. So a port takes the type of an
// entry from the enumeration where that tells it, opens each file once, without waiting
// and by its name alone, and does not ask again: what is no file any more delivers nothing.

#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>

struct DirectoryEntry {
    std::string Name; // without the directory
    bool IsDirectory = false;
    bool IsFile = false; // a regular file, or a link to one
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
    friend class InputFile;
    struct Handle;
    std::unique_ptr<Handle> m_Handle;
};

/// A file that is open for reading, in binary mode and without a buffer. Only regular
/// files count, and links to such: a directory is no file, and neither is a pipe or a
/// device, at which a reader could wait for ever.
class InputFile {
public:
    /// Opens the file at `path`. See IsOpen.
    explicit InputFile(const char* path);

    /// Opens the file `name` of `directory`. REQUIRES: the directory is open, and delivered
    /// an entry of that name that is a file. What has taken its place since then reads as empty.
    InputFile(const Directory& directory, const std::string& name);

    ~InputFile();
    InputFile(const InputFile&) = delete;
    InputFile& operator=(const InputFile&) = delete;

    /// False if there is no such file, or it may not be read.
    bool IsOpen() const { return m_Handle != kNone; }

    /// Reads on, at most `size` bytes. Returns how many were read; 0 at the end of the file,
    /// after an error, and if it is not open.
    size_t Read(char* buffer, size_t size);

private:
    static constexpr intptr_t kNone = -1;

    intptr_t m_Handle = kNone; // the platform's own
    uint64_t m_Place = 0;      // of the next byte, where the platform doesn't keep it
};
