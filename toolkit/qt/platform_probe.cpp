#include "toolkit/qt/platform_probe.h"

#include <QCoreApplication>
#include <QDir>
#include <QPluginLoader>
#include <dlfcn.h>

namespace qt {

namespace {

/// A shared library that stays open as long as this object.
class Library {
public:
    explicit Library(const char* name) : m_Handle(dlopen(name, RTLD_LAZY | RTLD_LOCAL)) {}
    ~Library() {
        if (m_Handle != nullptr) dlclose(m_Handle);
    }
    Library(const Library&) = delete;
    Library& operator=(const Library&) = delete;

    template <class Function> Function* Find(const char* name) const {
        return m_Handle == nullptr ? nullptr : reinterpret_cast<Function*>(dlsym(m_Handle, name));
    }

private:
    void* m_Handle;
};

bool XServerAnswers() {
    const Library xcb("libxcb.so.1");
    auto* connect = xcb.Find<void*(const char*, int*)>("xcb_connect");
    auto* hasError = xcb.Find<int(void*)>("xcb_connection_has_error");
    auto* disconnect = xcb.Find<void(void*)>("xcb_disconnect");
    if (connect == nullptr || hasError == nullptr || disconnect == nullptr) return false;
    void* connection = connect(nullptr, nullptr);
    const bool answers = connection != nullptr && hasError(connection) == 0;
    disconnect(connection);
    return answers;
}

bool WaylandAnswers() {
    const Library wayland("libwayland-client.so.0");
    auto* connect = wayland.Find<void*(const char*)>("wl_display_connect");
    auto* disconnect = wayland.Find<void(void*)>("wl_display_disconnect");
    if (connect == nullptr || disconnect == nullptr) return false;
    void* display = connect(nullptr);
    if (display != nullptr) disconnect(display);
    return display != nullptr;
}

/// The platforms to try: those asked for, or else those of the session.
QStringList Candidates() {
    const QString wanted = qEnvironmentVariable("QT_QPA_PLATFORM");
    if (!wanted.isEmpty()) return wanted.split(u';', Qt::SkipEmptyParts);
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

/// Whether windows can be shown on a platform; says why not.
bool IsUsable(const QString& platform, QString& reason) {
    if (platform == "xcb" && !XServerAnswers()) {
        const QString display = qEnvironmentVariable("DISPLAY");
        reason = display.isEmpty()
                     ? QString("There is no screen to show windows on: DISPLAY is not set.")
                     : QString("There is no screen to show windows on: the X server \"%1\" "
                               "does not answer.")
                           .arg(display);
        return false;
    }
    if (platform.startsWith("wayland") && !WaylandAnswers()) {
        reason = "There is no screen to show windows on: the Wayland server does not answer.";
        return false;
    }
    return PluginLoads(platform, reason);
}

} // namespace

std::string UsablePlatforms(std::string& reason) {
    QStringList usable;
    QString firstReason;
    for (const QString& candidate : Candidates()) {
        QString why;
        if (IsUsable(candidate.section(u':', 0, 0), why))
            usable << candidate;
        else if (firstReason.isEmpty())
            firstReason = why;
    }
    if (usable.isEmpty()) reason = firstReason.toStdString();
    return usable.join(u';').toStdString();
}

} // namespace qt
