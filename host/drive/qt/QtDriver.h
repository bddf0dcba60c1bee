// QtDriver: lets an interpreter work from inside the message loops of Qt.

#pragma once

#include <QElapsedTimer>
#include <QObject>

#include "host/drive/Interpreter.h"

class QWidget;

namespace etmhost {

/// Calls the interpreter from timers, in whatever message loop runs, for as long as it lives. A
/// window that has come to the front is left alone once.
class QtDriver : public QObject {
public:
    explicit QtDriver(Interpreter& interpreter);

private:
    void Schedule();

    Interpreter& m_Interpreter;
    QElapsedTimer m_Clock;
    const QWidget* m_Window = nullptr; ///< that was in front when it looked last; may be gone
};

} // namespace etmhost
