// The keyboard alone is enough.

#include <QPushButton>
#include <QTimer>

#include "tests/qt/QtTest.h"
#include "toolkit/save_dialog.h"

namespace {

using Keyboard = QtTest;

TEST_F(Keyboard, TabGoesThroughTheTemplateWithARadioGroupAsOneStopAndArrowsInside) {
    struct {
        int from;
        Qt::Key key;
        int to;
    } const rows[] = {
        {20, Qt::Key_Down, 22}, {22, Qt::Key_Right, 20}, {20, Qt::Key_Up, 22},
        {13, Qt::Key_Tab, 22},  {22, Qt::Key_Tab, 30},   {30, Qt::Key_Backtab, 22},
    };
    Run([&] {
        for (const int id : {11, 12, 13, 20, 30, 32, 50, 40, 1, 2, 11}) {
            EXPECT_EQ(user.Focus(), id);
            Press(Qt::Key_Tab);
        }
        PressOn(11, Qt::Key_Backtab);
        EXPECT_EQ(user.Focus(), 2);
        dialog.GetDlgItem(21)->EnableWindow(false);
        for (const auto& row : rows) {
            PressOn(row.from, row.key);
            EXPECT_EQ(user.Focus(), row.to) << "from " << row.from << " by " << row.key;
        }
        EXPECT_TRUE(user.Checked(22));
        dialog.GetDlgItem(22)->EnableWindow(false); // it stays checked
        PressOn(13, Qt::Key_Tab);
        EXPECT_EQ(user.Focus(), 20);
    });
    EXPECT_THAT(dialog.clicks, ::testing::ElementsAre(22, 20, 22));
}

TEST_F(Keyboard, ReturnEscapeAndSpacePressWhatTheyShould) {
    struct {
        int id;
        Qt::Key key;
        int result; // 0: the dialog stays open
        std::vector<int> clicks;
    } const rows[] = {
        {11, Qt::Key_Return, IDOK, {}},     {13, Qt::Key_Return, IDOK, {}},
        {32, Qt::Key_Enter, IDOK, {}},      {2, Qt::Key_Return, IDCANCEL, {}},
        {12, Qt::Key_Escape, IDCANCEL, {}}, {40, Qt::Key_Enter, 0, {40}},
        {12, Qt::Key_Return, 0, {}},        {30, Qt::Key_Space, 0, {30}},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(std::to_string(row.id) + " key " + std::to_string(row.key));
        dialog.clicks.clear();
        const int result = Run([&] {
            PressOn(row.id, row.key);
            EXPECT_EQ(dialog.HasEnded(), row.result != 0);
        });
        const bool newLine = row.id == 12 && row.key == Qt::Key_Return;
        EXPECT_EQ(dialog.GetDlgItem(12)->GetWindowText(), newLine ? "\r\n" : "");
        EXPECT_TRUE(row.result == 0 || result == row.result) << result;
        EXPECT_EQ(dialog.clicks, row.clicks);
    }
}

TEST_F(Keyboard, StaysOnAControlThatComesBackBeforeTheHandlerEnds) {
    for (const bool comesBack : {true, false}) {
        dialog.onClick = [&] {
            CWnd* button = dialog.GetDlgItem(40);
            button->EnableWindow(false);
            button->ShowWindow(SW_HIDE);
            button->ShowWindow(SW_SHOW);
            user.Answer(IDOK);
            dialog.MessageBox("", "", MB_OK);
            EXPECT_EQ(user.Focus(), 40);
            button->EnableWindow(comesBack);
        };
        Run([&] {
            PressOn(40, Qt::Key_Space);
            EXPECT_EQ(user.Focus(), comesBack ? 40 : 50); // not OK
            Press(Qt::Key_Space);
            EXPECT_FALSE(dialog.HasEnded());
        });
    }
}

/// The number of the button that has the look of a default one; 0: none.
int DefaultLook() {
    int found = 0;
    for (const auto* button : QtPerson::Window()->findChildren<QPushButton*>())
        if (button->isDefault()) found = button->objectName().toInt();
    return found;
}

TEST_F(Keyboard, TheDefaultLookIsThatOfTheButtonWhichReturnPressesAndTheFocusShows) {
    Run([&] {
        for (const auto& [id, button] :
             {std::pair(11, 1), {40, 40}, {30, 1}, {12, 0}, {13, 1}, {2, 2}, {32, 1}, {1, 1}}) {
            QWidget* window = QtPerson::Window();
            const QRect place(user.Find(id)->mapTo(window, QPoint()), user.Find(id)->size());
            const QImage without = window->grab(place).toImage();
            user.Find(id)->setFocus();
            EXPECT_EQ(DefaultLook(), button) << id;
            EXPECT_TRUE(id == 11 || window->grab(place).toImage() != without) << id;
        }
    });
}

/// Holds the keys that end a window; they were pressed before it came up.
void Hold() {
    QWidget* window = QtPerson::Window();
    for (const Qt::Key key : {Qt::Key_Return, Qt::Key_Enter, Qt::Key_Escape}) {
        QKeyEvent repeat(QEvent::KeyPress, key, Qt::NoModifier, QString(), true);
        QApplication::sendEvent(window->focusWidget(), &repeat);
        EXPECT_TRUE(QtPerson::Window() == window && window->isVisible()) << key;
    }
}

TEST_F(Keyboard, AHeldKeyPressesNothingAndGoesOnTyping) {
    TestDialog inner;
    dialog.onClick = [&] {
        QTimer::singleShot(0, qApp, Hold);
        user.Answer(IDYES);
        EXPECT_EQ(dialog.MessageBox("", "", MB_YESNO), IDYES);
        QTimer::singleShot(0, qApp, Hold);
        user.AnswerSave(nullptr);
        SaveFileRecord record;
        EXPECT_FALSE(GetSaveFileName(record));
        Run(inner, [&] { Hold(); });
    };
    Run([&] {
        for (const int id : {40, 11, 12, 30, 2}) {
            user.Find(id)->setFocus();
            Hold();
        }
        EXPECT_THAT(dialog.clicks, ::testing::IsEmpty());
        EXPECT_EQ(dialog.GetDlgItem(12)->GetWindowText(), "\r\n\r\n");
        EXPECT_FALSE(dialog.HasEnded());
        PressOn(40, Qt::Key_Return);
    });
    EXPECT_THAT(dialog.clicks, ::testing::ElementsAre(40));
}

} // namespace
