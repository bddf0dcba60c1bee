// Windows inside windows: dialogs, boxes, the save dialog and timers.

#include <QAbstractButton>
#include <QFileDialog>
#include <QHeaderView>
#include <QLabel>
#include <QListView>
#include <QMessageBox>
#include <QScreen>
#include <QTimer>
#include <QTreeView>

#include "testkit/TemporaryDirectory.h"
#include "tests/qt/QtTest.h"
#include "toolkit/save_dialog.h"

using namespace ::testing;

namespace {

using Modal = QtTest;

TEST_F(Modal, WhatLiesOverADialogHoldsItsEndBackAndLetsItsTicksThrough) {
    TestDialog inner;
    int ticks = 0;
    dialog.onTick = [&] {
        if (++ticks == 4) dialog.KillTimer(1);
        if (ticks > 1) return;
        Run(
            inner,
            [&] {
                EXPECT_TRUE(QTest::qWaitFor([&] { return ticks == 4; }));
                const QWidget* window = QtPerson::Window();
                dialog.EndDialog(IDOK);
                user.Wait(50);
                EXPECT_EQ(QtPerson::Window(), window);
                user.Click(IDOK);
            });
        user.Answer(IDYES);
        EXPECT_EQ(dialog.MessageBox("Text\r\nnext", "Title", MB_YESNO), IDYES);
    };
    EXPECT_EQ(Run([&] { dialog.SetTimer(1, 10), user.Wait(300); }), IDOK);
    EXPECT_EQ(ticks, 4);
    EXPECT_THAT(user.Boxes(), ElementsAre("[Title] Text\nnext"));
}

TEST_F(Modal, ABoxShowsPlainTextOnTheScreenAndItsCloseIsTheRefusal) {
    const std::string text = "<b>" + std::string(100'000, 'x');
    for (const auto& [flags, answer] : {std::pair(MB_OK, IDOK), std::pair(MB_YESNO, IDNO)}) {
        QTimer::singleShot(0, qApp, [&] {
            auto& box = dynamic_cast<QMessageBox&>(*QtPerson::Window());
            EXPECT_EQ(box.textFormat(), Qt::PlainText);
            EXPECT_LE(box.height(), box.screen()->geometry().height());
            QTest::keyClick(&box, Qt::Key_Escape);
        });
        EXPECT_EQ(MessageBoxWithoutOwner(text.c_str(), "", flags), answer);
    }
}

/// What is wrong with a message box that is shown.
std::string BoxFaults(const QMessageBox& box) {
    std::string faults;
    QFont bold = box.font();
    bold.setBold(true);
    if (box.width() < QFontMetrics(bold).horizontalAdvance(box.windowTitle()) + 60)
        faults += " narrow";
    if (!box.screen()->availableGeometry().contains(box.frameGeometry())) faults += " too large";
    for (const QAbstractButton* button : box.buttons())
        if (!button->icon().isNull()) faults += " an icon on a button";
    const QPixmap sign = box.findChild<QLabel*>("qt_msgboxex_icon_label")->pixmap();
    if (box.icon() != QMessageBox::NoIcon && sign.width() < 40 * box.devicePixelRatio())
        faults += " a sign of " + std::to_string(sign.width());
    return faults;
}

TEST_F(Modal, ABoxIsAsWideAsItsTitleFitsAndHasASharpSignAndNoIconsOnButtons) {
    const std::string path = "/a" + std::string(250, 'b') + "/c " + std::string(1500, 'd');
    for (const char* text : {"Short", path.c_str()})
        for (const unsigned icon : {0U, MB_ICONHAND, MB_ICONQUESTION, MB_ICONEXCLAMATION}) {
            QTimer::singleShot(0, qApp, [&] {
                auto& box = dynamic_cast<QMessageBox&>(*QtPerson::Window());
                EXPECT_EQ(BoxFaults(box), "") << text << icon;
                box.reject();
            });
            MessageBoxWithoutOwner(text, "Conflicting Settings Used", MB_YESNO | icon);
        }
}

constexpr char kOneFilter[] = "Board init files (*.MAC)\0*.mac\0";
constexpr char kTwoFilters[] = "Texts (*.TXT)\0*.txt\0Boards\0*.mac\0";

class SaveDialog : public QtTest {
protected:
    /// Asks for a file in a directory with boards; returns its path, "" if there is none.
    std::string Ask(const char* filter, size_t maxFile = 260) {
        for (const char* name : {"A.MAC", "b.mac", "c.txt"}) directory.Write(name, "");
        const std::string path = directory.Path();
        char file[260] = "";
        SaveFileRecord record{88, nullptr, filter, 2, file, static_cast<uint32_t>(maxFile)};
        record.initialDirectory = path.c_str();
        record.flags = OFN_OVERWRITEPROMPT;
        record.extensionToCome = filter == kOneFilter ? "mac" : nullptr;
        EXPECT_TRUE(GetSaveFileName(record) || *file == '\0');
        return file;
    }

    TemporaryDirectory directory;
};

TEST_F(SaveDialog, ShowsBoardsAndRefusesAPathThatDoesNotFit) {
    const auto listed = [] {
        const auto* list = QtPerson::Window()->findChild<QListView*>("listView");
        QStringList names;
        for (int i = 0; i < list->model()->rowCount(list->rootIndex()); ++i)
            names << list->model()->index(i, 0, list->rootIndex()).data().toString();
        return names.join(' ').toStdString();
    };
    QTimer::singleShot(0, qApp, [&] { // Qt reads the directory on a thread
        EXPECT_TRUE(QTest::qWaitFor([&] { return listed() == "A.MAC b.mac"; })) << listed();
        user.Watch();
    });
    user.AnswerSave("new");
    user.Answer(IDOK);
    EXPECT_EQ(Ask(kTwoFilters, directory.PathOf("new").size()), ""); // no room for the NUL
    EXPECT_THAT(user.Boxes(), ElementsAre(HasSubstr("too long")));
    user.AnswerSave(nullptr);
    EXPECT_EQ(Ask(kTwoFilters), "");
}

TEST_F(SaveDialog, HasColumnsThatFitAndFitsTheScreen) {
    directory.Write("a file with a rather long name, as people like to give them.mac", "");
    QTimer::singleShot(0, qApp, [&] {
        auto& dialog = dynamic_cast<QFileDialog&>(*QtPerson::Window());
        dialog.setViewMode(QFileDialog::Detail);
        auto& list = *dialog.findChild<QTreeView*>("treeView");
        const auto shown = [&] { return list.model()->rowCount(list.rootIndex()) == 3; };
        EXPECT_TRUE(QTest::qWaitFor(shown));
        QtPerson::Wait(50);
        EXPECT_TRUE(dialog.screen()->availableGeometry().contains(dialog.frameGeometry()));
        for (int column = 0; column < list.header()->count(); ++column)
            EXPECT_GE(list.columnWidth(column),
                      static_cast<QAbstractItemView&>(list)
                          .sizeHintForIndex(list.model()->index(0, column, list.rootIndex()))
                          .width())
                << column;
        const auto& places = *dialog.findChild<QListView*>("sidebar");
        EXPECT_GE(places.viewport()->width(),
                  places.sizeHintForIndex(places.model()->index(0, 0)).width());
        dialog.reject();
    });
    EXPECT_EQ(Ask(kTwoFilters), "");
}

TEST_F(SaveDialog, AsksBeforeReplacingAndAddsTheExtensionToCome) {
    struct {
        const char *filter, *typed, *file;
        bool asks;
    } const rows[] = {
        {kOneFilter, "b", "b.mac", true},
        {kTwoFilters, "b", "b", false},
        {kOneFilter, "new", "new.mac", false},
        {kTwoFilters, "b.mac", "b.mac", true},
    };
    user.Watch();
    for (const auto& row : rows) {
        SCOPED_TRACE(std::string(row.filter) + ": " + row.typed);
        if (row.asks) { // no, and again: yes
            user.AnswerSave(row.typed);
            for (const int answer : {IDNO, IDYES}) user.Answer(answer);
        }
        user.AnswerSave(row.typed);
        EXPECT_EQ(Ask(row.filter), directory.PathOf(row.file));
    }
    EXPECT_THAT(user.Boxes(), AllOf(SizeIs(4), Each(HasSubstr("] b.mac already exists"))));
}

} // namespace
