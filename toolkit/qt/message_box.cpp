#include <QMessageBox>

#include "toolkit/constants.h"
#include "toolkit/qt/boxes.h"

namespace qt {

namespace {

QMessageBox::Icon IconOf(unsigned flags) {
    switch (flags & MB_ICONMASK) {
    case MB_ICONHAND:
        return QMessageBox::Critical;
    case MB_ICONQUESTION:
        return QMessageBox::Question;
    case MB_ICONEXCLAMATION:
        return QMessageBox::Warning;
    default:
        return QMessageBox::NoIcon;
    }
}

/// Cuts what is very long, whatever a host may say: a box has to fit the screen.
QString Bounded(const QString& text) {
    constexpr int kMostCharacters = 2000;
    return text.size() > kMostCharacters ? text.left(kMostCharacters) + QChar(0x2026) : text;
}

} // namespace

int Refusal(unsigned flags) {
    return (flags & MB_YESNO) != 0 ? IDNO : IDOK;
}

int ShowMessageBox(ModalStack& stack, QWidget* owner, const QString& text, const QString& title,
                   unsigned flags) {
    QMessageBox box(owner);
    box.setIcon(IconOf(flags));
    box.setWindowTitle(title);
    box.setTextFormat(Qt::PlainText);
    box.setText(Bounded(text));
    box.setAccessibleDescription(box.text());
    if ((flags & MB_YESNO) != 0) {
        box.setStandardButtons(QMessageBox::Yes | QMessageBox::No);
        box.setDefaultButton(QMessageBox::Yes);
        box.setEscapeButton(QMessageBox::No);
    } else {
        box.setStandardButtons(QMessageBox::Ok);
        box.setEscapeButton(QMessageBox::Ok);
    }
    const ModalRun run(stack, box);
    return box.exec() == QMessageBox::Yes ? IDYES : Refusal(flags);
}

} // namespace qt
