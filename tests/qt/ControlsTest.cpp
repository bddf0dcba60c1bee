// Texts, names and tips between the models and the widgets.

#include <QComboBox>
#include <QDialog>
#include <QHelpEvent>
#include <QPlainTextEdit>
#include <QSlider>
#include <QToolTip>

#include "tests/qt/QtTest.h"
#include "toolkit/CToolTipCtrl.h"
#include "toolkit/qt/qt_text.h"

namespace {

using Controls = QtTest;

TEST_F(Controls, KeepEachByteThatNobodyEditsAndTakeWhatIsTyped) {
    Run([&] {
        // Latin-1, cut short, a surrogate, too long a form, line ends of Unicode, a mark.
        const std::string bytes =
            "\xef\xbb\xbf\xff\xc3\xa9 \xc2\xa0x\xe2\x80\r\n\xed\xa0\x80\xc0\x80"
            "\xe2\x80\xa8\xef\xb7\x90\x01\xf0\x9f\x98\x80 Stra\xdf";
        for (const int id : {11, 12}) {
            dialog.GetDlgItem(id)->SetWindowText(bytes);
            PressOn(id, Qt::Key_End, Qt::ControlModifier);
            QTest::keyClicks(user.Find(id), "e");
            EXPECT_EQ(dialog.GetDlgItem(id)->GetWindowText(), bytes + "e") << id;
        }
        auto& edit = dynamic_cast<QPlainTextEdit&>(*user.Find(12));
        EXPECT_EQ(edit.blockCount(), 2);
        EXPECT_EQ(user.Find(11)->accessibleName() + ' ' + edit.accessibleName(), "Name Text");
        user.Type(12, "a\n");
        edit.insertPlainText(QString::fromUtf8("\xc2\xa0"));
        EXPECT_EQ(dialog.GetDlgItem(12)->GetWindowText(), "a\r\n\xc2\xa0");
        for (const int id : {11, 12})
            for (const char* typed : {"", "text"}) { // as long as it is not read-only
                const bool readOnly = *typed == '\0';
                dynamic_cast<CEdit&>(*dialog.GetDlgItem(id)).SetReadOnly(readOnly);
                PressOn(id, Qt::Key_A, Qt::ControlModifier);
                Press(Qt::Key_Delete);
                if (!readOnly) user.Type(id, typed);
                EXPECT_EQ(dialog.GetDlgItem(id)->GetWindowText() == typed, !readOnly) << id;
            }
        user.Type(50, "1-x2"); // takes digits alone
        EXPECT_EQ(dialog.GetDlgItem(50)->GetWindowText(), "12");
        dialog.GetDlgItem(50)->SetWindowText("-31"); // the model may hold anything
        PressOn(50, Qt::Key_Backspace);
        EXPECT_EQ(dialog.GetDlgItem(50)->GetWindowText(), "-3");
    });
}

TEST_F(Controls, HaveTipsEvenIfDisabled) {
    Run([&] {
        dialog.GetDlgItem(40)->EnableWindow(false);
        CToolTipCtrl tips;
        tips.Create(&dialog);
        tips.Activate(true);
        tips.AddTool({48, 0, &dialog, dialog.GetDlgItem(40), "a <b>tip</b>"});
        QHelpEvent help(QEvent::ToolTip, {3, 3}, {3, 3});
        QApplication::sendEvent(user.Find(40), &help);
        EXPECT_TRUE(QToolTip::text().contains("&lt;b&gt;tip")) << QToolTip::text().toStdString();
    });
    const QString tip = qt::Wrapped("many words in a row that do not fit\n\nend", QFont(), 100);
    EXPECT_LE(QFontMetrics(QFont()).size(0, tip).width(), 100) << tip.toStdString();
    EXPECT_TRUE(tip.endsWith("fit\n\nend")) << tip.toStdString();
}

// What a script does is what a person's hand does: only then do signals for a person come.
TEST_F(Controls, AreChosenAndDraggedByHand) {
    struct Watched : QSlider {
        using QSlider::QSlider;
        void mouseMoveEvent(QMouseEvent* event) override {
            ++moves;
            QSlider::mouseMoveEvent(event);
        }
        int moves = 0;
    };
    QDialog window;
    QComboBox list(&window);
    list.setObjectName("5");
    for (int i = 0; i < 40; ++i) list.addItem(QString::number(i % 3));
    Watched slider(Qt::Horizontal, &window);
    slider.setObjectName("6");
    slider.setFocusPolicy(Qt::StrongFocus);
    slider.setGeometry(0, 40, 90, 30); // of fewer pixels than positions
    slider.setRange(-20, 300);
    window.setModal(true);
    window.show();
    std::vector<int> chosen, changed;
    QObject::connect(
        &list, &QComboBox::activated, [&](int index) { chosen.push_back(index); });
    QObject::connect(&list, &QComboBox::currentIndexChanged,
                     [&](int index) { changed.push_back(index); });
    int released = 0;
    QObject::connect(&slider, &QSlider::sliderReleased, [&] { ++released; });
    for (const int index : {33, 0, 39}) {
        for (const Qt::UIEffect effect : {Qt::UI_General, Qt::UI_AnimateCombo}) // as desktops do
            QApplication::setEffectEnabled(effect, index == 0);
        user.Select(5, index);
    }
    EXPECT_EQ(chosen, (std::vector{33, 0, 39}));
    EXPECT_EQ(changed, chosen) << "nothing on the way";
    for (const auto& [to, at] : std::initializer_list<std::pair<int, int>>{
             {0, 0}, {113, 113}, {112, 112}, {300, 300}, {999, 300}, {-20, -20}}) {
        user.Drag(6, to);
        EXPECT_EQ(slider.value(), at);
        EXPECT_FALSE(slider.isSliderDown());
    }
    EXPECT_EQ(std::pair(slider.moves, released), std::pair(6, 6));
}

} // namespace
