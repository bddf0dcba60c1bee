// HeldKeys: Return and Escape act once, however long they are held.

#pragma once

#include <QObject>

class QWidget;

namespace qt {

/// While it lives, repeats of these keys reach nothing in `window` and in what belongs
/// to it; only in an edit of several lines a held Return goes on making new ones.
class HeldKeys : public QObject {
public:
    explicit HeldKeys(QWidget& window);

protected:
    bool eventFilter(QObject* receiver, QEvent* event) override;

private:
    QWidget& m_Window;
};

} // namespace qt
