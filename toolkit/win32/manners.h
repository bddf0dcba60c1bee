// What some controls have to be taught.

#pragma once

#include "toolkit/win32/windows_api.h"

/// Makes an edit of several lines behave like its neighbours: Tab and Escape, and
/// Return if it makes no new line, are the dialog's, the focus selects nothing, and a
/// text that another program sets counts as typed.
void TeachMultiLineEdit(HWND window);

/// Makes a radio button take the focus without becoming the one of its group, unless
/// it came by an arrow key.
void TeachRadioButton(HWND window);

/// Passes the text of an edit on to its model, as typed.
void TakeTypedText(CWnd& edit, HWND window);
