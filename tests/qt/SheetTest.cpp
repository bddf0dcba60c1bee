// A sheet and its pages: their keys, and room for every text.

#include <QPlainTextEdit>
#include <QScrollBar>
#include <QStyleOptionComboBox>
#include <QTabBar>
#include <set>

#include "frame/slots.h"
#include "pages/jStatusPage.h"
#include "testkit/RecordingHost.h"
#include "tests/qt/QtTest.h"

namespace {

struct Sheet : QtTest {
    CPropertyPage control{107}, trigger{108}, status{106};
};

TEST_F(Sheet, TurnsByKeyFromAnywhere) {
    CPropertySheet sheet("Sheet", nullptr, 0);
    for (CPropertyPage* page : {&control, &trigger, &status}) sheet.AddPage(page);
    Run(sheet, [&] {
        PressOn(1077, Qt::Key_Tab, Qt::ControlModifier);
        EXPECT_EQ(user.Focus(), 1030);
        Press(Qt::Key_PageDown, Qt::ControlModifier);
        EXPECT_EQ(user.Focus(), 1038); // 1064 lies out of sight, and screen readers don't find it
        EXPECT_EQ(QtPerson::Window()->findChild<QWidget*>("1064"), nullptr);
        PressOn(IDOK, Qt::Key_Tab, Qt::ControlModifier);
        EXPECT_EQ(user.TabInFront(), 0);
        Press(Qt::Key_Backtab, Qt::ControlModifier | Qt::ShiftModifier);
        EXPECT_EQ(user.TabInFront(), 2);
        Press(Qt::Key_PageUp, Qt::ControlModifier);
        EXPECT_EQ(user.TabInFront(), 1);
        // From the tabs into the page, and behind it to the buttons.
        auto* bar = QtPerson::Window()->findChild<QTabBar*>();
        bar->setFocus();
        Press(Qt::Key_Left);
        EXPECT_TRUE(bar->hasFocus());
        Press(Qt::Key_Tab);
        EXPECT_EQ(user.Focus(), 1000);
        PressOn(1083, Qt::Key_Tab);
        EXPECT_EQ(user.Focus(), IDOK);
    });
}

TEST_F(Sheet, ShowsHelpBesideThePointerWhichWouldTakeItAway) {
    CPropertySheet sheet("Sheet", nullptr, 0);
    sheet.AddPage(&control);
    Run(sheet, [&] {
        const QWidget& box = *user.Find(1000);
        for (const QPoint by : {QPoint(3, 5), QPoint(60, 30), QPoint(200, 40)}) {
            QCursor::setPos(box.mapToGlobal(box.rect().bottomLeft()) + by);
            QCoreApplication::processEvents(); // or it waits for the next application
            PressOn(1000, Qt::Key_F1);
            int tips = 0;
            for (const QWidget* window : QApplication::topLevelWidgets()) {
                if (!window->inherits("QTipLabel") || !window->isVisible()) continue;
                EXPECT_FALSE(window->geometry().contains(QCursor::pos())) << by.x();
                ++tips;
            }
            EXPECT_EQ(tips, 1);
            Press(Qt::Key_Escape);
        }
    });
}

/// Pixels that the texts of a widget need across, whatever they have.
int NeededWidth(const QWidget& widget) {
    const auto width = [&widget](const char* property) {
        return widget.fontMetrics().horizontalAdvance(widget.property(property).toString());
    };
    if (const auto* tabs = qobject_cast<const QTabWidget*>(&widget))
        return tabs->tabBar()->sizeHint().width();
    if (widget.inherits("QGroupBox")) return width("title") + 14;
    if (widget.inherits("QPushButton")) return width("text");
    if (widget.inherits("QComboBox")) {
        QStyleOptionComboBox option;
        option.initFrom(&widget);
        const QRect text = widget.style()->subControlRect(QStyle::CC_ComboBox, &option,
                                                          QStyle::SC_ComboBoxEditField, &widget);
        return width("currentText") + widget.width() - text.width();
    }
    if (widget.inherits("QLabel") || widget.inherits("QAbstractButton"))
        return widget.sizeHint().width();
    return 0;
}

/// True iff a text of several lines, but for the long report, does not show whole.
bool IsCut(const QWidget& widget) {
    const auto* edit = qobject_cast<const QPlainTextEdit*>(&widget);
    if (edit == nullptr || edit->objectName() == "1063") return false;
    const double lines = edit->document()->size().height();
    return lines * edit->fontMetrics().lineSpacing() > edit->viewport()->height() ||
           edit->horizontalScrollBar()->maximum() > 0;
}

/// Names the texts of a page or group that are cut off, and the controls that overlap.
std::string Faults(const QWidget& page) {
    std::string faults;
    QList<QWidget*> shown;
    for (QWidget* widget : page.findChildren<QWidget*>(Qt::FindDirectChildrenOnly))
        if (widget->isVisibleTo(&page) && page.rect().intersects(widget->geometry())) {
            if (widget->inherits("QGroupBox")) faults += Faults(*widget);
            shown << widget;
        }
    for (const QWidget* widget : shown) {
        const std::string name = widget->objectName().toStdString();
        if (NeededWidth(*widget) > widget->width() || IsCut(*widget)) faults += " cut:" + name;
        if (!page.rect().contains(widget->geometry())) faults += " outside:" + name;
        for (const QWidget* other : shown)
            if (widget != other && !widget->inherits("QGroupBox") &&
                !other->inherits("QGroupBox") && widget->geometry().intersects(other->geometry()))
                faults += " overlap:" + name;
    }
    return faults;
}

/// The places at which the values of the report on the status page begin.
std::set<int> Columns(QtPerson& user) {
    const auto& edit = dynamic_cast<QPlainTextEdit&>(*user.Find(1063));
    std::set<int> columns;
    QTextCursor value(edit.document());
    while (!(value = edit.document()->find("\t", value)).isNull())
        if (edit.document()->characterAt(value.position()) != u'\t')
            columns.insert(edit.cursorRect(value).x());
    return columns;
}

TEST_F(Sheet, CutsNothingOffInAnyFontAndShowsTheStatusInOneColumn) {
    RecordingHost host;
    g_VETMTrace = &host.trace;
    for (const char* family :
         {"DejaVu Sans", "Liberation Sans", "Liberation Serif", "Cantarell", "DejaVu Sans Mono",
          "Liberation Mono", "DejaVu Serif", "Cantarell Extra Bold"}) {
        for (const int points : {7, 8, 9, 11, 12, 14}) {
            SCOPED_TRACE(std::string(family) + " " + std::to_string(points));
            QApplication::setFont(QFont(family, points));
            jStatusPage filled;
            CPropertySheet fresh("Sheet", nullptr, 0);
            for (CPropertyPage* page : {&control, &trigger, static_cast<CPropertyPage*>(&filled)})
                fresh.AddPage(page);
            Run(fresh, [&] {
                control.GetDlgItem(1083)->SetWindowText(
                    "Trigger controls are\r\ndisabled for TPIU");
                for (const int page : {107, 108, 106}) {
                    EXPECT_TRUE(user.Visible(page));
                    if (page == 108)
                        trigger.GetDlgItem(1083)->SetWindowText(
                            "For Cortex-M3 use DWT comparator index (0..3)\r\n"
                            "in Begin and End address fields.");
                    EXPECT_EQ(points < 9 ? "" : Faults(*user.Find(page)), "") << page;
                    EXPECT_TRUE(page != 106 || Columns(user).size() == 1U);
                    Press(Qt::Key_PageDown, Qt::ControlModifier);
                }
                EXPECT_EQ(Faults(*QtPerson::Window()), "");
            });
            CDialog configuration(1001);
            Run(configuration, [&] {
                for (const auto& [id, entry] :
                     {std::pair(1065, "32 bits"), std::pair(1068, "Normal, no Half-rate clocking"),
                      std::pair(1078, "Call debugger startup macro functions")}) {
                    auto& list = dynamic_cast<CComboBox&>(*configuration.GetDlgItem(id));
                    list.AddString(entry);
                    list.SetCurSel(0);
                }
                configuration.GetDlgItem(1080)->SetWindowText(
                    "Debugger startup macro will be called\r\n"
                    "at [traceenable] label to enable trace pins\r\n"
                    "and at [tracedisable] label to disable trace pins.");
                EXPECT_EQ(Faults(*QtPerson::Window()), "");
            });
        }
    }
    g_VETMTrace = nullptr;
}

} // namespace
