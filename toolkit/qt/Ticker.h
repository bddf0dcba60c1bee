// Ticker: a timer of a window.

#pragma once

#include <QObject>

class CWnd;

namespace qt {

/// Reports input::Tick(window, id) at each period, also while a window runs that
/// was opened by an earlier tick. A tick that could not be delivered before the
/// next one falls due is not made up for.
class Ticker : public QObject {
public:
    Ticker(CWnd& window, unsigned id) : m_Window(window), m_Id(id) {}

    void Start(unsigned milliseconds);
    void Stop();

protected:
    void timerEvent(QTimerEvent* event) override;
    bool event(QEvent* event) override;

private:
    CWnd& m_Window;
    unsigned m_Id;
    int m_Timer = 0;
    bool m_Pending = false;
};

} // namespace qt
