// The tab "General Control", as stories and tables.

#include <algorithm>

#include "tests/pages/PagesTest.h"

using ::testing::ElementsAre;
using ::testing::IsEmpty;

namespace {

class ControlPage : public PagesTest {
protected:
    IOrnKVETMSupp& Support() {
        return static_cast<IOrnKVETMSupp&>(*control->GetInterface("IOrnKVETMSupp"));
    }
    std::string StartStop() const {
        return display.Enabled(1030) ? display.Enabled(1031) ? "both" : "1030" : "1031";
    }
};

TEST_F(ControlPage, EnablesWhatTargetAndSelectionAllow) {
    const char* const etb = "Some controls are\r\ndisabled for ETB";
    const char* const tpiu = "Trigger controls are\r\ndisabled for TPIU";
    const std::string position = "1006 1003 1032 1007 1008 1005 1077 1004 ";
    constexpr uint32_t kEtb = ORN_FEATURE_ETB, kTpiu = ORN_FEATURE_TPIU;
    constexpr uint32_t kOn = ORN_CONTROL_ENABLE, kAddress = ORN_CONTROL_TRIGGER_ADDRESS;
    const struct {
        std::set<uint32_t> features;
        uint32_t word, state;
        std::string unusable, note;
    } rows[] = {
        {{kEtb}, kAddress, 4, "1029 1036 1061 1034 1035 " + position + "1002 1009 1030 1031", ""},
        {{}, kOn, 0, "1003 1005 1077 1004 1031", ""},
        {{}, kOn | ORN_CONTROL_TRIGGER_PIN, 4, "1077 1030", ""},
        {{}, kOn | kAddress, 2, "1031", ""},
        {{kEtb}, kOn | kAddress, 0, "1034 1006 1004 1031", etb},
        {{kTpiu}, kOn, 4, "1035 " + position + "1030", tpiu},
        {{kTpiu}, kOn | kAddress, 0, "1035 1006 1004 1031", tpiu},
        {{kEtb, kTpiu}, kOn | ORN_CONTROL_STOP_WHEN_FULL, 0, "1034 " + position + "1031", etb},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.unusable);
        host.features = row.features;
        host.values[ORN_VALUE_CONTROL] = row.word;
        host.state = row.state;
        OpenAnd([&] {
            EXPECT_EQ(Unusable(), row.unusable);
            EXPECT_EQ(Note(), row.note);
            // A disabled radio button keeps its selection.
            EXPECT_EQ(display.Checked(1034), (row.word & ORN_CONTROL_STOP_WHEN_FULL) != 0);
        });
    }
    EXPECT_EQ(std::ranges::count(host.TakeCalls(), "HasFeature(0x3000000)"), 0);
}

TEST_F(ControlPage, WithoutABoardThePageStaysDead) {
    ASSERT_TRUE(control->Init(0));
    for (const bool lost : {false, true}) { // the question is cancelled; the board got lost
        host.boardFile = "/none";
        EXPECT_TRUE(!lost || Support().InitBoardFile("", nullptr, 0, nullptr));
        host.boardFile.reset();
        g_ConfigAccepted = 1;
        Open(0, [&] {
            const std::string before = Unusable();
            const auto cancel = [&] {
                host.state = 0x6; // a tick looks at everything again meanwhile
                display.Advance(600);
                display.Click(IDCANCEL);
            };
            lost ? display.Answer(IDOK) : display.OnNextDialog(cancel);
            display.Click(1000);
            EXPECT_FALSE(display.Checked(1000) || CanApply());
            EXPECT_EQ(Unusable(), before);
            EXPECT_EQ(display.Boxes(),
                      std::vector<std::string>(lost, "[KVETMControl] InitBoardFile() failed."));
        });
    }
}

TEST_F(ControlPage, ServesTheDeferredQuestionAndClosesTheSheet) {
    ASSERT_TRUE(control->Init(0));
    for (const int button : {IDCANCEL, IDOK}) {
        SCOPED_TRACE(button);
        host.boardFile.reset();
        ASSERT_TRUE(g_Settings->ReadFromTarget());
        display.OnNextDialog([&] { // the sheet
            display.Tab(2);
            display.Advance(1200); // the question waits for the page
            EXPECT_EQ(g_BoardQueryPending, 1);
            display.Tab(0);
            display.Advance(599);
            EXPECT_TRUE(IsOpen());
            display.OnNextDialog([&] {
                display.Advance(1200); // ticks go on and open no second dialog
                display.Click(button);
            });
            display.Advance(1);
            EXPECT_FALSE(IsOpen());
        });
        int32_t mode = 7;
        EXPECT_EQ(Support().InitBoardFile("", nullptr, 0, &mode), button == IDOK);
        EXPECT_EQ(mode, button == IDOK ? 0 : -1);
        EXPECT_EQ(host.values[ORN_VALUE_CONTROL], button == IDOK ? ORN_CONTROL_ENABLE : 0);
        EXPECT_TRUE(g_Settings->Working == g_Settings->Snapshot);
    }
}

