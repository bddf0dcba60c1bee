#include "host/drive/qt/QtDriver.h"

#include <QApplication>
#include <QTimer>
#include <utility>

#include "host/drive/qt/QtUser.h"
#include "host/drive/windows.h"

namespace etmhost {

namespace {

constexpr int kPause = 20; // between two steps, in ms, in which the windows settle

} // namespace

QtDriver::QtDriver(Interpreter& interpreter) : m_Interpreter(interpreter) {
    m_Clock.start();
    Schedule();
}

void QtDriver::Schedule() {
    // A new timer each time: one timer does not fire again while its handler runs a modal window.
    QTimer::singleShot(kPause, this, [this] {
        Schedule();
        // The window in front before may just have closed, while its loop has still to return to
        // who waits for it. What that one does then will be done at the next tick.
        const QWidget* const window = QApplication::activeModalWidget();
        if (std::exchange(m_Window, window) == window)
            m_Interpreter.Tick(static_cast<uint64_t>(m_Clock.elapsed()));
    });
}

std::unique_ptr<User> MakeUser() {
    return std::make_unique<QtUser>();
}

bool TakesPictures() {
    return true;
}

void DriveWindows(Interpreter& interpreter, const std::function<void()>& open) {
    const QtDriver driver(interpreter);
    open();
}

} // namespace etmhost
