// What the checker needs of the operating system. posix/ and win32/ each implement all of it.
// Paths are 8-bit texts, as they cross the interfaces.

#pragma once

#include <cstddef>
#include <string>

namespace hostcheck {

/// Reads `size` bytes at `address`. Returns how many could be read: memory that is there no more
/// is no reason to crash in the host. May be told less than is there only behind a gap.
size_t ReadMemory(const void* address, void* to, size_t size);

/// The checker's own file, as the loader knows it.
std::string OwnFile();

/// Returns `file` without links on the way.
std::string RealFile(const std::string& file);

/// Returns `file` in full, seen from the current directory.
std::string FullPath(const std::string& file);
bool IsFullPath(const std::string& path);

/// Returns whether both name one file that exists.
bool IsSameFile(const std::string& one, const std::string& other);

struct FileName {
    std::string folder; ///< with a separator at its end, if there is one
    std::string name;
};
FileName SplitPath(const std::string& path);

/// The extension of shared libraries, with its point.
const char* LibraryExtension();

/// Loads the library `file`, for good, and returns its export `name`; null with the `reason`.
void* LoadExport(const std::string& file, const char* name, std::string& reason);

/// Returns whether the file that holds the code at `address` uses a C++ library whose streams
/// differ from those of this one, and not the helper that writes them.
bool UsesOtherCxxLibrary(const void* address);

} // namespace hostcheck
