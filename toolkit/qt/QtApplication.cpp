#include "toolkit/qt/QtApplication.h"

#include <QApplication>
#include <QThread>
#include <clocale>
#include <cstdlib>
#include <pthread.h>
#include <unistd.h>

#include "toolkit/qt/XWatch.h"
#include "toolkit/qt/platform_probe.h"

namespace qt {

namespace {

// True from the beginning of the process's exit: Qt's own objects are about to go
// or have gone, and an application must no longer be destroyed.
bool g_Exiting = false;

// An application of our own that outlives its owner.
QApplication* g_LeftBehind = nullptr;

// In a forked process: the application of the process that it was forked from, whose
// threads and connections did not come along.
const QCoreApplication* g_OfParent = nullptr;

const int g_ForkWatched =
    pthread_atfork(nullptr, nullptr, [] { g_OfParent = QCoreApplication::instance(); });

/// Makes an application that a host will not notice: no name in its session, and
/// no end of its own when a window closes.
std::unique_ptr<QApplication> MakeApplication(const char* name, const std::string& platforms,
                                              void (*cancel)()) {
    // Qt keeps pointers to the count and the words, and takes out those that it used.
    static std::string words[] = {"", "-platform", ""};
    static char* arguments[4];
    static int count;
    words[0] = name;
    words[2] = platforms;
    for (int i = 0; i < 3; ++i) arguments[i] = words[i].data();
    arguments[3] = nullptr;
    count = 3;

    const KeepLocale locale;
    const bool sessionless = QCoreApplication::testAttribute(Qt::AA_DisableSessionManager);
    QCoreApplication::setAttribute(Qt::AA_DisableSessionManager, true);
    const SourcesBefore before;
    auto application = std::make_unique<QApplication>(count, arguments);
    WatchX(*application, before, cancel);
    QCoreApplication::setAttribute(Qt::AA_DisableSessionManager, sessionless);
    application->setQuitOnLastWindowClosed(false);

    static const bool watching = std::atexit([] { g_Exiting = true; }) == 0;
    static_cast<void>(watching);
    return application;
}

} // namespace

KeepLocale::KeepLocale() {
    if (const char* name = std::setlocale(LC_ALL, nullptr)) m_Locale = name;
}

KeepLocale::~KeepLocale() {
    const char* now = std::setlocale(LC_ALL, nullptr);
    if (now == nullptr || m_Locale != now) std::setlocale(LC_ALL, m_Locale.c_str());
}

QtApplication::QtApplication() = default;

QtApplication::~QtApplication() {
    if (!m_Own) return;
    // Better to leave it behind than to pull it down at the wrong time or place. Another
    // one that exists or existed beside it has taken its place as the instance.
    if (g_Exiting || HasXBroken() || QThread::currentThread() != m_Own->thread() ||
        QCoreApplication::instance() != m_Own.get() || m_Own.get() == g_OfParent)
        g_LeftBehind = m_Own.release();
    else
        UnwatchX();
}

bool QtApplication::Prepare(const char* name, void (*cancel)(), std::string& reason) {
    if (HasXBroken()) {
        reason = "The connection to the X server is broken; windows need a new start of the "
                 "program.";
        return false;
    }
    if (const QCoreApplication* application = QCoreApplication::instance()) {
        if (application == g_OfParent) {
            reason = "A forked process can't show windows with the Qt application of its parent.";
            return false;
        }
        if (qobject_cast<const QApplication*>(application) == nullptr) {
            reason = "The program's Qt application can't show windows: it is no QApplication.";
            return false;
        }
        if (QThread::currentThread() != application->thread()) {
            reason = "Windows can only be shown by the thread of the program's Qt application.";
            return false;
        }
        if (QCoreApplication::closingDown()) {
            reason = "The program is closing down.";
            return false;
        }
        return true;
    }
    if (m_Own || g_LeftBehind != nullptr) {
        reason = "The program has ended its Qt application, which can't be started again.";
        return false;
    }
    if (geteuid() != getuid() && !QCoreApplication::isSetuidAllowed()) {
        reason = "Qt shows no windows for a program that runs with another user's rights.";
        return false;
    }
    const PlatformProbe probe = ProbePlatforms();
    if (probe.platforms.empty()) {
        reason = probe.reason;
        return false;
    }
    m_Own = MakeApplication(name, probe.platforms, cancel);
    return true;
}

void QtApplication::NoteForked(const void* application) {
    if (application != nullptr) g_OfParent = static_cast<const QCoreApplication*>(application);
}

void QtApplication::Beep() {
    if (qobject_cast<QApplication*>(QCoreApplication::instance()) != nullptr) QApplication::beep();
}

} // namespace qt
