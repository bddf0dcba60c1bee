// Data exchange, notifications and timers of dialogs.

#include <stdexcept>

#include "tests/support/Session.h"
#include "toolkit/data_exchange.h"
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
        if (notification.event == Event::CustomDraw) ++painted;
        static constexpr MessageRow<Sample> kMessages[] = {
            {1000, Event::Clicked, &Sample::OnCheck},
            {1008, Event::TextChanged, &Sample::OnText},
            {1029, Event::Clicked, &Sample::OnButton},
        };
        Dispatch(*this, kMessages, notification);
    }
    void OnCheck(Notification&) {
        UpdateData(true);
        notes.push_back("check " + std::to_string(check));
    }
    void OnText(Notification&) { notes.push_back("text"); }
    void OnButton(Notification&) { notes.push_back("button"); }
    void OnTimer(unsigned id) override {
        notes.push_back("tick " + std::to_string(id));
        if (onTick) onTick();
    }

    int32_t check = 1, radio = 2, painted = 0;
    std::string text = "50";
    std::vector<std::string> notes;
    std::function<void()> onTick;
};

class Dialogs : public Session {
protected:
    int Run(HeadlessDisplay::Script script) {
        display.OnNextDialog(std::move(script));
        return sample.DoModal();
    }
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
        sample.text = "50";
        sample.UpdateData(false); // which holds notifications back
        sample.radio = 1;
        sample.UpdateData(true);
        EXPECT_EQ(sample.radio, -1);
        display.Control(1008).SetWindowText("50"); // what it holds already, by the exchange
        sample.notes.push_back("by code");
        display.Control(1008).SetWindowText("61");
    });
    EXPECT_EQ(result, IDCANCEL);
    EXPECT_THAT(sample.notes, ElementsAre("text", "check 0", "by code", "text"));
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
        for (const auto& control : sample.GetControls())
            control->EnableWindow(true), control->ShowWindow(SW_SHOW);
        CWnd& button = display.Control(1029);
        display.DuringNextBox([&] { input::Click(button); });
        sample.MessageBox("A program that assists a person reaches below this.", "", MB_OK);
        Sample inner;
        display.OnNextDialog([&] { input::Click(button); });
        inner.DoModal();
    });
    EXPECT_THAT(sample.notes, IsEmpty());
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
        CWnd& control = display.Control(1000); // comes back before the handler ends
        display.Focus(control);
        sample.onTick = [&] { control.EnableWindow(false), control.EnableWindow(true); };
        input::Tick(sample, 1);
        EXPECT_EQ(display.Focused(), 1000);
    });
}

TEST_F(Dialogs, AFailingTimerShowsOneBoxAndACancelledDialogNone) {
    const auto tick = [&] { input::Tick(sample, 1); };
    Run([&] {
        sample.onTick = [] { throw std::runtime_error("lost"); };
        display.DuringNextBox(tick);
        tick();
        EXPECT_THAT(display.Boxes(), ElementsAre("[KVETMControl] lost"));
        sample.onTick = [&] {
            AfxGetApp()->CancelAll();
            EXPECT_EQ(sample.MessageBox("?", "", MB_YESNO), IDNO);
        };
        tick();
    });
    EXPECT_EQ(display.Boxes().size(), 1u);
}

TEST_F(Dialogs, TimersTickInOrderAlsoDuringABoxAndEndWithTheDialog) {
    const int result = Run([&] {
        sample.SetTimer(1, 600);
        sample.SetTimer(2, 500);
        display.Advance(599);
        EXPECT_THAT(sample.notes, ElementsAre("tick 2"));
        display.DuringNextBox([&] { display.Advance(1); });
        sample.MessageBox("text", nullptr, MB_OK);
        EXPECT_THAT(sample.notes, ElementsAre("tick 2", "tick 1"));
        sample.KillTimer(2);
        sample.onTick = [&] { sample.EndDialog(IDOK), sample.EndDialog(IDCANCEL); };
        display.Drag(1007, 9);
        EXPECT_GT(std::exchange(sample.painted, 0), 0);
        display.Advance(6000);
        input::Tick(sample, 1); // too late, both of them
        input::Paint(static_cast<CSliderCtrl&>(display.Control(1007)));
        EXPECT_EQ(sample.painted, 0);
    });
    EXPECT_EQ(result, IDOK);
    display.Advance(6000);
    EXPECT_THAT(sample.notes, ElementsAre("tick 2", "tick 1", "tick 1"));
    EXPECT_THAT(display.Boxes(), ElementsAre("[Error] text"));
}

} // namespace
