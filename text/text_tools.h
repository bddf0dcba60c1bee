// Small routines for NUL-terminated 8-bit text.

#pragma once

#include <cstddef>

/// Copies `src` into the `size` bytes at `dst`, fills what remains of them with
/// NUL, and cuts the text so that the last byte is always NUL. A null `src` counts
/// as empty; a null `dst` or a size of 0 does nothing. Returns `dst`.
char* CopyBounded(char* dst, size_t size, const char* src);

/// Returns the first place in `text` at which `pattern` stands, compared without
/// regard to case; null if there is none, and if either is empty or null.
const char* FindNoCase(const char* text, const char* pattern);

/// Ends `text` at the first `ch`, if there is one. Null does nothing.
void CutAtChar(char* text, char ch);
