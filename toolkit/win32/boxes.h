// The system's own modal windows: message box and save dialog.

#pragma once

#include "toolkit/win32/windows_api.h"

/// Shows a message box. Escape answers No where there are only Yes and No.
int ShowMessageBox(HWND owner, const char* text, const char* title, unsigned flags);

/// Runs the save dialog; see GetSaveFileName. The process keeps its current directory.
bool ShowSaveDialog(HWND owner, SaveFileRecord& record);

/// Refuses those that run on this thread; they end as soon as it gets back to them.
void CancelRunningBoxes();
