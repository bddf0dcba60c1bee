// QtPerson: a prepared person at the Qt windows of the module.

#pragma once

#include <QApplication>
#include <QEventLoop>
#include <QTimer>
#include <memory>
#include <set>

#include "frame/interfaces/IOrnKVETMCtrl.h"
#include "host/drive/qt/QtUser.h"
#include "tests/support/Prepared.h"

/// That of a host.
struct Application {
    int argc = 1;
    char name[5] = "host";
    char* argv[2] = {name, nullptr};
    QApplication qt{argc, argv};
};

/// REQUIRES: a QApplication, while windows are open.
class QtPerson final : public Prepared<QtPerson, etmhost::QtUser> {
public:
    /// Watches for windows from now on and runs what was prepared for them.
    void Watch() {
        if (m_Context == nullptr) m_Context = std::make_unique<QObject>();
        // A new timer each time: a script that runs inside one poll is watched by the next.
        QTimer::singleShot(5, m_Context.get(), [this] { Poll(); });
    }
    bool Open(IOrnKVETMCtrl& control) { return Watch(), control.Open(); }
    bool Watching() const { return m_Context != nullptr; }

    static void Wait(int milliseconds) {
        QEventLoop loop;
        QTimer::singleShot(milliseconds, &loop, &QEventLoop::quit);
        loop.exec();
    }

private:
    void Poll() {
        Watch();
        const etmhost::FrontWindow front = Front();
        QWidget* const window = Window();
        if (window == nullptr || !m_Seen.insert(window).second) return;
        if (front.kind == etmhost::FrontWindow::Box) {
            m_Boxes.push_back("[" + front.title + "] " + front.text);
            PressAnswer(Next<int>(m_Answers, IDCANCEL));
        } else if (front.kind == etmhost::FrontWindow::Save) {
            SaveAs(Next<std::string>(m_Saves, ""));
        } else {
            Next<Script>(m_Scripts, [](QtPerson&) {})(*this);
            if (Window() == window) CloseFrame();
        }
        m_Seen.erase(window);
    }

    std::set<QWidget*> m_Seen;
    std::unique_ptr<QObject> m_Context; // its end stops the watch
};
