#include "toolkit/qt/Ticker.h"

#include <QCoreApplication>
#include <QEvent>
#include <algorithm>
#include <limits>

#include "toolkit/input.h"

namespace qt {

namespace {

constexpr auto kTick = QEvent::User;

} // namespace

void Ticker::Start(unsigned milliseconds) {
    Stop();
    constexpr unsigned kLongest = std::numeric_limits<int>::max();
    m_Timer = startTimer(static_cast<int>(std::min(milliseconds, kLongest)));
}

void Ticker::Stop() {
    if (m_Timer != 0) killTimer(m_Timer);
    m_Timer = 0;
    QCoreApplication::removePostedEvents(this, kTick);
    m_Pending = false;
}

void Ticker::timerEvent(QTimerEvent*) {
    // Qt holds a timer back while its own event is handled, so the tick is another.
    if (m_Pending) return;
    m_Pending = true;
    QCoreApplication::postEvent(this, new QEvent(kTick));
}

bool Ticker::event(QEvent* event) {
    if (event->type() != kTick) return QObject::event(event);
    m_Pending = false;
    input::Tick(m_Window, m_Id);
    return true;
}

} // namespace qt
