#include "tests/qt/Person.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QTest>

Person::Person(std::deque<Step> steps) : m_Steps(std::move(steps)) {
    startTimer(5);
}

QWidget* Person::Window() {
    return QApplication::activeModalWidget();
}

QWidget* Person::Find(const QString& name) {
    QWidget* found = Window() != nullptr ? Window()->findChild<QWidget*>(name) : nullptr;
    if (found == nullptr) throw std::runtime_error("no " + name.toStdString() + " in front");
    return found;
}

void Person::Press(Qt::Key key, Qt::KeyboardModifiers modifiers) {
    QWidget* focus = Window()->focusWidget();
    QTest::keyClick(focus != nullptr ? focus : Window(), key, modifiers);
}

std::string Person::Focus() {
    const QWidget* focus = Window()->focusWidget();
    return focus != nullptr ? focus->objectName().toStdString() : "";
}

void Person::timerEvent(QTimerEvent*) {
    QCoreApplication::postEvent(this, new QEvent(QEvent::User)); // a timer does not nest
}

bool Person::event(QEvent* event) {
    if (event->type() != QEvent::User) return QObject::event(event);
    if (Window() == nullptr || !Window()->isVisible() || Window() == m_Busy) return true;
    if (m_Steps.empty()) {
        Window()->close();
        return true;
    }
    const Step step = std::move(m_Steps.front());
    m_Steps.pop_front();
    QWidget* outer = std::exchange(m_Busy, Window());
    try {
        step();
    } catch (const std::exception& error) {
        ADD_FAILURE() << error.what();
        m_Steps.clear();
    }
    m_Busy = outer;
    return true;
}
