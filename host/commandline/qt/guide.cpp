#include "host/commandline/qt/guide.h"

#include <QAbstractButton>
#include <QApplication>
#include <QMessageBox>
#include <QTimer>
#include <cstdlib>
#include <iostream>

#include "host/commandline/actions.h"

namespace etmhost {

namespace {

constexpr int kPause = 40;           // between two stops, in ms
constexpr int kPatience = 10 * 1000; // for one stop, in ms

} // namespace

void Guide::Add(QString what, std::function<QWidget*()> find, std::function<void(QWidget*)> act) {
    m_Stops.push_back({std::move(what), std::move(find), std::move(act)});
}

void Guide::Start() {
    m_Waiting.start();
    Schedule();
}

void Guide::Schedule() {
    // A new timer each time: one timer does not fire again while its handler runs a modal window.
    QTimer::singleShot(kPause, this, [this] { Tick(); });
}

void Guide::Fail(const QString& reason) {
    if (m_Failure.isEmpty()) {
        m_Failure = reason;
        m_Waiting.restart();
    }
}

void Guide::Tick() {
    Schedule();
    if (const auto* box = qobject_cast<QMessageBox*>(ModalWindow()))
        Fail("a box \"" + box->windowTitle() + "\" came up: " + box->text());
    if (!m_Failure.isEmpty()) {
        CloseTopWindow();
        return;
    }
    QWidget* widget = arrived() ? nullptr : m_Stops[m_Next].find();
    if (widget != nullptr) {
        m_Waiting.restart();
        const Stop& stop = m_Stops[m_Next];
        ++m_Next; // ahead of the act, which may not return before later stops are made
        stop.act(widget);
    } else if (m_Waiting.elapsed() > kPatience) {
        Fail(arrived() ? "the dialog did not close" : "did not find " + m_Stops[m_Next].what);
    }
}

void Guide::CloseTopWindow() {
    QWidget* window = ModalWindow();
    if (window == nullptr) return;
    if (m_Waiting.elapsed() > kPatience) {
        PrintRefusal(std::cerr, kProgram,
                     "tour: " + m_Failure.toStdString() + "\na window cannot be closed");
        std::_Exit(1);
    }
    if (auto* box = qobject_cast<QMessageBox*>(window))
        box->buttons().last()->click(); // a box without a Cancel button ignores close
    else
        window->close();
}

QWidget* ModalWindow(const QString& name) {
    QWidget* window = QApplication::activeModalWidget();
    return window != nullptr && window->isVisible() &&
                   (name.isEmpty() || window->objectName() == name)
               ? window
               : nullptr;
}

} // namespace etmhost
