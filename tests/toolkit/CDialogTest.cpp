// Data exchange, notifications and timers of dialogs.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <stdexcept>

#include "toolkit/CDialog.h"
#include "toolkit/CWinApp.h"
#include "toolkit/data_exchange.h"
#include "toolkit/headless/HeadlessDisplay.h"
#include "toolkit/input.h"

using ::testing::ElementsAre;
using ::testing::IsEmpty;

namespace {

/// The General Control dialog with fields of its own: a check box, a radio group
/// with a push button behind it, and an edit.
struct Sample : CDialog {
    Sample() : CDialog(107) {}

    void DoDataExchange(CDataExchange& exchange) override {
        DDX_Check(exchange, 1000, check);
        DDX_Radio(exchange, 1061, radio);
        DDX_Text(exchange, 1008, text);
        DDX_Text(exchange, 4711, text); // no such control: nothing happens
    }
    void OnNotify(Notification& notification) override {
        static constexpr MessageRow<Sample> kMessages[] = {
            {1000, Event::Clicked, &Sample::OnCheck},
            {1008, Event::TextChanged, &Sample::OnText},
            {1002, Event::Clicked, &Sample::OnThrow},
        };
        Dispatch(*this, kMessages, notification);
    }
    void OnCheck(Notification&) {
        UpdateData(true);
        notes.push_back("check " + std::to_string(check));
    }
    void OnText(Notification&) { notes.push_back("text"); }
    void OnThrow(Notification&) { throw std::runtime_error("thrown by a handler"); }
    void OnTimer(unsigned id) override {
        notes.push_back("tick " + std::to_string(id));
        if (onTick) onTick();
    }

    int32_t check = 1, radio = 2;
    std::string text = "50";
    std::vector<std::string> notes;
    std::function<void()> onTick;
};

class Dialogs : public ::testing::Test {
protected:
    Dialogs() { AfxGetApp()->UseDisplay(&display); }
    ~Dialogs() override {
        AfxGetApp()->UseDisplay(nullptr);
        EXPECT_THAT(display.ScriptErrors(), IsEmpty());
    }
    int Run(HeadlessDisplay::Script script) {
        display.OnNextDialog(std::move(script));
        return sample.DoModal();
    }
    HeadlessDisplay display;
    Sample sample;
};

TEST_F(Dialogs, FieldsReachControlsAndComeBack) {
    const int result = Run([&] {
        EXPECT_TRUE(display.Checked(1000));
        EXPECT_TRUE(display.Checked(1035));
        EXPECT_EQ(display.Text(1008), "50");
        display.Click(1034); // the others of the group go off by themselves
        EXPECT_FALSE(display.Checked(1035));
        display.Type(1008, "7");
        display.Click(1000);
        EXPECT_EQ(sample.radio, 1);
        EXPECT_EQ(sample.text, "7");
        sample.radio = -1;
        sample.UpdateData(false);
        sample.radio = 1;
        sample.UpdateData(true);
        EXPECT_EQ(sample.radio, -1);
    });
    EXPECT_EQ(result, IDCANCEL);
    EXPECT_THAT(sample.notes, ElementsAre("text", "check 0"));
}

TEST_F(Dialogs, AnExchangeHoldsNotificationsBackAndCodeOutsideItDoesNot) {
    Run([&] {
        sample.text = "60";
        sample.UpdateData(false);
        display.Control(1008).SetWindowText("60"); // what it holds already
        EXPECT_THAT(sample.notes, IsEmpty());
        display.Control(1008).SetWindowText("61");
        EXPECT_THAT(sample.notes, ElementsAre("text"));
    });
}

TEST_F(Dialogs, InputForWhatCannotBeUsedIsIgnored) {
    Run([&] {
        for (const bool hidden : {false, true}) {
            for (const auto& control : sample.GetControls()) {
                control->EnableWindow(hidden);
                control->ShowWindow(hidden ? SW_HIDE : SW_SHOW);
            }
            for (const int id : {1000, 1034}) display.Click(id);
            display.Type(1008, "9");
            display.Drag(1007, 9);
            EXPECT_TRUE(display.Checked(1000) && display.Checked(1035));
            EXPECT_EQ(display.Text(1008), "50");
            EXPECT_EQ(display.Position(1007), 0);
        }
    });
    EXPECT_THAT(sample.notes, IsEmpty());
}

TEST_F(Dialogs, AnExceptionOfAHandlerEndsInABox) {
    Run([&] {
        display.Click(1002);
        display.Click(1000); // and the dialog goes on
    });
    EXPECT_THAT(display.Boxes(), ElementsAre("[KVETMControl] thrown by a handler"));
    EXPECT_THAT(sample.notes, ElementsAre("check 0"));
}

TEST_F(Dialogs, TheKeyboardLeavesAControlThatCantBeUsed) {
    struct {
        std::vector<int> gone; // the last one has the keyboard
        int next;
    } const rows[] = {
        {{1030}, 1031},       {{1031}, 1083},             // an edit that only shows is a stop too
        {{1083, 1031}, 1030}, {{1083, 1031, 1030}, 1009}, // the nearest before
        {{1006}, 1007},                                   // frames and texts are none
        {{1029}, 1035},                                   // of a group the checked one,
        {{1035, 1029}, 1061},                             // or the first that can be used,
        {{1061}, 1035},                                   // which takes over within the group
        {{1034}, 1035},       {{1035, 1034, 1061}, 1006},
    };
    Run([&] {
        for (const bool hides : {false, true})
            for (const auto& row : rows) {
                const auto change = [&](int id, bool usable) {
                    CWnd& control = display.Control(id);
                    hides ? control.ShowWindow(usable ? SW_SHOW : SW_HIDE)
                          : control.EnableWindow(usable);
                };
                display.Control(1083).ShowWindow(SW_SHOW);
                display.Focus(display.Control(row.gone.back()));
                for (const int id : row.gone) change(id, false);
                EXPECT_EQ(display.Focused(), row.next) << row.gone.back() << hides;
                for (const int id : row.gone) change(id, true);
                EXPECT_EQ(display.Focused(), row.next) << row.gone.back() << hides;
            }
    });
}

TEST_F(Dialogs, TimersTickInOrderAlsoDuringABoxAndEndWithTheDialog) {
    Run([&] {
        sample.SetTimer(1, 600);
        sample.SetTimer(2, 500);
        display.Advance(599);
        EXPECT_THAT(sample.notes, ElementsAre("tick 2"));
        display.DuringNextBox([&] { display.Advance(1); });
        sample.MessageBox("text", nullptr, MB_OK);
        EXPECT_THAT(sample.notes, ElementsAre("tick 2", "tick 1"));
        sample.KillTimer(2);
        sample.onTick = [&] { sample.EndDialog(IDOK); };
        display.Advance(6000);
    });
    display.Advance(6000);
    EXPECT_THAT(sample.notes, ElementsAre("tick 2", "tick 1", "tick 1"));
    EXPECT_THAT(display.Boxes(), ElementsAre("[Error] text"));
}

} // namespace
