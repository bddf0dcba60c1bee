// File names, and lists of them.
//
// Names are compared without regard to case. A list is one text whose elements
// are separated by ";".

#pragma once

#include <cstdint>
#include <string>

class jString;

/// Returns `name` without the quotes around it and with "." and `ext` behind it if
/// it has no extension. An empty `name` stays empty.
std::string WithDefaultExt(std::string name, const char* ext);

/// The same in a buffer of 260 bytes, which remains valid until the next call. An empty
/// `name` is its own result. One that is too long for the buffer with an extension, even
/// if it has one already, gives "BadFile.Ext".
const char* AddDefaultExt(const char* name, const char* ext);

/// True iff the last part of `path` has a point.
bool HasExtension(const char* path);

/// Returns the extension of `path`, behind its point; null if there is none or
/// nothing stands behind the point.
const char* GetExtension(const char* path);

/// True iff `name` satisfies `pattern`: "*.*" (any name), "*." and an extension, or
/// a whole name.
bool MatchFileName(const char* pattern, const char* name);

/// Adds the paths of the files in `dir` that satisfy `pattern` to the list `result`,
/// in the platform's order; with `recurse` those of the tree below it too. `dir` has
/// no separator at its end. Returns true iff the list is not empty at the end;
/// false in any case if `dir` can't be read, or without `recurse` nothing in it fits.
bool FindFiles(const char* dir, const char* pattern, bool recurse, jString& result);

/// Stores element `index` of `list`, from 0, in `item`. Returns false, leaving `item`
/// alone, if there is none. A ";" at the end of the list begins no element.
bool GetListItem(int32_t index, const char* list, jString& item);
