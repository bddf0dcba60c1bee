// Message boxes (message_box.cpp) and the save dialog (save_dialog.cpp).

#pragma once

#include "toolkit/qt/modal.h"
#include "toolkit/save_dialog.h"

namespace qt {

/// Shows a message box and returns IDOK, IDYES or IDNO; closing it counts as the
/// refusal. `flags`: MB_ values. `owner` may be null.
int ShowMessageBox(ModalStack& stack, QWidget* owner, const QString& text, const QString& title,
                   unsigned flags);

/// What closing a box with these flags means.
int Refusal(unsigned flags);

/// See GetSaveFileName. `owner` may be null.
bool ShowSaveDialog(ModalStack& stack, QWidget* owner, SaveFileRecord& record);

} // namespace qt
