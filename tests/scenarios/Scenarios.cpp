#include "tests/scenarios/Scenarios.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>

#include "toolkit/constants.h"

namespace {

constexpr int kApply = IDC_APPLY_NOW;

void Plain(RecordingHost&, const std::string&) {}

void Enabled(RecordingHost& host, const std::string&) {
    host.values[ORN_VALUE_CONTROL] = ORN_CONTROL_ENABLE;
}

void OnePairWithTrigger(RecordingHost& host, const std::string&) {
    host.values[ORN_VALUE_CONTROL] = ORN_CONTROL_ENABLE | ORN_CONTROL_TRIGGER_ADDRESS;
    host.lines = {"ETM TRIGGER 0x100", "ETM PC = start 0x10", "ETM DATA = all"};
    const size_t pairs = host.report.find("pairs: 4");
    host.report.replace(pairs, 8, "pairs: 1");
}

const char* const kRange =
    "[Conflicting Settings Used] Address range cannot be used if ETM trigger "
    "is enabled.\nDo you want to disable ETM trigger generation now?";

} // namespace

const std::vector<Scenario>& AllScenarios() {
    static const std::vector<Scenario> scenarios = {
        {"ARangeReachesTheTarget",
         Enabled,
         [](User& user, const std::string&) {
             EXPECT_FALSE(user.Enabled(kApply));
             user.Tab(1);
             user.Click(1017);
             EXPECT_TRUE(user.Enabled(1018));
             EXPECT_TRUE(user.Enabled(kApply));
             user.Type(1018, "0x1000");
             user.Type(1019, "0x2000");
             user.Click(IDOK);
         },
         {"Command(etm pc=from 0x1000)", "Command(etm pc=to 0x2000)", "Command(etm data=none)"},
         {}},

        {"CancelSendsNothing",
         Enabled,
         [](User& user, const std::string&) {
             user.Click(1002);
             user.Tab(1);
             user.Click(1012);
             user.Click(IDCANCEL);
         },
         {},
         {}},

        {"ABadAddressKeepsTheTab",
         Enabled,
         [](User& user, const std::string&) {
             user.Tab(1);
             user.Click(1013);
             user.Type(1018, "not a number");
             user.Answer(IDOK);
             user.Tab(0);
             EXPECT_EQ(user.TabInFront(), 1);
             user.Answer(IDOK);
             user.Click(IDOK); // stays open
             user.Type(1018, "0x40");
             user.Tab(0);
             EXPECT_EQ(user.TabInFront(), 0);
             user.CloseFrame();
         },
         {},
         {"[Cannot validate address] not a number", "[Cannot validate address] not a number"}},

        {"StopModeSliderAndEditGoOutOnce",
         Enabled,
         [](User& user, const std::string&) {
             EXPECT_TRUE(user.Checked(1061));
             user.Click(1034);
             EXPECT_FALSE(user.Checked(1061));
             EXPECT_EQ(user.Text(1008), "50");
             user.Drag(1007, 75);
             EXPECT_EQ(user.Text(1008), "75");
             user.Type(1008, "25");
             user.Click(kApply);
             EXPECT_FALSE(user.Enabled(kApply));
             user.Type(1008, "101"); // out of range: the middle
             EXPECT_EQ(user.Text(1008), "50");
             user.Click(IDOK);
         },
         {"SetValue(0x0,0x3)", "SetValue(0x2,0x600)", "SetValue(0x2,0x400)"},
         {}},

        {"StartAppliesFirstAndStopFollows",
         Enabled,
         [](User& user, const std::string&) {
             EXPECT_FALSE(user.Enabled(1031));
             user.Click(1002);
             user.Click(1030);
             user.Click(1006);
             user.Click(IDCANCEL);
         },
         {"SetValue(0x0,0x5)", "Command(start)", "Command(trigger force)"},
         {}},

        {"TheKeyboardStaysOnThePage",
         [](RecordingHost& host, const std::string&) {
             host.values[ORN_VALUE_CONTROL] = ORN_CONTROL_ENABLE;
             host.onCall = [&host](const std::string& call) { // bit 2: it runs
                 if (call == "Command(start)") host.state = 0x4;
                 if (call == "Command(stop)") host.state = 0;
             };
         },
         [](User& user, const std::string&) {
             user.Click(1030);
             EXPECT_EQ(user.Focus(), 1031); // the next one: it has just been enabled
             user.Click(1031);
             EXPECT_EQ(user.Focus(), 1030); // the one before
             user.Click(1002);
             user.Click(kApply);
             EXPECT_EQ(user.Focus(), IDC_TAB_CONTROL); // not OK, not Cancel
             user.Click(IDCANCEL);
         },
         {"Command(start)", "Command(stop)", "SetValue(0x0,0x5)"},
         {}},

        {"OnePairAsksWhatToGiveUp",
         OnePairWithTrigger,
         [](User& user, const std::string&) {
             user.Tab(1);
             user.Answer(IDNO);
             user.Click(1017); // a range beside the trigger: no
             EXPECT_TRUE(user.Checked(1013));
             EXPECT_FALSE(user.Checked(1017));
             user.Answer(IDYES);
             user.Click(1075); // the data range instead of both
             EXPECT_TRUE(user.Checked(1012));
             EXPECT_TRUE(user.Checked(1075));
             user.Type(1014, "0x2000");
             user.Type(1016, "0x2FFF");
             user.Tab(0); // which sees that the trigger was given up
             EXPECT_FALSE(user.Checked(1005));
             EXPECT_FALSE(user.Enabled(1077));
             user.Click(IDOK);
         },
         {"SetValue(0x0,0x1)", "Command(etm pc=all)", "Command(etm data=all)",
          "Command(etm data=from 0x2000)", "Command(etm data=to 0x2FFF)"},
         {kRange,
          "[Conflicting Settings Used] Only one address comparator pair is available.\nCannot use "
          "PC and data address ranges in same time.\n\nDo you want to disable the ETM trigger and "
          "PC address range?\n"}},

        {"TriggerOnAddressAgainstARange",
         [](RecordingHost& host, const std::string&) {
             host.values[ORN_VALUE_CONTROL] = ORN_CONTROL_ENABLE | ORN_CONTROL_TRIGGER_PIN;
             host.lines = {"ETM PC = from 1", "ETM PC = to 2"};
         },
         [](User& user, const std::string&) {
             user.Answer(IDOK);
             user.Click(1005);
             EXPECT_FALSE(user.Checked(1005));
             EXPECT_FALSE(user.Enabled(1077));
             EXPECT_FALSE(user.Enabled(kApply));
             user.CloseFrame();
         },
         {},
         {"[Conflicting Settings Used] ETM trigger cannot be enabled if PC address range is in "
          "use.\nClick ETM Trace Settings and change PC Tracing Mode."}},

        {"EnablingAsksForTheBoard",
         Plain,
         [](User& user, const std::string&) {
             EXPECT_FALSE(user.Enabled(1029));
             user.OnNextDialog([](User& dialog) { dialog.Click(IDCANCEL); });
             user.Click(1000);
             EXPECT_FALSE(user.Checked(1000));
             user.OnNextDialog([](User& dialog) {
                 EXPECT_EQ(dialog.Selection(1078), 0);
                 dialog.Click(IDOK);
             });
             user.Click(1000);
             EXPECT_TRUE(user.Checked(1000));
             EXPECT_TRUE(user.Enabled(1029));
             user.Click(IDOK);
         },
         {"Command(macro /none)", "Command(etm portsize=4)", "Command(etm halfrate=on)",
          "WriteSetting(KVETM,BoardFile,/none)", "Command(enable)", "SetValue(0x0,0x1)"},
         {}},

        {"ANewBoardFileIsMadeAndSelected",
         Enabled,
         [](User& user, const std::string& directory) {
             static std::string path;
             path = directory + "/my board.mac";
             user.OnNextDialog([](User& dialog) {
                 dialog.Answer(IDOK);
                 dialog.Click(1082); // no title yet
                 dialog.Type(1080, "Title=My Board\r\nmem_init 1\r\n");
                 dialog.Select(1065, 1);
                 dialog.AnswerSave(path.c_str());
                 dialog.Click(1082);
                 EXPECT_EQ(dialog.Selection(1078), 1);
                 dialog.Click(IDOK);
             });
             user.Click(1029);
             EXPECT_TRUE(user.Enabled(kApply));
             user.OnNextDialog([](User& dialog) {
                 EXPECT_EQ(dialog.Selection(1078), 1);
                 EXPECT_EQ(dialog.Text(1080), "Title=My Board\r\nmem_init 1\r\n");
                 dialog.Click(IDCANCEL);
             });
             user.Click(1029);
             user.Click(IDOK);
         },
         {"Command(macro {dir}my board.mac)", "Command(etm portsize=8)", "Command(etm halfrate=on)",
          "WriteSetting(KVETM,BoardFile,{dir}my board.mac)"},
         {"[Error] Please declare title of the board initialization file.\nThe title must begin "
          "with \"Title=\" keyword."}},

        {"ACortexM3TakesComparatorIndexes",
         [](RecordingHost& host, const std::string&) {
             host.values[ORN_VALUE_CONTROL] = ORN_CONTROL_ENABLE;
             host.features = {0x3000000, 0x4000000};
             host.report = "ETM architecture version: 3.5\n";
         },
         [](User& user, const std::string&) {
             EXPECT_FALSE(user.Enabled(1035));
             EXPECT_TRUE(user.Visible(1083));
             user.Tab(1);
             EXPECT_FALSE(user.Enabled(1017));
             user.Click(1015);
             user.Type(1018, "1");
             user.Type(1019, "0x2");
             user.Answer(IDOK);
             user.Click(IDOK);
             user.Type(1019, "2");
             user.Click(IDOK);
         },
         {"Command(etm pc=start 1)", "Command(etm pc=stop 2)", "Command(etm data=none)"},
         {"[Incorrect DWT comparator] DWT comparator index (0..3) must be used instead of "
          "address"}},
    };
    return scenarios;
}

std::vector<std::string> ExpectedChanges(const Scenario& scenario, const std::string& directory) {
#if defined(_WIN32)
    const std::string prefix = directory + "\\";
#else
    const std::string prefix = directory + "/";
#endif
    std::vector<std::string> changes = scenario.changes;
    for (std::string& change : changes) {
        const size_t place = change.find("{dir}");
        if (place != std::string::npos) change.replace(place, 5, prefix);
    }
    return changes;
}

std::vector<std::string> TakeJournal(const Scenario& scenario, RecordingHost& host,
                                     const std::string& directory) {
    if (const char* folder = std::getenv("KVETM_JOURNALS")) {
        std::ofstream journal(std::string(folder) + "/" + scenario.name + ".txt", std::ios::binary);
        for (std::string call : host.calls) {
            const size_t place = call.find(directory);
            if (place != std::string::npos) call.replace(place, directory.size() + 1, "{dir}");
            if (call != "GetTraceState") journal << call << '\n';
        }
    }
    return host.TakeChanges();
}
