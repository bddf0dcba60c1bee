// What some controls have to be taught.

#pragma once

#include "toolkit/win32/windows_api.h"

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
