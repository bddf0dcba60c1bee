// Windows inside windows: dialogs, boxes, the save dialog and timers.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QAbstractButton>
#include <QAbstractItemModel>
#include <QFileDialog>
#include <QLineEdit>
#include <QListView>
#include <QMessageBox>
#include <QTemporaryDir>
#include <QTest>
#include <cstring>

#include "tests/qt/TestDialog.h"
#include "toolkit/constants.h"
#include "toolkit/save_dialog.h"

using ::testing::ElementsAre;
using ::testing::HasSubstr;

namespace {

class Modal : public ::testing::Test {
protected:
    Application application;
    TestDialog dialog;
};

TEST_F(Modal, AnOuterDialogEndsBehindTheInnerOne) {
    std::vector<std::string> order;
    dialog.onClick = [&](int) {
        dialog.MessageBox("Question", nullptr, MB_YESNO | MB_ICONQUESTION);
        order.push_back("answered");
    };
    EXPECT_EQ(dialog.Run({
                  [] { QTest::mouseClick(Person::Find("40"), Qt::LeftButton); },
                  [&] {
                      dialog.EndDialog(IDOK);
                      order.push_back("ended");
                  },
                  [] { EXPECT_NE(qobject_cast<QMessageBox*>(Person::Window()), nullptr); },
                  [] { Person::Window()->close(); },
              }),
              IDOK);
    EXPECT_THAT(order, ElementsAre("ended", "answered"));
}

TEST_F(Modal, ABoxBehindTheEndOfItsDialogIsStillAnswered) {
    int answer = 0;
    dialog.onClick = [&](int) {
        dialog.EndDialog(IDOK);
        answer = dialog.MessageBox("<b>Text</b>\r\nnext", "Title", MB_YESNO);
    };
    EXPECT_EQ(dialog.Run({
                  [] { QTest::mouseClick(Person::Find("40"), Qt::LeftButton); },
                  [] {
                      auto* box = qobject_cast<QMessageBox*>(Person::Window());
                      ASSERT_NE(box, nullptr);
                      EXPECT_EQ(box->windowTitle(), "Title");
                      EXPECT_EQ(box->text(), "<b>Text</b>\nnext");
                      EXPECT_EQ(box->textFormat(), Qt::PlainText);
                      QTest::mouseClick(box->button(QMessageBox::Yes), Qt::LeftButton);
                  },
              }),
              IDOK);
    EXPECT_EQ(answer, IDYES);
}

TEST_F(Modal, ClosingABoxIsTheRefusal) {
    std::vector<int> answers;
    dialog.onClick = [&](int) {
        answers.push_back(dialog.MessageBox("", "", MB_YESNO));
        answers.push_back(dialog.MessageBox(std::string(100'000, 'x').c_str(), "", MB_OK));
    };
    dialog.Run({
        [] { QTest::mouseClick(Person::Find("40"), Qt::LeftButton); },
        [] { Person::Press(Qt::Key_Escape); },
        [] {
            const QRect screen = Person::Window()->screen()->geometry();
            EXPECT_LE(Person::Window()->height(), screen.height());
            Person::Window()->close();
        },
    });
    EXPECT_THAT(answers, ElementsAre(IDNO, IDOK));
}

TEST_F(Modal, TicksGoOnInsideAWindowThatATickOpened) {
    dialog.onInit = [&] { dialog.SetTimer(1, 10); };
    dialog.onTick = [&](unsigned id) {
        if (dialog.notes.size() == 1) dialog.MessageBox("Tick", "", MB_OK);
        if (dialog.notes.size() == 4) dialog.KillTimer(id);
    };
    dialog.Run({
        [&] { EXPECT_TRUE(QTest::qWaitFor([&] { return !dialog.notes.empty(); })); },
        [&] {
            EXPECT_NE(qobject_cast<QMessageBox*>(Person::Window()), nullptr);
            EXPECT_TRUE(QTest::qWaitFor([&] { return dialog.notes.size() == 4; }));
            Person::Press(Qt::Key_Return);
        },
    });
    EXPECT_THAT(dialog.notes, ElementsAre("tick", "tick", "tick", "tick"));
}

class SaveDialog : public Modal {
protected:
    /// Asks for a file in a directory with boards; the steps run in the dialog.
    bool Ask(std::deque<Person::Step> steps) {
        for (const char* name : {"A.MAC", "b.mac", "c.txt"}) {
            QFile file(directory.filePath(name));
            EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        }
        const QByteArray path = QFile::encodeName(directory.path());
        bool accepted = false;
        dialog.onClick = [&](int) {
            SaveFileRecord record;
            record.structSize = 88;
            record.owner = &dialog;
            record.filter = "Texts (*.TXT)\0*.txt\0Boards\0*.mac\0";
            record.filterIndex = 2;
            record.file = file;
            record.maxFile = maxFile;
            record.initialDirectory = path.constData();
            record.flags = OFN_OVERWRITEPROMPT;
            accepted = GetSaveFileName(record);
        };
        steps.push_front([] { QTest::mouseClick(Person::Find("40"), Qt::LeftButton); });
        dialog.Run(std::move(steps));
        return accepted;
    }
    static QStringList ListedFiles() {
        const auto* list = Person::Find<QListView>("listView");
        QStringList names;
        for (int i = 0; i < list->model()->rowCount(list->rootIndex()); ++i)
            names << list->model()->index(i, 0, list->rootIndex()).data().toString();
        return names;
    }
    static void Enter(const QString& name) {
        Person::Find<QLineEdit>("fileNameEdit")->setText(name);
        Person::Press(Qt::Key_Return);
    }
    std::string Path(const char* name) { return directory.filePath(name).toStdString(); }

    QTemporaryDir directory;
    char file[260] = "";
    uint32_t maxFile = sizeof file;
};

TEST_F(SaveDialog, ShowsTheDirectoryAndAsksBeforeReplacing) {
    EXPECT_TRUE(Ask({
        [&] {
            auto* save = qobject_cast<QFileDialog*>(Person::Window());
            ASSERT_NE(save, nullptr);
            EXPECT_EQ(save->directory(), QDir(directory.path()));
            EXPECT_EQ(save->selectedNameFilter(), "Boards (*.mac)");
            // Qt reads the directory on a thread.
            EXPECT_TRUE(QTest::qWaitFor([] { return ListedFiles().size() == 2; }));
            EXPECT_EQ(ListedFiles(), QStringList({"A.MAC", "b.mac"}));
            Enter("b.mac");
        },
        [] { // No is the default
            EXPECT_NE(qobject_cast<QMessageBox*>(Person::Window()), nullptr);
            Person::Press(Qt::Key_Return);
        },
        [] { Enter("b.mac"); },
        [] {
            auto* box = qobject_cast<QMessageBox*>(Person::Window());
            ASSERT_NE(box, nullptr);
            QTest::mouseClick(box->button(QMessageBox::Yes), Qt::LeftButton);
        },
    }));
    EXPECT_EQ(file, Path("b.mac"));
}

TEST_F(SaveDialog, AddsNoExtensionAndRefusesWhatDoesNotFit) {
    EXPECT_TRUE(Ask({[] { Enter("new"); }}));
    EXPECT_EQ(file, Path("new"));

    std::strcpy(file, "");
    maxFile = static_cast<uint32_t>(Path("new").size()); // no room for the NUL
    EXPECT_FALSE(Ask({
        [] { Enter("new"); },
        [] {
            auto* box = qobject_cast<QMessageBox*>(Person::Window());
            ASSERT_NE(box, nullptr);
            EXPECT_THAT(box->text().toStdString(), HasSubstr("too long"));
            Person::Press(Qt::Key_Return);
        },
    }));
    EXPECT_STREQ(file, "");
    EXPECT_FALSE(Ask({[] { Person::Press(Qt::Key_Escape); }}));
}

} // namespace
