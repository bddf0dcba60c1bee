// QtApplication: the one application object that Qt needs, ours or the host's.
//
// Qt's header of it brings in a global name "Display" from X; so only source files
// that do without toolkit/display.h include that.

#pragma once

#include <memory>
#include <string>

class QApplication;

namespace qt {

/// Puts the process's locale back on every way out: Qt takes that of the
/// environment when it starts, and again at the first key that is pressed.
class KeepLocale {
public:
    KeepLocale();
    ~KeepLocale();
    KeepLocale(const KeepLocale&) = delete;
    KeepLocale& operator=(const KeepLocale&) = delete;

private:
    std::string m_Locale;
};

/// A host with a QApplication of its own lends it, untouched. For any other host
/// one is made at the first need and goes with this object; unless it can't: the X
/// server has gone, or the host has made one beside it, which uses the same parts.
class QtApplication {
public:
    QtApplication();
    ~QtApplication();
    QtApplication(const QtApplication&) = delete;
    QtApplication& operator=(const QtApplication&) = delete;

    /// Returns true if the calling thread can show windows; false with a readable
    /// line in `reason`. Never ends the process; may be tried again. An application of
    /// our own gets `name`; should its X server go away, `cancel` has to end all loops.
    bool Prepare(const char* name, void (*cancel)(), std::string& reason);

    /// `application` is that of the process that this one was forked from; null: none.
    static void NoteForked(const void* application);

    /// An audible warning, if there is an application that can give one.
    static void Beep();

private:
    std::unique_ptr<QApplication> m_Own;
};

} // namespace qt
