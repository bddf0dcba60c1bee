// Where the keyboard goes, and what some controls have to be taught about it.

#pragma once

#include "toolkit/win32/windows_api.h"

// --- The focus ----------------------------------------------------------------------------

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

// --- Manners ------------------------------------------------------------------------------

/// Makes an edit of several lines behave like its neighbours: Tab and Escape, and
/// Return if it makes no new line, are the dialog's, the focus selects nothing, and a
/// text that another program sets counts as typed.
void TeachMultiLineEdit(HWND window);

/// Makes a radio button the one of its group when the focus comes to it by an arrow
/// key, and by no other way.
void TeachRadioButton(HWND window);

/// True for a Return or Escape that repeats because the key is held, and that would end
/// a window or press a button; in an edit Return may go on making new lines.
bool IsHeldKey(const MSG& message);

/// Passes the text of an edit on to its model, as typed.
void TakeTypedText(CWnd& edit, HWND window);
