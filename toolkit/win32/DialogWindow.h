// The windows of one dialog: how they are made, and what they report.

#pragma once

#include "toolkit/win32/windows_api.h"

/// Makes the hidden windows of a dialog, page or sheet, and of its controls. A dialog
/// is owned by `owner`, which may be null; a page becomes a child of its sheet.
bool MakeDialogWindow(CDialog& dialog, HWND owner);

/// Asks the sheet for tab `index` as if the person had clicked on it.
void ChooseTab(CPropertySheet& sheet, CTabCtrl& tab, int index);
