// Widths of texts.

#pragma once

#include <string_view>

#include "toolkit/win32/windows_api.h"

/// Width in pixels of a text in the font of `window`, with tabs where an edit has them
/// unless told otherwise. Returns false if there is nothing to measure with.
bool MeasureText(HWND window, std::string_view text, int& width);

/// Widens the label of one line so that its whole text shows, whatever face the
/// system has put in place of the template's.
void FitLabel(HWND label);
