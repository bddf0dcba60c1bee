#include "toolkit/qt/platform_probe.h"

#include <QCoreApplication>
#include <QDir>
#include <QPluginLoader>
#include <chrono>
#include <dlfcn.h>
#include <thread>

namespace qt {

namespace {

using Connection = std::shared_ptr<void>;

// A server that starts anew, because its last client has just left, is asked again.
constexpr int kTries = 5;
constexpr std::chrono::milliseconds kPause(30);

/// A shared library that is open as long as somebody keeps it.
std::shared_ptr<void> OpenLibrary(const char* name) {
    void* handle = dlopen(name, RTLD_LAZY | RTLD_LOCAL);
    return handle == nullptr ? nullptr : std::shared_ptr<void>(handle, dlclose);
}

template <class Function> Function* Find(const std::shared_ptr<void>& library, const char* name) {
    return library == nullptr ? nullptr : reinterpret_cast<Function*>(dlsym(library.get(), name));
}

/// A connection to the X server of DISPLAY; null if it does not answer.
Connection ConnectToX() {
    const auto xcb = OpenLibrary("libxcb.so.1");
    auto* connect = Find<void*(const char*, int*)>(xcb, "xcb_connect");
    auto* hasError = Find<int(void*)>(xcb, "xcb_connection_has_error");
    auto* disconnect = Find<void(void*)>(xcb, "xcb_disconnect");
    if (connect == nullptr || hasError == nullptr || disconnect == nullptr) return nullptr;
    for (int left = kTries; left > 0; --left) {
        Connection connection(connect(nullptr, nullptr),
                              [xcb, disconnect](void* open) { disconnect(open); });
        if (connection != nullptr && hasError(connection.get()) == 0) return connection;
        if (qEnvironmentVariableIsEmpty("DISPLAY")) break;
        std::this_thread::sleep_for(kPause);
    }
    return nullptr;
}

/// The same for the Wayland server.
Connection ConnectToWayland() {
    const auto wayland = OpenLibrary("libwayland-client.so.0");
    auto* connect = Find<void*(const char*)>(wayland, "wl_display_connect");
    auto* disconnect = Find<void(void*)>(wayland, "wl_display_disconnect");
    if (connect == nullptr || disconnect == nullptr) return nullptr;
    void* display = connect(nullptr);
    if (display == nullptr) return nullptr;
    return Connection(display, [wayland, disconnect](void* open) { disconnect(open); });
}

/// The platforms to try: those asked for, or else those of the session.
QStringList Candidates() {
    const QString wanted = qEnvironmentVariable("QT_QPA_PLATFORM");
    const QStringList list = wanted.split(u';', Qt::SkipEmptyParts);
    if (!list.isEmpty()) return list;
    if (qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY")) return {"xcb"};
    // Qt's windows have no proper frames on GNOME's Wayland; its X server gives them some.
    const bool gnome = qEnvironmentVariable("XDG_CURRENT_DESKTOP").contains("GNOME");
    return gnome ? QStringList{"xcb", "wayland"} : QStringList{"wayland", "xcb"};
}

/// Loads the plug-in of a platform, as Qt will do, to see whether it can.
bool PluginLoads(const QString& platform, QString& reason) {
    QStringList folders = QCoreApplication::libraryPaths();
    for (QString& folder : folders) folder += "/platforms";
    folders << qEnvironmentVariable("QT_QPA_PLATFORM_PLUGIN_PATH").split(u':', Qt::SkipEmptyParts);
    for (const QString& folder : folders)
        for (const QFileInfo& file : QDir(folder).entryInfoList({"libq" + platform + "*.so"})) {
            QPluginLoader plugin(file.filePath());
            if (plugin.load()) return true;
            reason = QString("Qt's platform \"%1\" can't be loaded: %2")
                         .arg(platform, plugin.errorString());
        }
    if (reason.isEmpty()) reason = QString("Qt's platform \"%1\" is not installed.").arg(platform);
    return false;
}

/// Why there is no X server.
QString WithoutX() {
    const QString display = qEnvironmentVariable("DISPLAY");
    if (display.isEmpty()) return "There is no screen to show windows on: DISPLAY is not set.";
    return QString("There is no screen to show windows on: the X server \"%1\" does not answer.")
        .arg(display);
}

/// Whether windows can be shown on a platform; says why not.
bool IsUsable(const QString& candidate, PlatformProbe& probe, QString& reason) {
    const QString platform = candidate.section(u':', 0, 0);
    const bool x = platform == "xcb";
    if (candidate == "offscreen" || platform == "minimal") return PluginLoads(platform, reason);
    // The others end the process where they don't find their device, as does the one above
    // without its file of options.
    if (!x && platform != "wayland" && platform != "wayland-egl") {
        reason = QString("Qt's platform \"%1\" is not supported.").arg(candidate);
        return false;
    }
    const Connection connection = x ? ConnectToX() : ConnectToWayland();
    if (connection == nullptr) {
        reason = x ? WithoutX()
                   : "There is no screen to show windows on: the Wayland server does not answer.";
        return false;
    }
    probe.connections.push_back(connection);
    return PluginLoads(platform, reason);
}

} // namespace

PlatformProbe ProbePlatforms() {
    PlatformProbe probe;
    QStringList usable;
    QString firstReason;
    for (const QString& candidate : Candidates()) {
        QString why;
        if (IsUsable(candidate, probe, why))
            usable << candidate;
        else if (firstReason.isEmpty())
            firstReason = why;
    }
    if (usable.isEmpty()) probe.reason = firstReason.toStdString();
    probe.platforms = usable.join(u';').toStdString();
    return probe;
}

} // namespace qt
