// The tour through the dialog. Widgets are found by their resource numbers, pages and windows by
// their dialog numbers.

#include <QAbstractButton>
#include <QApplication>
#include <QDir>
#include <QFile>
#include <QFontDatabase>
#include <QMouseEvent>
#include <QPixmap>
#include <QTabBar>
#include <QTabWidget>
#include <filesystem>
#include <ostream>

#include "host/commandline/qt/application.h"
#include "host/commandline/qt/guide.h"
#include "host/commandline/screen.h"
#include "host/support/host_error.h"

namespace etmhost {

namespace {

constexpr int kTabs = 3;

QTabWidget* Tabs() {
    QWidget* sheet = ModalWindow();
    return sheet != nullptr ? sheet->findChild<QTabWidget*>("12320") : nullptr;
}

// A control of page `page`, if that page is in front.
QWidget* OnPage(const char* page, const char* control) {
    QTabWidget* tabs = Tabs();
    QWidget* window = tabs != nullptr ? tabs->window()->findChild<QWidget*>(page) : nullptr;
    return window != nullptr && window->isVisible() ? window->findChild<QWidget*>(control)
                                                    : nullptr;
}

QWidget* EnabledOnPage(const char* page, const char* control) {
    QWidget* widget = OnPage(page, control);
    return widget != nullptr && widget->isEnabled() ? widget : nullptr;
}

void Click(QWidget* widget) {
    if (auto* button = qobject_cast<QAbstractButton*>(widget)) button->click();
}

void SelectTab(QTabWidget* tabs, int index) {
    const QPointF place = tabs->tabBar()->tabRect(index).center();
    for (const QEvent::Type type : {QEvent::MouseButtonPress, QEvent::MouseButtonRelease}) {
        QMouseEvent event(type, place, tabs->tabBar()->mapToGlobal(place), Qt::LeftButton,
                          type == QEvent::MouseButtonPress ? Qt::LeftButton : Qt::NoButton,
                          Qt::NoModifier);
        QApplication::sendEvent(tabs->tabBar(), &event);
    }
}

// "ETM Trace Settings" becomes "etm-trace-settings".
QString FileName(QString title) {
    return title.remove('&').toLower().replace(' ', '-');
}

class Route {
public:
    Route(Guide& guide, Journal& journal, const TourOptions& options)
        : m_Guide(guide), m_Journal(journal),
          m_Directory(QFile::decodeName(options.directory.c_str())) {}

    void Plan() {
        EnableTrace();
        for (int index = 0; index < kTabs; ++index) VisitTab(index);
        VisitConfiguration();
        Capture();
        m_Guide.Add(
            "the OK button",
            []() -> QWidget* {
                QTabWidget* tabs = Tabs();
                return tabs != nullptr ? tabs->window()->findChild<QWidget*>("1") : nullptr;
            },
            [this](QWidget* ok) {
                m_Journal.Step("click OK");
                Click(ok);
            });
    }

private:
    // Trace has to be on for the pages to show what they have. Where no board file is known yet,
    // that brings up the ETM Configuration dialog.
    void EnableTrace() {
        m_Guide.Add(
            "the check box Enable ETM", [] { return OnPage("107", "1000"); },
            [this](QWidget* box) {
                if (!qobject_cast<QAbstractButton*>(box)->isChecked()) {
                    m_Journal.Step("click Enable ETM");
                    Click(box);
                }
            });
        m_Guide.Add(
            "trace enabled",
            [] {
                QWidget* dialog = ModalWindow("1001");
                return dialog != nullptr ? dialog : EnabledOnPage("107", "1029");
            },
            [this](QWidget* widget) { AcceptConfiguration(widget); });
    }

    void VisitTab(int index) {
        m_Guide.Add(
            "the tabs", [] { return Tabs(); },
            [this, index](QWidget* widget) {
                auto* tabs = static_cast<QTabWidget*>(widget);
                m_Journal.Step("tab " + tabs->tabText(index).toStdString());
                SelectTab(tabs, index);
            });
        m_Guide.Add(
            "tab " + QString::number(index + 1),
            [index]() -> QWidget* {
                QTabWidget* tabs = Tabs();
                return tabs != nullptr && tabs->currentIndex() == index ? tabs : nullptr;
            },
            [this, index](QWidget* widget) {
                auto* tabs = static_cast<QTabWidget*>(widget);
                TakePicture(tabs->window(), index + 1, FileName(tabs->tabText(index)));
            });
    }

