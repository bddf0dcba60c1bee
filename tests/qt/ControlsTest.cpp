// What a person does at a widget reaches the model, and what the model shows.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QRadioButton>
#include <QSlider>
#include <QTest>
#include <QTextBlock>
#include <QTextLayout>

#include "tests/qt/TestDialog.h"
#include "toolkit/qt/qt_text.h"

using ::testing::ElementsAre;
using ::testing::IsEmpty;

namespace {

class Controls : public ::testing::Test {
protected:
    Application application;
    TestDialog dialog;
};

TEST_F(Controls, ReportWhatAPersonDoes) {
    dialog.Run({
        [&] {
            QTest::keyClicks(Person::Find("11"), "ab");
            EXPECT_EQ(dialog.GetDlgItem(11)->GetWindowText(), "ab");
            EXPECT_THAT(dialog.TakeNotes(), ElementsAre("text 11", "text 11"));
        },
        [&] { // the far end of the widget is hot too
            auto* radio = Person::Find("21");
            QTest::mouseClick(radio, Qt::LeftButton, {}, radio->rect().bottomRight());
            EXPECT_TRUE(dialog.Item<CButton>(21).GetCheck());
            EXPECT_TRUE(Person::Find<QRadioButton>("21")->isChecked());
            QTest::mouseClick(radio, Qt::LeftButton);
            EXPECT_TRUE(Person::Find<QRadioButton>("21")->isChecked());
            EXPECT_THAT(dialog.TakeNotes(), ElementsAre("click 21", "click 21"));
        },
        [&] {
            QTest::mouseClick(Person::Find("30"), Qt::LeftButton);
            EXPECT_TRUE(Person::Find<QCheckBox>("30")->isChecked());
            Person::Find<QCheckBox>("30")->setChecked(false); // as assistive programs do
            EXPECT_FALSE(dialog.Item<CButton>(30).GetCheck());
            EXPECT_THAT(dialog.TakeNotes(), ElementsAre("click 30", "click 30"));
        },
        [&] {
            EXPECT_EQ(Person::Find<QComboBox>("31")->currentIndex(), -1);
            QTest::keyClick(Person::Find("31"), Qt::Key_Down);
            EXPECT_EQ(dialog.Item<CComboBox>(31).GetCurSel(), 0);
            EXPECT_THAT(dialog.TakeNotes(), ElementsAre("select 31"));
        },
        [&] {
            auto* slider = Person::Find<QSlider>("32");
            QTest::keyClick(slider, Qt::Key_Right);
            EXPECT_EQ(dialog.Item<CSliderCtrl>(32).GetPos(), 1);
            QTest::mouseClick(slider, Qt::LeftButton, {}, slider->rect().center());
            EXPECT_THAT(dialog.TakeNotes(), ElementsAre("release 32"));
        },
    });
}

TEST_F(Controls, ShowWhatTheModelTells) {
    dialog.onClick = [&](int id) {
        if (id != 30) return;
        dialog.Item<CButton>(30).SetCheck(false); // refused
        dialog.GetDlgItem(11)->SetWindowText("x");
        dialog.GetDlgItem(40)->EnableWindow(false);
        dialog.GetDlgItem(10)->ShowWindow(SW_HIDE);
        auto& combo = dialog.Item<CComboBox>(31);
        combo.ResetContent();
        combo.AddString("only");
        combo.SetCurSel(0);
        dialog.Item<CSliderCtrl>(32).SetPos(70);
        dialog.CheckRadioButton(dialog.Item<CButton>(22));
    };
    dialog.Run({[&] {
        QTest::mouseClick(Person::Find("30"), Qt::LeftButton);
        EXPECT_FALSE(Person::Find<QCheckBox>("30")->isChecked());
        EXPECT_EQ(Person::Find<QLineEdit>("11")->text(), "x");
        EXPECT_FALSE(Person::Find("40")->isEnabled());
        EXPECT_FALSE(Person::Find("10")->isVisible());
        EXPECT_EQ(Person::Find<QComboBox>("31")->currentText(), "only");
        EXPECT_EQ(Person::Find<QComboBox>("31")->count(), 1);
        EXPECT_EQ(Person::Find<QSlider>("32")->value(), 70);
        EXPECT_TRUE(Person::Find<QRadioButton>("22")->isChecked());
        // The model's own changes are no input; the edit alone tells of its text.
        EXPECT_THAT(dialog.TakeNotes(), ElementsAre("click 30", "text 11"));
    }});
}

TEST_F(Controls, KeepBytesThatNobodyEdits) {
    const std::string bytes = "\xff\xc3\xa9 \xc2\xa0x";
    dialog.onInit = [&] {
        dialog.GetDlgItem(11)->SetWindowText(bytes);
        dialog.GetDlgItem(12)->SetWindowText(bytes + "\r\nlast");
    };
    dialog.Run({[&] {
        EXPECT_EQ(Person::Find<QPlainTextEdit>("12")->blockCount(), 2);
        EXPECT_EQ(dialog.GetDlgItem(11)->GetWindowText(), bytes);
        EXPECT_EQ(dialog.GetDlgItem(12)->GetWindowText(), bytes + "\r\nlast");
        auto* edit = Person::Find<QPlainTextEdit>("12");
        edit->selectAll();
        QTest::keyClicks(edit, "a");
        QTest::keyClick(edit, Qt::Key_Return);
        edit->insertPlainText(QString::fromUtf8("\xc2\xa0"));
        EXPECT_EQ(dialog.GetDlgItem(12)->GetWindowText(), "a\r\n\xc2\xa0");
    }});
}

TEST_F(Controls, TakeDigitsAloneWhereToldSo) {
    dialog.Run({[&] {
        auto* edit = Person::Find<QLineEdit>("50");
        edit->setFocus();
        QTest::keyClicks(edit, "1-x2");
        EXPECT_EQ(edit->text(), "12");
        dialog.GetDlgItem(50)->SetWindowText("-31"); // the model may hold anything
        QTest::keyClick(edit, Qt::Key_Backspace);
        EXPECT_EQ(edit->text(), "-3");
        edit->clear();
        EXPECT_EQ(dialog.GetDlgItem(50)->GetWindowText(), "");
    }});
}

TEST_F(Controls, MeasureTabsAsTheEditDrawsThem) {
    dialog.Run({[&] {
        auto* edit = Person::Find<QPlainTextEdit>("13");
        for (const char* label : {"a:\t", "Number of pins:\t", "FIFO:\t\t", "WWWWWWWW\t"}) {
            dialog.GetDlgItem(13)->SetWindowText(std::string(label) + "5");
            const QTextBlock block = edit->document()->firstBlock();
            const QTextLine line = block.layout()->lineAt(0);
            EXPECT_NEAR(line.cursorToX(block.length() - 2) - line.cursorToX(0),
                        qt::TabbedWidth(edit->font(), label), 1)
                << label;
        }
    }});
}

TEST_F(Controls, HaveNamesForScreenReadersAndTips) {
    dialog.Run({[&] {
        EXPECT_EQ(Person::Find("11")->accessibleName(), "Name");
        EXPECT_EQ(Person::Find("12")->accessibleName(), "Text");
        EXPECT_EQ(Person::Find("40")->accessibleName(), ""); // its caption serves
    }});
    const QFont font;
    const QString tip = qt::Wrapped("many words in a row that do not fit\n\nend", font, 100);
    for (const QString& line : tip.split('\n'))
        EXPECT_LE(QFontMetrics(font).horizontalAdvance(line), 100) << line.toStdString();
    EXPECT_TRUE(tip.endsWith("fit\n\nend")) << tip.toStdString();
}

} // namespace
