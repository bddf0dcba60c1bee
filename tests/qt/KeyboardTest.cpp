// The keyboard alone is enough.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QPlainTextEdit>

#include "tests/qt/TestDialog.h"
#include "toolkit/constants.h"

using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::Not;

namespace {

class Keyboard : public ::testing::Test {
protected:
    /// Runs the dialog and presses `key` on control `id`; returns the result.
    int PressOn(const char* id, Qt::Key key) {
        return dialog.Run({[=] {
            Person::Find(id)->setFocus();
            Person::Press(key);
        }});
    }

    Application application;
    TestDialog dialog;
};

TEST_F(Keyboard, TabGoesThroughTheTemplate) {
    std::vector<std::string> order;
    dialog.Run({[&] {
        do {
            order.push_back(Person::Focus());
            Person::Press(Qt::Key_Tab);
        } while (Person::Focus() != "11" && order.size() < 20);
        Person::Press(Qt::Key_Backtab);
        EXPECT_EQ(Person::Focus(), "2");
    }});
    EXPECT_THAT(order, ElementsAre("11", "12", "13", "20", "30", "31", "32", "50", "40", "1", "2"));
}

TEST_F(Keyboard, TabFindsTheRadioButtonThatCounts) {
    dialog.onInit = [&] { dialog.CheckRadioButton(dialog.Item<CButton>(22)); };
    dialog.Run({[&] {
        Person::Find("13")->setFocus();
        Person::Press(Qt::Key_Tab);
        EXPECT_EQ(Person::Focus(), "22");
        dialog.GetDlgItem(22)->EnableWindow(false); // it stays checked
        Person::Find("13")->setFocus();
        Person::Press(Qt::Key_Tab);
        EXPECT_EQ(Person::Focus(), "20");
    }});
}

TEST_F(Keyboard, ArrowsGoRoundARadioGroup) {
    dialog.Run({[&] {
        dialog.GetDlgItem(21)->EnableWindow(false);
        Person::Find("20")->setFocus();
        Person::Press(Qt::Key_Down);
        EXPECT_EQ(Person::Focus(), "22");
        EXPECT_TRUE(dialog.Item<CButton>(22).GetCheck());
        Person::Press(Qt::Key_Right);
        EXPECT_EQ(Person::Focus(), "20");
        Person::Press(Qt::Key_Up);
        EXPECT_THAT(dialog.TakeNotes(), ElementsAre("click 22", "click 20", "click 22"));
    }});
}

TEST_F(Keyboard, ReturnPressesTheDefaultButton) {
    for (const char* id : {"11", "13", "20", "30", "32", "50", "1"}) {
        SCOPED_TRACE(id);
        EXPECT_EQ(PressOn(id, Qt::Key_Return), IDOK);
    }
    EXPECT_THAT(dialog.TakeNotes(), Not(Contains("click 40")));
}

TEST_F(Keyboard, ReturnPressesTheButtonWithTheFocus) {
    EXPECT_EQ(PressOn("40", Qt::Key_Enter), IDCANCEL);
    EXPECT_THAT(dialog.TakeNotes(), Contains("click 40"));
    EXPECT_EQ(PressOn("2", Qt::Key_Return), IDCANCEL);
}

TEST_F(Keyboard, ReturnMakesALineWhereWanted) {
    EXPECT_EQ(PressOn("12", Qt::Key_Return), IDCANCEL);
    EXPECT_EQ(dialog.GetDlgItem(12)->GetWindowText(), "\r\n");
}

TEST_F(Keyboard, SpaceTogglesAndEscapeCloses) {
    EXPECT_EQ(dialog.Run({
                  [&] {
                      Person::Find("30")->setFocus();
                      Person::Press(Qt::Key_Space);
                      EXPECT_TRUE(dialog.Item<CButton>(30).GetCheck());
                  },
                  [] { Person::Press(Qt::Key_Escape); },
              }),
              IDCANCEL);
}

} // namespace
