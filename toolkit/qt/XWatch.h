// XWatch: an X server that goes away does not take the host's process with it.
//
// Qt ends the process when it reads from a broken connection. It reads from inside
// GLib's main loop; there a source of ours stands before it and, behind a break, puts
// Qt's one out. What runs then ends; that application stays as it is, for good.
//
// Without GLib (the environment has QT_NO_GLIB) there is no such protection.

#pragma once

class QApplication;

namespace qt {

/// Remembers, before an application is made, which of GLib's sources are older.
class SourcesBefore {
public:
    SourcesBefore();
    unsigned First() const { return m_First; } // number of the first later one

private:
    unsigned m_First = 0;
};

/// Watches the connection of `application`, just made by this module, as long as it is
/// the only one of the process; on another platform than xcb does nothing. When the
/// connection breaks, calls `cancel` once, from the main loop that runs.
void WatchX(QApplication& application, const SourcesBefore& before, void (*cancel)());
/// To be called before that application is destroyed.
void UnwatchX();
/// True from the break on: Qt can show no window in this process any more.
bool HasXBroken();

} // namespace qt
