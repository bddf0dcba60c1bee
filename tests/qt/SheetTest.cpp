// The tabs of a sheet show what the model decided.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QFontDatabase>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QTabBar>
#include <QTabWidget>
#include <QTest>

#include "tests/qt/TestDialog.h"
#include "toolkit/constants.h"

namespace {

class Page : public CPropertyPage {
public:
    using CPropertyPage::CPropertyPage;
    bool OnKillActive() override {
        if (!refuse) return true;
        MessageBox("Not yet", "Refused", MB_OK | MB_ICONHAND);
        return false;
    }
    bool refuse = false;
    std::function<void()> onInit;

protected:
    bool OnInitDialog() override {
        if (onInit) onInit();
        return CPropertyPage::OnInitDialog();
    }
};

class Sheet : public ::testing::Test {
protected:
    int Run(std::deque<Person::Step> steps) {
        CPropertySheet sheet("Sheet", nullptr, 0);
        for (Page* page : {&control, &trigger, &status}) sheet.AddPage(page);
        std::unique_ptr<Person> person;
        control.onInit = [&] { person = std::make_unique<Person>(std::move(steps)); };
        const int result = sheet.DoModal();
        EXPECT_FALSE(person->HasStepsLeft());
        return result;
    }

    static QTabWidget* Tabs() { return Person::Find<QTabWidget>("12320"); }
    static void ClickTab(int index) {
        QTabBar* bar = Tabs()->tabBar();
        QTest::mouseClick(bar, Qt::LeftButton, {}, bar->tabRect(index).center());
    }
    /// The tab in front, the page shown and the place of the focus.
    static std::string Shown() {
        std::string pages;
        for (QWidget* top : QApplication::topLevelWidgets())
            for (const char* page : {"107", "108", "106"})
                if (auto* widget = top->findChild<QWidget*>(page);
                    widget != nullptr && widget->isVisible())
                    pages += page;
        for (QWidget* top : QApplication::topLevelWidgets())
            if (auto* tabs = top->findChild<QTabWidget*>("12320"))
                return std::to_string(tabs->currentIndex()) + " " + pages + " " +
                       top->focusWidget()->objectName().toStdString();
        return "";
    }

    Application application;
    Page control{107}, trigger{108}, status{106};
};

TEST_F(Sheet, KeepsTheTabThatCannotBeLeft) {
    control.refuse = true;
    Run({
        [] { EXPECT_EQ(Shown(), "0 107 1000"); },
        [] {
            Person::Find("1077")->setFocus();
            ClickTab(1);
            EXPECT_EQ(Shown(), "0 107 1077"); // after the box
        },
        [] {
            EXPECT_EQ(qobject_cast<QMessageBox*>(Person::Window())->text(), "Not yet");
            EXPECT_EQ(Shown(), "0 107 1077");
            Person::Press(Qt::Key_Return);
        },
        [] { Tabs()->setCurrentIndex(2); }, // as assistive programs do
        [] { Person::Press(Qt::Key_Escape); },
        [&] {
            EXPECT_EQ(Shown(), "0 107 1077");
            EXPECT_TRUE(Person::Find("1077")->hasFocus());
            control.refuse = false;
            ClickTab(1);
            EXPECT_EQ(Shown(), "1 108 1030");
        },
    });
}

TEST_F(Sheet, TurnsByKeyFromAnywhere) {
    Run({
        [] {
            Person::Press(Qt::Key_Tab, Qt::ControlModifier);
            EXPECT_EQ(Tabs()->currentIndex(), 1);
            Person::Press(Qt::Key_PageDown, Qt::ControlModifier);
            EXPECT_EQ(Shown(), "2 106 1038"); // 1064 lies out of sight
            Person::Find("1")->setFocus();
            Person::Press(Qt::Key_Tab, Qt::ControlModifier);
            EXPECT_EQ(Tabs()->currentIndex(), 0);
            Person::Press(Qt::Key_Backtab, Qt::ControlModifier | Qt::ShiftModifier);
            EXPECT_EQ(Tabs()->currentIndex(), 2);
            Person::Press(Qt::Key_PageUp, Qt::ControlModifier);
            EXPECT_EQ(Tabs()->currentIndex(), 1);
        },
        [] { // from the tabs into the page, and behind it to the buttons
            Tabs()->tabBar()->setFocus();
            Person::Press(Qt::Key_Left);
            EXPECT_EQ(Tabs()->currentIndex(), 0);
            EXPECT_TRUE(Tabs()->tabBar()->hasFocus());
            Person::Press(Qt::Key_Tab);
            EXPECT_EQ(Person::Focus(), "1000");
            Person::Find("107")->findChild<QWidget*>("1083")->setFocus();
            Person::Press(Qt::Key_Tab);
            EXPECT_EQ(Person::Focus(), "1");
        },
    });
}

/// Names the texts of a page that are cut off, and the controls that overlap.
std::string Faults(const QWidget& page) {
    std::string faults;
    QList<QWidget*> shown;
    for (QWidget* widget : page.findChildren<QWidget*>(Qt::FindDirectChildrenOnly))
        if (widget->isVisibleTo(&page) && page.rect().intersects(widget->geometry()) &&
            !widget->inherits("QGroupBox"))
            shown << widget;
    for (const QWidget* widget : shown) {
        const bool text = qobject_cast<const QLabel*>(widget) != nullptr ||
                          qobject_cast<const QAbstractButton*>(widget) != nullptr;
        const int needed =
            qobject_cast<const QPushButton*>(widget) != nullptr
                ? widget->fontMetrics().horizontalAdvance(widget->property("text").toString())
                : widget->sizeHint().width();
        if (text && needed > widget->width())
            faults += " cut:" + widget->objectName().toStdString();
        if (!page.rect().contains(widget->geometry()))
            faults += " outside:" + widget->objectName().toStdString();
        for (const QWidget* other : shown)
            if (widget < other && widget->geometry().intersects(other->geometry()))
                faults += " overlap:" + widget->objectName().toStdString() + "," +
                          other->objectName().toStdString();
    }
    return faults;
}

class Configuration : public TestDialog {
public:
    Configuration() { m_DialogTemplate = FindDialogTemplate(1001); }
};

TEST_F(Sheet, CutsNothingOffInAnyFont) {
    for (const char* family : {"DejaVu Sans", "Liberation Sans", "Cantarell"}) {
        if (!QFontDatabase::families().contains(family)) continue;
        for (const int points : {9, 11, 14}) {
            SCOPED_TRACE(std::string(family) + " " + std::to_string(points));
            QApplication::setFont(QFont(family, points));
            Run({
                [] { EXPECT_EQ(Faults(*Person::Find("107")), ""); },
                [] { ClickTab(1); },
                [] { EXPECT_EQ(Faults(*Person::Find("108")), ""); },
                [] { ClickTab(2); },
                [] { EXPECT_EQ(Faults(*Person::Find("106")), ""); },
                [] { EXPECT_EQ(Faults(*Person::Window()), ""); },
            });
            Configuration().Run({[] { EXPECT_EQ(Faults(*Person::Window()), ""); }});
        }
    }
}

} // namespace
