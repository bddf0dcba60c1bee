// Where the keyboard goes.

#pragma once

#include "toolkit/win32/windows_api.h"

/// Puts the focus on the first control of a dialog, of its page in front for a sheet.
void FocusFirst(const CDialog& dialog);

/// Puts it on a control as soon as its dialog is active.
void Focus(HWND control);

/// True iff the focus is in `window`.
bool HasFocus(HWND window);

/// True iff a control has the focus, or gets it back when its dialog is active again.
bool OwnsFocus(HWND control);

/// A page is about to be hidden: the focus goes from it to the tabs.
void LeavePage(HWND page);

/// A control is about to be disabled or hidden, for which the system takes the focus
/// from it; if the control comes back before another one gets the focus, so does that.
void LendFocus(HWND control);
void TakeFocusBack(HWND control);

/// A dialog is left for another window, or comes back. Returns true if the focus need
/// not be restored by the system.
bool OnActivate(HWND dialog, bool active);