    void VisitConfiguration() {
        m_Guide.Add(
            "the tabs", [] { return Tabs(); },
            [](QWidget* tabs) { SelectTab(static_cast<QTabWidget*>(tabs), 0); });
        m_Guide.Add(
            "the button Configure ETM", [] { return EnabledOnPage("107", "1029"); },
            [this](QWidget* button) {
                if (!m_ConfigurationSeen) {
                    m_Journal.Step("click Configure ETM");
                    Click(button);
                }
            });
        m_Guide.Add(
            "the ETM Configuration dialog",
            [this]() -> QWidget* { return m_ConfigurationSeen ? Tabs() : ModalWindow("1001"); },
            [this](QWidget* widget) { AcceptConfiguration(widget); });
    }

    void Capture() {
        m_Guide.Add(
            "the button Start", [] { return EnabledOnPage("107", "1030"); },
            [this](QWidget* start) {
                m_Journal.Step("click Start");
                Click(start);
            });
        m_Guide.Add(
            "the button Stop", [] { return EnabledOnPage("107", "1031"); },
            [this](QWidget* stop) {
                TakePicture(stop->window(), kTabs + 2, "capture");
                m_Journal.Step("click Stop");
                Click(stop);
            });
        m_Guide.Add(
            "the button Start", [] { return EnabledOnPage("107", "1030"); }, [](QWidget*) {});
    }

    // `widget` is anything else where the dialog is not up.
    void AcceptConfiguration(QWidget* widget) {
        if (widget->objectName() != "1001") return;
        m_ConfigurationSeen = true;
        TakePicture(widget, kTabs + 1, FileName(widget->windowTitle()));
        m_Journal.Step("click OK of " + widget->windowTitle().toStdString());
        Click(widget->findChild<QWidget*>("1"));
    }

    void TakePicture(QWidget* window, int number, const QString& name) {
        const QString file = QString::number(number) + "-" + name + ".png";
        if (!window->grab().save(QDir(m_Directory).filePath(file))) {
            m_Guide.Fail("cannot write the picture " + file);
            return;
        }
        m_Journal.Step("picture " + file.toStdString());
    }

    Guide& m_Guide;
    Journal& m_Journal;
    const QString m_Directory;
    bool m_ConfigurationSeen = false;
};

} // namespace

Screen PrepareTour(const TourOptions& options) {
    const QString directory = QFile::decodeName(options.directory.c_str());
    QFile probe(QDir(directory).filePath(".etmhost-probe"));
    if (!QDir().mkpath(directory) || !probe.open(QIODevice::WriteOnly))
        throw HostError("tour: cannot write into directory \"" + options.directory + "\"");
    probe.remove();
    qputenv("QT_QPA_PLATFORM", "offscreen");
    qputenv("QT_LOGGING_RULES", "default.warning=false"); // about what offscreen cannot do
    if (options.scale != 1.0) qputenv("QT_SCALE_FACTOR", QByteArray::number(options.scale));
    const std::shared_ptr<QApplication> application = MakeApplication(options.dark);
    if (!options.font.empty()) {
        const QString font = QString::fromLocal8Bit(options.font.c_str());
        if (!QFontDatabase::families().contains(font, Qt::CaseInsensitive))
            throw HostError("there is no font \"" + options.font + "\"");
        QFont chosen = QApplication::font();
        chosen.setFamilies({font});
        QApplication::setFont(chosen);
    }
    return application;
}

Status Tour(ModuleSession& session, SimulatedHost& host, const TourOptions& options,
            std::ostream& errors) {
    Guide guide;
    Route route(guide, host.journal, options);
    route.Plan();
    guide.Start();
    const Status status = OpenDialog(session, host, errors);
    if (status == kDone && guide.failure().isEmpty() && !guide.arrived())
        guide.Fail("the dialog closed early");
    if (!guide.failure().isEmpty()) {
        PrintRefusal(errors, kProgram, "tour: " + guide.failure().toStdString());
        return kFailed;
    }
    return status;
}

} // namespace etmhost