TEST_F(ControlPage, TheQuestionIsAskedOnceWhoeverAsks) {
    ASSERT_TRUE(control->Init(0));
    for (const int asked : {1029, 1000}) { // the button or the box, before the first tick
        SCOPED_TRACE(asked);
        host.boardFile.reset();
        host.values[ORN_VALUE_CONTROL] = asked == 1029 ? ORN_CONTROL_ENABLE : 0;
        ASSERT_TRUE(g_Settings->ReadFromTarget());
        if (asked == 1000) Support().InitBoardFile("", nullptr, 0, nullptr); // the other got lost
        display.OnNextDialog([&] {                                           // the sheet
            display.OnNextDialog([&] {
                display.Advance(1200);
                EXPECT_FALSE(control->Open()); // nor does the host get a second one
                EXPECT_FALSE(Support().InitBoardFile("", nullptr, 0, nullptr));
                display.Click(IDOK);
            });
            display.Click(asked);
            EXPECT_EQ(IsOpen(), asked == 1000); // the button is the question
            display.Advance(1200);
            display.Click(IDOK);
            EXPECT_EQ(std::ranges::count(display.Log(), "run 1001"), 1);
        });
        display.ClearLog();
        EXPECT_TRUE(Support().InitBoardFile("", nullptr, 0, nullptr));
        EXPECT_EQ(host.boardFile, "/none") << "settled and sent";
        EXPECT_EQ(g_BoardQueryPending, 0);
    }
    g_BoardQueryPending = 1; // a sheet that closes before its tick
    OpenAnd([] {});
    OpenAnd([&] {
        display.Advance(600);
        EXPECT_TRUE(IsOpen());
    });
}

TEST_F(ControlPage, AStateThatCannotBeToldIsReportedOnce) {
    host.values[ORN_VALUE_CONTROL] = ORN_CONTROL_ENABLE;
    Open(0, [&] {
        host.onCall = [](const std::string& call) {
            if (call == "GetTraceState") throw std::runtime_error("probe lost");
        };
        display.Answer(IDOK);
        display.Advance(3000);
        display.Click(1061);
        EXPECT_THAT(display.Boxes(), ElementsAre("[KVETMControl] probe lost"));
        host.onCall = nullptr;
        host.state = 0x6;
        display.Advance(600);
        EXPECT_EQ(StartStop(), "1031") << "and followed again";
    });
}

TEST_F(ControlPage, TicksFollowTheStateWordAndButtonsActAtOnce) {
    host.values[ORN_VALUE_CONTROL] = ORN_CONTROL_ENABLE;
    Open(0, [&] {
        for (const uint32_t state : {0x4u, 0x6u, 0x2u, 0x0u, 0x6u}) {
            host.state = state;
            display.Advance(600);
            EXPECT_EQ(StartStop(), (state & 2) != 0 ? "1031" : "1030") << state; // not the 4 alone
        }
        display.Tab(2);
        host.TakeCalls();
        host.state = 0;
        display.Advance(1800);
        EXPECT_THAT(host.TakeCalls(), IsEmpty()) << "behind another tab";
        display.Tab(0);
        display.Click(IDC_APPLY_NOW); // the timer goes on
        host.state = 0x6;
        display.Advance(600);
        EXPECT_EQ(StartStop(), "1031");

        host.state = 0;
        display.Advance(600);
        host.state = 0x4;
        display.Click(1030);
        EXPECT_EQ(StartStop(), "1031") << "without a tick";
        host.state = 0;
        display.OnNextDialog([&] { display.Click(IDOK); });
        display.Click(1029);
        EXPECT_FALSE(CanApply()) << "nothing has changed";
        display.Click(1031);
        EXPECT_THAT(host.TakeChanges(), ElementsAre("Command(start)", "Command(stop)"));
        host.state = 0x4;
        display.Advance(600);
        EXPECT_EQ(StartStop(), "1030") << "a press counts once";
        host.state = 0x2;
        display.Click(1030);
        display.Click(1000);
        display.Advance(600);
        EXPECT_FALSE(display.Enabled(1030)) << "a press behind which ETM was switched off";
        host.state = 0;
        display.Click(1000);
        host.TakeChanges();
        g_VETMTrace = nullptr; // nothing runs and nothing is sent
        for (const int id : {1030, 1061}) display.Click(id);
        EXPECT_EQ(StartStop(), "1030");
        EXPECT_THAT(host.TakeChanges(), IsEmpty());
    });
}

