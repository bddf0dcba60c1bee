// DialogLook: what the style and the toolkit leave to wish in the windows that Qt makes.

#pragma once

#include <QDialog>

namespace qt {

/// Cares for a dialog, and those inside it, when they are shown, as long as it lives: the
/// focus shows, the icon is ours, and buttons have none. A message box is as wide as its title,
/// fits the screen and has a sharp sign.
class DialogLook : public QObject {
public:
    explicit DialogLook(QDialog& dialog);

protected:
    bool eventFilter(QObject* receiver, QEvent* event) override;
};

} // namespace qt
