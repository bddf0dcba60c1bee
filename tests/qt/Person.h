// Person: what someone does at the windows of the Qt display, step by step.

#pragma once

#include <QObject>
#include <QString>
#include <QWidget>
#include <deque>
#include <functional>
#include <stdexcept>
#include <string>

/// Runs its steps one after the other while modal windows are open. While a step
/// still runs, the next one begins only in another window, which has opened over
/// that of the step. When none are left it closes the window in front, so that no
/// test hangs.
/// REQUIRES: an application.
class Person : public QObject {
public:
    using Step = std::function<void()>;

    explicit Person(std::deque<Step> steps);

    bool HasStepsLeft() const { return !m_Steps.empty(); }

    /// The modal window in front; null while there is none.
    static QWidget* Window();
    /// The widget with a resource or dialog number in the window in front. Throws
    /// std::runtime_error if there is none.
    static QWidget* Find(const QString& name);
    template <class Widget> static Widget* Find(const QString& name) {
        if (auto* widget = qobject_cast<Widget*>(Find(name))) return widget;
        throw std::runtime_error(name.toStdString() + " is of another kind");
    }
    /// Presses a key where the focus is.
    static void Press(Qt::Key key, Qt::KeyboardModifiers modifiers = {});
    /// Number of the widget that has the focus.
    static std::string Focus();

protected:
    void timerEvent(QTimerEvent* event) override;
    bool event(QEvent* event) override;

private:
    std::deque<Step> m_Steps;
    QWidget* m_Busy = nullptr; // the window of the step that runs
};
