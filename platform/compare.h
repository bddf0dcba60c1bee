// Comparison of 8-bit texts without regard to case.
//
// Only the letters A to Z have a case here. No locale takes part, so that the
// same keyword matches in every host process.

#pragma once

#include <cstddef>

/// Compares two texts; null counts as empty. Returns 0 if they are equal, else a
/// number below or above 0, by the order of their small letters.
int CompareNoCase(const char* left, const char* right);

/// The same for at most `length` characters.
int CompareNoCaseN(const char* left, const char* right, size_t length);
