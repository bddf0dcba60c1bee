// What this host needs of the operating system. posix/ and win32/ each implement all of it.

#pragma once

#include <filesystem>
#include <optional>
#include <string>

#include "host/support/host_error.h"

namespace etmhost {

/// Returns the path of this program's file; empty if the system does not tell.
std::filesystem::path ExecutableFile();

/// The extension of shared libraries, with its point.
const char* LibraryExtension();

/// Turns 8-bit text, as it crosses the interfaces and the command line, into a path, and back.
/// NativePath gives nothing for text that the system's encoding cannot represent.
std::optional<std::filesystem::path> NativePath(const std::string& text);
std::string PathText(const std::filesystem::path& path);

/// Turns what a person named into a path. Throws HostError for what is no file name.
inline std::filesystem::path ToPath(const std::string& text) {
    if (const auto path = NativePath(text)) return *path;
    throw HostError("\"" + text + "\" is no file name");
}

enum class Output { Standard, Errors };

/// Returns whether `output` is a terminal, and how many characters its lines have; 0 if it is none,
/// or one that does not know.
bool IsTerminal(Output output);
size_t TerminalWidth(Output output = Output::Standard);

/// Sets a variable of the environment, for libraries that are loaded later.
void SetVariable(const char* name, const std::string& value);

/// Has writes to a pipe that nobody reads fail, where they would end the program.
void OutliveReaders();

/// Returns true iff the standard output is a pipe.
bool OutputIsPipe();

/// Renames `from` to `to`, in one step and in place of a file that is there. Returns whether that
/// worked.
bool MoveOver(const std::filesystem::path& from, const std::filesystem::path& to);

/// A lock among programs, and among the objects of one program, by a file that nobody reads.
class FileLock {
public:
    /// Waits for whoever holds the lock of `file`, up to ten seconds. Throws HostError if that is
    /// not enough, or if the file cannot be made.
    explicit FileLock(const std::filesystem::path& file);

    /// Releases the lock and removes the file.
    ~FileLock();
    FileLock(const FileLock&) = delete;
    FileLock& operator=(const FileLock&) = delete;

private:
    const std::filesystem::path m_File;
#ifdef _WIN32
    void* m_Handle;
#else
    int m_Handle;
#endif
};

/// A loaded shared library. Unloads it when it goes.
class Library {
public:
    /// Loads `file`, an absolute path. Throws HostError with the system's reason.
    explicit Library(const std::filesystem::path& file);
    ~Library();
    Library(const Library&) = delete;
    Library& operator=(const Library&) = delete;

    /// Returns the address of the exported function `name`, or null.
    void* Find(const char* name) const;

private:
    void* m_Handle;
};

} // namespace etmhost
