// Where the keyboard goes.

#pragma once

#include "toolkit/win32/windows_api.h"

/// Puts the focus on the first control of a dialog, of its page in front for a sheet.
void FocusFirst(const CDialog& dialog);

/// Moves the focus on to another control, if it is in `window`.
void LeaveFocus(HWND window);

/// True iff the focus is in `window`.
bool HasFocus(HWND window);
