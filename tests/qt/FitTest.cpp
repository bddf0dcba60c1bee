// Windows on their screens: they fit, and the sheet comes back to where it was.

#include <QScreen>
#include <QTabBar>

#include "testkit/TemporaryDirectory.h"
#include "tests/qt/QtTest.h"
#include "toolkit/save_dialog.h"

namespace {

/// An application on a screen of its own, and a person at it.
struct OnScreen {
    /// In points of `dpi` to the inch; `scale` as the desktop sets it.
    OnScreen(QSize size, int dpi, const char* scale, const QFont& font) {
        const QByteArray screen =
            QString("{\"screens\":[{\"name\":\"a\",\"x\":0,\"y\":0,\"width\":%1,"
                    "\"height\":%2,\"logicalDpi\":%3,\"logicalBaseDpi\":%3}]}")
                .arg(size.width())
                .arg(size.height())
                .arg(dpi)
                .toUtf8();
        const std::string file = directory.Write("screen.json", screen.toStdString());
        qputenv("QT_QPA_PLATFORM", ("offscreen:configfile=" + file).c_str());
        qputenv("QT_SCALE_FACTOR", scale);
        application.emplace();
        QApplication::setFont(font);
    }
    ~OnScreen() {
        application.reset();
        qputenv("QT_QPA_PLATFORM", "offscreen");
        qunsetenv("QT_SCALE_FACTOR");
    }

    void Run(CDialog& modal, const std::function<void(QWidget&)>& script) {
        QtPerson user;
        user.OnNextDialog([&](QtPerson&) {
            EXPECT_TRUE(QTest::qWaitForWindowActive(QtPerson::Window()));
            script(*QtPerson::Window());
        });
        user.Watch();
        modal.DoModal();
    }
    void RunSheet(const std::function<void(QWidget&)>& script) {
        CPropertyPage control{107}, trigger{108}, status{106};
        CPropertySheet sheet("Sheet", nullptr, 0);
        for (CPropertyPage* page : {&control, &trigger, &status}) sheet.AddPage(page);
        Run(sheet, script);
    }

    TemporaryDirectory directory;
    std::optional<Application> application;
};

QRect Available() {
    return QGuiApplication::primaryScreen()->availableGeometry();
}

TEST(Fit, EachWindowFitsItsScreenInTheLargestFontThatDoes) {
    struct {
        QSize screen;
        int dpi;
        const char *scale, *family;
        int points;
        bool smaller; // than the application's font
    } const rows[] = {
        {{800, 600}, 96, "1.25", "DejaVu Sans", 11, true},
        {{800, 600}, 120, "1", "DejaVu Sans", 11, true},
        {{1920, 1080}, 96, "2", "DejaVu Sans", 11, true},
        {{1920, 1080}, 96, "1", "DejaVu Sans", 9, false},
        {{640, 480}, 96, "1", "Cantarell", 11, true},
        {{640, 480}, 96, "1.5", "DejaVu Sans Mono", 12, true},
        {{1024, 600}, 96, "1", "Liberation Sans", 16, true},
        {{480, 800}, 96, "1", "DejaVu Sans Mono", 14, true}, // not wide enough
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(&row - rows);
        OnScreen on(row.screen, row.dpi, row.scale, QFont(row.family, row.points));
        on.RunSheet([&](QWidget& window) {
            const QRect frame = window.frameGeometry();
            EXPECT_TRUE(Available().contains(frame)) << frame.width() << " x " << frame.height();
            EXPECT_EQ(window.font().pointSizeF() < row.points, row.smaller);
            const QWidget& last = *window.findChild<QWidget*>("1030"); // on the page in front
            EXPECT_NEAR(last.geometry().bottom(), last.parentWidget()->height() * 200.0 / 211, 4);
            EXPECT_EQ(window.windowIcon().actualSize({48, 48}), QSize(48, 48));
            EXPECT_TRUE(QApplication::windowIcon().isNull()); // the host's
            // Two more rows of pixels for each of its 33 lines would not fit.
            const QSize left = Available().size() - frame.size();
            EXPECT_TRUE(!row.smaller || left.height() < 66 || left.width() < 60)
                << left.width() << " x " << left.height() << " at " << window.font().pointSizeF();
        });
        CDialog configuration(1001);
        on.Run(configuration,
               [](QWidget& window) { EXPECT_TRUE(Available().contains(window.frameGeometry())); });
    }
}

// A host's style sheet has the last word on fonts: the windows grow with it, and are not made
// smaller in vain.
TEST(Fit, AStyleSheetsFontMakesLargerWindows) {
    QSize before;
    for (const int points : {9, 16, 22}) {
        OnScreen on({1280, 1024}, 96, "1", QFont("DejaVu Sans", 9));
        qApp->setStyleSheet("* { font-size: " + QString::number(points) + "pt }");
        on.RunSheet([&](QWidget& window) {
            EXPECT_GT(window.width(), 1.2 * before.width()) << points;
            EXPECT_GT(window.height(), 1.2 * before.height()) << points;
            before = window.size();
        });
        qApp->setStyleSheet({});
    }
}

TEST(Fit, TheSheetComesBackWhereItWasLeftOnItsFirstTab) {
    {
        OnScreen on({1280, 1024}, 96, "1", QFont("DejaVu Sans", 9));
        for (const QPoint place : {QPoint(31, 47), QPoint(800, 400)}) {
            on.RunSheet([&](QWidget& window) {
                window.move(place);
                QTest::keyClick(window.focusWidget(), Qt::Key_PageUp, Qt::ControlModifier);
            });
            on.RunSheet([&](QWidget& window) {
                EXPECT_EQ(window.pos(), place);
                EXPECT_EQ(window.findChild<QTabBar*>()->currentIndex(), 0);
            });
        }
    }
    OnScreen on({1024, 768}, 96, "1", QFont("DejaVu Sans", 9)); // on which less of it would be seen
    on.RunSheet([&](QWidget& window) {
        EXPECT_TRUE(Available().contains(window.frameGeometry()));
        window.move(5000, 5000);
    });
    on.RunSheet(
        [&](QWidget& window) { EXPECT_TRUE(Available().contains(window.frameGeometry())); });
}

} // namespace
