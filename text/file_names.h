// File names, and lists of them.
//
// Names are compared without regard to case. A list is one text whose elements
// are separated by ";".

#pragma once

#include <cstdint>

class jString;

/// Returns `name` without the quotes around it and with "." and `ext` behind it if
/// it has no extension. An empty `name` is its own result. A name that would not
/// fit 260 bytes with its extension gives "BadFile.Ext". The result remains valid
/// until the next call.
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

/// For a walk over a long list: stores the first element of `rest` in `item` and
/// moves `rest` behind it and its ";". Returns false at the end. The walk delivers
/// the elements that GetListItem has for 0, 1, 2 ...
bool NextListItem(const char*& rest, jString& item);
