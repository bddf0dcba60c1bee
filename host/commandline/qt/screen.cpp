#include "host/commandline/screen.h"

#include <dlfcn.h>

#include <QApplication>
#include <QFontDatabase>
#include <QPalette>

#include "host/support/host_error.h"
#include "host/support/words.h"

namespace etmhost {

namespace {

QPalette DarkPalette() {
    const QColor window(43, 45, 48);
    const QColor base(30, 31, 34);
    const QColor text(223, 225, 229);
    const QColor faint(120, 123, 128);
    const QColor highlight(53, 116, 240);
    QPalette palette(text, window);
    palette.setColor(QPalette::Window, window);
    palette.setColor(QPalette::Base, base);
    palette.setColor(QPalette::AlternateBase, window);
    palette.setColor(QPalette::Button, QColor(60, 63, 65));
    palette.setColor(QPalette::ToolTipBase, base);
    palette.setColor(QPalette::PlaceholderText, faint);
    palette.setColor(QPalette::Highlight, highlight);
    palette.setColor(QPalette::Disabled, QPalette::Highlight, faint);
    palette.setColor(QPalette::Disabled, QPalette::Base, window);
    palette.setColor(QPalette::HighlightedText, Qt::white);
    palette.setColor(QPalette::Link, highlight);
    for (const QPalette::ColorRole role :
         {QPalette::WindowText, QPalette::Text, QPalette::ButtonText, QPalette::ToolTipText}) {
        palette.setColor(role, text);
        palette.setColor(QPalette::Disabled, role, faint);
    }
    return palette;
}

// Qt ends the program where it finds no X server, so look for one first.
bool HasScreen() {
    const QByteArray platform = qgetenv("QT_QPA_PLATFORM");
    if (!platform.isEmpty() && !platform.startsWith("xcb")) return true;
    if (platform.isEmpty() && qgetenv("XDG_SESSION_TYPE") == "wayland" &&
        qEnvironmentVariableIsSet("WAYLAND_DISPLAY"))
        return true;
    void* library = dlopen("libxcb.so.1", RTLD_NOW | RTLD_LOCAL);
    if (library == nullptr) return false;
    using Connect = void* (*)(const char*, int*);
    using HasError = int (*)(void*);
    using Disconnect = void (*)(void*);
    const auto connect = reinterpret_cast<Connect>(dlsym(library, "xcb_connect"));
    const auto hasError = reinterpret_cast<HasError>(dlsym(library, "xcb_connection_has_error"));
    const auto disconnect = reinterpret_cast<Disconnect>(dlsym(library, "xcb_disconnect"));
    if (connect == nullptr || hasError == nullptr || disconnect == nullptr) return false;
    void* connection = connect(nullptr, nullptr);
    const bool connected = hasError(connection) == 0;
    disconnect(connection);
    return connected;
}

/// Makes the application; dark if asked for. The program ends here if its platform does not work.
std::shared_ptr<QApplication> MakeApplication(bool dark) {
    static int argc = 1;
    static char name[] = "etmhost";
    static char* argv[] = {name, nullptr};
    auto application = std::make_shared<QApplication>(argc, argv);
    if (dark) {
        QApplication::setStyle("Fusion"); // the style that follows the palette in everything
        QApplication::setPalette(DarkPalette());
    }
    return application;
}

} // namespace

Screen PrepareDarkScreen() {
    if (!HasScreen()) throw HostError("there is no screen to show the dialog on");
    return MakeApplication(true);
}

Screen PrepareDrivenScreen(const DriveOptions& options, bool dark) {
    if (options.offScreen || !HasScreen()) {
        qputenv("QT_QPA_PLATFORM", "offscreen");
        qputenv("QT_LOGGING_RULES", "default.warning=false"); // about what offscreen cannot do
    }
    if (options.scale != 1.0) qputenv("QT_SCALE_FACTOR", QByteArray::number(options.scale));
    const std::shared_ptr<QApplication> application = MakeApplication(dark);
    if (!options.font.empty()) {
        const QString font = QString::fromLocal8Bit(options.font.c_str());
        const QStringList families = QFontDatabase::families();
        if (!families.contains(font, Qt::CaseInsensitive)) {
            std::vector<std::string> names;
            for (const QString& family : families)
                names.push_back(family.toLocal8Bit().toStdString());
            throw HostError(
                "there is no font \"" + options.font + "\"" +
                DidYouMean(options.font, names, "\"fc-list : family\" lists those there are"));
        }
        QFont chosen = QApplication::font();
        chosen.setFamilies({font});
        QApplication::setFont(chosen);
    }
    return application;
}

} // namespace etmhost
