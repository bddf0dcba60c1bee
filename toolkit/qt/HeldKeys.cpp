#include "toolkit/qt/HeldKeys.h"

#include <QCoreApplication>
#include <QKeyEvent>
#include <QPlainTextEdit>

namespace qt {

// Of the application: Qt offers a key to the control with the focus before the window.
HeldKeys::HeldKeys(QWidget& window) : m_Window(window) {
    QCoreApplication::instance()->installEventFilter(this);
}

bool HeldKeys::eventFilter(QObject* receiver, QEvent* event) {
    if (event->type() != QEvent::KeyPress) return false;
    const auto* press = static_cast<const QKeyEvent*>(event);
    const bool isReturn = press->key() == Qt::Key_Return || press->key() == Qt::Key_Enter;
    if (!press->isAutoRepeat() || (!isReturn && press->key() != Qt::Key_Escape)) return false;
    // An edit that makes no new line passes the key on to its parent.
    if (isReturn && qobject_cast<QPlainTextEdit*>(receiver) != nullptr) return false;
    for (const QWidget* widget = qobject_cast<QWidget*>(receiver); widget != nullptr;
         widget = widget->parentWidget())
        if (widget == &m_Window) return true;
    return false;
}

} // namespace qt
