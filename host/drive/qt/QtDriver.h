// QtDriver: lets an interpreter work from inside the message loops of Qt.

#pragma once

#include <QElapsedTimer>
#include <QObject>

#include "host/drive/Interpreter.h"

namespace etmhost {

/// Calls the interpreter from timers, in whatever message loop runs, for as long as it lives.
class QtDriver : public QObject {
public:
    explicit QtDriver(Interpreter& interpreter);

private:
    void Schedule();

    Interpreter& m_Interpreter;
    QElapsedTimer m_Clock;
};

} // namespace etmhost