TEST_F(ControlPage, ABadTriggerAddressHoldsEverythingBack) {
    host.values[ORN_VALUE_CONTROL] = ORN_CONTROL_ENABLE | ORN_CONTROL_TRIGGER_ADDRESS;
    host.lines = {"ETM TRIGGER 0x100"};
    Open(0, [&] {
        display.Type(1077, "main");
        EXPECT_FALSE(CanApply()) << "typing an address alone";
        for (int i = 0; i < 4; ++i) display.Answer(IDOK);
        display.Tab(1);
        EXPECT_EQ(FrontTab(), 0);
        for (const int button : {1030, 1006, IDOK}) display.Click(button);
        EXPECT_TRUE(IsOpen());
        EXPECT_EQ(display.Boxes(), std::vector<std::string>(4, "[Cannot validate address] main"));
        EXPECT_THAT(host.TakeChanges(), IsEmpty());
        EXPECT_EQ(g_Settings->Working.TriggerAddress, "0x100");
        display.Type(1077, "0x200");
        display.Click(IDOK);
    });
    EXPECT_THAT(host.TakeChanges(), ElementsAre("Command(etm pc=none)", "Command(etm data=none)",
                                                "Command(etm trigger 0x200)"));
}

TEST_F(ControlPage, WhatIsNotUsedIsNeitherCheckedNorStored) {
    for (const uint32_t word : {uint32_t{0}, ORN_CONTROL_ENABLE | ORN_CONTROL_STOP_WHEN_FULL,
                                ORN_CONTROL_ENABLE | ORN_CONTROL_TRIGGER_PIN}) {
        SCOPED_TRACE(word);
        host.values[ORN_VALUE_CONTROL] = word;
        Open(0, [&] {
            display.Control(1077).SetWindowText("main");
            static_cast<CButton&>(display.Control(1002)).SetCheck(true);
            display.Click(IDOK);
            EXPECT_FALSE(IsOpen());
        });
        EXPECT_EQ(g_Settings->Working.TriggerAddress, "");
        EXPECT_EQ(g_Settings->Working.Accumulate, word != 0 ? 1 : 0);
    }
}

TEST_F(ControlPage, PcRangesRefuseTheTriggerOnAddress) {
    host.values[ORN_VALUE_CONTROL] = ORN_CONTROL_ENABLE | ORN_CONTROL_TRIGGER_PIN;
    for (const std::string line : {"PC = start 1", "PC = stop 2", "PC = to 1", "COMPLEX"}) {
        SCOPED_TRACE(line);
        host.lines = {"ETM " + line};
        const bool allowed = line == "PC = start 1";
        Open(0, [&] {
            if (!allowed) display.Answer(IDOK);
            display.Click(1005);
            EXPECT_EQ(g_Settings->Working.TriggerOnAddress, allowed ? 1 : 0);
            EXPECT_EQ(display.Boxes().size(), allowed ? 0u : 1u);
        });
    }
}

TEST_F(ControlPage, SliderAndEditShowOneValue) {
    const std::pair<const char*, int> rows[] = {{"100", 100}, {"101", 50}, {" 12x", 12},
                                                {"", 12},     {"x", 12},   {"-1", 50}};
    host.values[ORN_VALUE_CONTROL] = ORN_CONTROL_ENABLE;
    Open(0, [&] {
        display.Drag(1007, 50);
        display.Release(1007);
        EXPECT_FALSE(CanApply()) << "nothing has changed";
        for (const auto& [typed, position] : rows) {
            SCOPED_TRACE(typed);
            display.ClearLog();
            display.Type(1008, typed);
            EXPECT_EQ(display.Text(1008), position == 50 ? "50" : typed);
            EXPECT_EQ(display.Position(1007), position);
            EXPECT_EQ(g_Settings->Working.TriggerPosition, position);
            const bool beeps = typed == std::string() || typed == std::string("x");
            EXPECT_EQ(std::ranges::count(display.Log(), "beep"), beeps);
        }
        display.Type(1008, "");
        display.Click(IDC_APPLY_NOW); // the slider's position survives an empty edit
        EXPECT_EQ(display.Text(1008), "50");
        for (const int to : {130, 30}) {
            display.Drag(1007, to);
            EXPECT_EQ(display.Text(1008), to == 30 ? "30" : "100") << "while dragging";
        }
        display.Release(1007);
        EXPECT_TRUE(CanApply());
    });
}

} // namespace
