// Replacing the content of a file so that it is never seen half done.
//
// A guide for porting. The new content goes to a file of its own beside the old one, is
// flushed to the disk and only then renamed over it. So whoever opens the path, be it after
// the process or the machine has died in between, finds the old content or the new one,
// whole; a disk that is full or fails leaves the old one.
//
//  * The file beside it has a name that was free, no longer than four characters where
//    paths are short, and without the extension of `path`: nobody takes it for a finished
//    file. A process that dies may leave it behind, nothing else does.
//  * Its mode (the attributes, on Windows) is that of the file that it replaces; without
//    one, what the platform gives to any new file.
//  * The rename itself is flushed as well, where the platform can.

#pragma once

#include <string>

/// Makes `bytes` the content of the file at `path`, which need not exist. Returns false if
/// that fails, with everything as it was; so it does for a file that is protected from
/// writing, and for what is no file: a directory, a pipe, a device, a link. What stands
/// behind those lies elsewhere.
bool ReplaceFileContent(const std::string& path, const std::string& bytes);
