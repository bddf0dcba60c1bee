// Help on a control: tips under the pointer, the tip that F1 brings up, and what screen
// readers read.

#pragma once

#include "toolkit/win32/windows_api.h"

/// Shows `text` while the pointer rests on `control`, on a page be it disabled; at most `maxWidth`
/// pixels wide.
void AddToolTip(CWnd& control, const char* text, int maxWidth);

/// A control has been shown or hidden, and so has its place for tips.
void PlaceToolTip(const CWnd& control);

/// F1 shows the next help of the dialog, Escape puts away what is shown, and any other key or
/// button too. Returns true for a message that needs no more work.
bool IsForHelp(CDialog& dialog, HWND window, const MSG& message);

/// Gives the screen reader that runs, if one does, the help of the dialog's controls as their
/// descriptions.
void DescribeControls(const CDialog& dialog);
