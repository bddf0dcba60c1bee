// A guide who drives the dialog from inside its own message loop.

#pragma once

#include <QElapsedTimer>
#include <QObject>
#include <QString>
#include <functional>
#include <vector>

class QWidget;

namespace etmhost {

/// Takes the modal windows of a program through a list of stops. Between two stops the windows get
/// time to settle. A stop that cannot be made within some seconds, and a message box that nobody
/// expects, end the trip: the guide then closes whatever is open.
class Guide : public QObject {
public:
    /// One stop. `find` returns the widget to act on, or null as long as it is not there. `act` may
    /// open a modal window: the next stop is then made from inside it.
    struct Stop {
        QString what; ///< for the error text
        std::function<QWidget*()> find;
        std::function<void(QWidget*)> act;
    };

    void Add(QString what, std::function<QWidget*()> find, std::function<void(QWidget*)> act);

    /// Begins. The stops are made as soon as a message loop runs.
    void Start();

    /// Gives up, with the reason, and closes all windows.
    void Fail(const QString& reason);

    /// Returns why the trip ended early; empty if it went well so far.
    const QString& failure() const { return m_Failure; }

    /// Returns true iff every stop has been made.
    bool arrived() const { return m_Next == m_Stops.size(); }

private:
    void Schedule();
    void Tick();
    void CloseTopWindow();

    std::vector<Stop> m_Stops;
    size_t m_Next = 0;
    QElapsedTimer m_Waiting;
    QString m_Failure;
};

/// Returns the modal window in front if its object name is `name`; null otherwise. An empty name
/// accepts any.
QWidget* ModalWindow(const QString& name = {});

} // namespace etmhost
