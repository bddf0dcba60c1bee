// What edits, above all those of several lines, need beside the usual.

#pragma once

#include "toolkit/win32/windows_api.h"

/// Passes the text of an edit on to its model, as typed.
void TakeTypedText(CWnd& edit, HWND window);

/// Makes an edit of several lines behave like its neighbours: Tab and Escape, and
/// Return if it makes no new line, are the dialog's, the focus selects nothing, and a
/// text that another program sets counts as typed.
void TameMultiLineEdit(HWND window);
