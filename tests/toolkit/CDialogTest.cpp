// Data exchange, notifications, timers and nesting of dialogs.

#include "toolkit/CDialog.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <stdexcept>

#include "toolkit/CWinApp.h"
#include "toolkit/data_exchange.h"
#include "toolkit/headless/HeadlessDisplay.h"
#include "toolkit/input.h"

using ::testing::ElementsAre;
using ::testing::IsEmpty;

namespace {

/// The General Control dialog with fields of its own: a check box, a radio group
/// with a push button behind it, an edit and a slider.
class Sample : public CDialog {
public:
    Sample() : CDialog(107) {}

    int32_t check = 1, radio = -1;
    std::string text = "50";
    std::vector<std::string> notes;
    std::function<void()> onTick;

protected:
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
    void OnTimer(unsigned id) override {
        notes.push_back("tick " + std::to_string(id));
        if (onTick) onTick();
    }

private:
    void OnCheck(Notification&) {
        UpdateData(true);
        notes.push_back("check " + std::to_string(check));
    }
    void OnText(Notification&) { notes.push_back("text"); }
    void OnThrow(Notification&) { throw std::runtime_error("thrown by a handler"); }
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
    sample.radio = 2;
    const int result = Run([&] {
        EXPECT_TRUE(display.Checked(1000));
        EXPECT_TRUE(display.Checked(1035));
        EXPECT_EQ(display.Text(1008), "50");
        display.Click(1034); // the others of the group go off by themselves
        EXPECT_FALSE(display.Checked(1035));
        display.Type(1008, "7");
        display.Click(1000);
        sample.UpdateData(true);
        EXPECT_EQ(sample.radio, 1);
        EXPECT_EQ(sample.text, "7");
        EXPECT_EQ(sample.check, 0);
        sample.radio = -1;
        sample.UpdateData(false);
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
        EXPECT_THAT(sample.notes, IsEmpty());
        display.Control(1008).SetWindowText("60"); // what it holds already
        EXPECT_THAT(sample.notes, IsEmpty());
        display.Control(1008).SetWindowText("61");
        EXPECT_THAT(sample.notes, ElementsAre("text"));
    });
}

TEST_F(Dialogs, WhatIsDisabledOrHiddenTakesNoInput) {
    Run([&] {
        display.Control(1000).EnableWindow(false);
        display.Click(1000);
        display.Control(1008).ShowWindow(SW_HIDE);
        display.Type(1008, "99");
        EXPECT_TRUE(display.Checked(1000));
        EXPECT_EQ(display.Text(1008), "50");
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
        EXPECT_THAT(sample.notes, ElementsAre("tick 2", "tick 1", "tick 1"));
    });
    display.Advance(6000);
    EXPECT_EQ(sample.notes.size(), 3u);
    EXPECT_THAT(display.Boxes(), ElementsAre("[Error] text"));
}

TEST_F(Dialogs, AnOuterDialogThatIsEndedWaitsForTheInnerOne) {
    Sample inner;
    std::vector<std::string> order;
    EXPECT_EQ(Run([&] {
                  display.OnNextDialog([&] {
                      sample.EndDialog(IDOK);
                      order.push_back("outer wished to end");
                      display.Click(1000); // the inner one still works
                      EXPECT_THAT(inner.notes, ElementsAre("check 0"));
                  });
                  inner.DoModal();
                  order.push_back("inner ended");
              }),
              IDOK);
    EXPECT_THAT(order, ElementsAre("outer wished to end", "inner ended"));
}

} // namespace
