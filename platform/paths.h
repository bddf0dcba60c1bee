// Paths as texts: what separates their parts, and how they come apart.
//
// Paths are written with the platform's separator and split at both kinds, so
// that a path typed or stored with the other kind still works.

#pragma once

#include <string>
#include <string_view>

#if defined(_WIN32)
inline constexpr char kSeparator = '\\';
#else
inline constexpr char kSeparator = '/';
#endif

/// The four parts of a path; put together again they give the path.
struct PathParts {
    std::string Drive;     // a letter and its colon, or empty
    std::string Directory; // up to the last separator, which it keeps
    std::string Name;      // without the extension
    std::string Extension; // with its point, or empty
};

/// True for both kinds of separator.
bool IsSeparator(char ch);

PathParts SplitPath(std::string_view path);

/// Returns the directory in which the file `path` lies, without a separator behind
/// it: "/opt/debugger" for "/opt/debugger/module.so", "C:" for "C:\module.dll". A root without
/// a drive keeps its separator, for nothing would be left to search. Empty if
/// `path` names no directory.
std::string DirectoryOf(std::string_view path);

/// Returns `directory`, a separator unless it ends in one, and `name`.
std::string JoinPath(std::string_view directory, std::string_view name);
