// The tab "ETM Trace Settings": what can be used, who gets the comparators, and what
// is stored.

#include "tests/pages/PagesTest.h"

using ::testing::IsEmpty;

namespace {

constexpr int kRadios[] = {1030, 1012, 1013, 1015, 1017, 1022, 1024}; // by PC mode
constexpr int kValues = 1026, kLimit = 1075;

class TriggerPage : public PagesTest {
protected:
    TriggerPage() { host.values[ORN_VALUE_CONTROL] = ORN_CONTROL_ENABLE; }

    /// What the target reports; `pc` may be "complex".
    void SetTarget(const std::string& architecture, int pairs, int dataComparators,
                   const std::string& pc, const std::string& data) {
        host.report = "ETM architecture version: " + architecture +
                      "\nNumber of address comparator pairs: " + std::to_string(pairs) +
                      "\nNumber of data comparators: " + std::to_string(dataComparators) + "\n";
        host.lines = {pc == "complex" ? "ETM COMPLEX" : "ETM PC = " + pc, "ETM DATA = none",
                      "ETM DATA = " + data, "ETM TRIGGER 1"};
    }

    int PcMode() const {
        for (int mode = 0; mode < 7; ++mode)
            if (display.Checked(kRadios[mode])) return mode;
        return -1;
    }
};

TEST_F(TriggerPage, EnablesWhatChipAndSelectionAllow) {
    const std::string nothing = "1014 1016 1028 1018 1020 1019 1025 1026 1027 1075 1029 1021";
    const struct {
        const char* architecture;
        int pairs, dataComparators;
        bool cortexM3, enabled;
        const char *pc, *data;
        std::string unusable;
    } rows[] = {
        {"1.3", 4, 2, true, false, "from 1", "from 1", "1011 1030 1012 1013 1015 1017 " + nothing},
        {"1.3", 4, 2, false, true, "all", "none", "1030 1014 1016 1018 1019 1075"},
        {"1.2", 1, 0, false, true, "start 1", "addr", "1030 1014 1016 1019"},
        {"3.0", 1, 0, false, true, "to 1", "to 2", "1030"},
        {"1.1", 4, 0, false, true, "stop 1", "all", "1030 1013 1015 1017 1014 1016 1028 1020"},
        {"1.3", 0, 0, false, true, "none", "all", "1030 1013 1015 1017 " + nothing},
        {"1.3", 0, 2, false, true, "none", "to 1", "1030 1013 1015 1017 1028 1018 1020 1019 1075"},
        {"1.0", 0, 0, true, true, "start 2", "none",
         "1017 1014 1016 1019 1025 1026 1027 1075 1029 1021"},
        {"3.5", 2, 0, true, true, "all", "none", "1014 1016 1018 1019 1075 1083"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.unusable);
        SetTarget(row.architecture, row.pairs, row.dataComparators, row.pc, row.data);
        host.features = {row.cortexM3 ? ORN_FEATURE_CORTEX_M3 : 0};
        host.values[ORN_VALUE_CONTROL] = row.enabled ? ORN_CONTROL_ENABLE : 0;
        Open(1, [&] {
            EXPECT_EQ(Unusable(), row.unusable);
            EXPECT_EQ(Note(), row.enabled && row.cortexM3
                                  ? "For Cortex-M3 use DWT comparator index (0..3)\r\n"
                                    "in Begin and End address fields."
                                  : "");
        });
    }
}

TEST_F(TriggerPage, AsksWhoGetsTheComparators) {
    const std::string onePair = "[Conflicting Settings Used] Only one address comparator pair is "
                                "available.\nCannot use ";
    const std::string ranges = onePair + "PC and data address ranges in same time.\n\n"
                                         "Do you want to disable the ";
    const std::map<char, std::string> boxes = {
        {'b', "[Conflicting Settings Used] Address range cannot be used if ETM trigger is "
              "enabled.\nDo you want to disable ETM trigger generation now?"},
        {'d', ranges + "data address range?\n"},
        {'p', ranges + "PC address range?\n"},
        {'2', ranges + "ETM trigger and PC address range?\n"},
        {'t', onePair + "ETM trigger and data address range in same time.\n\n"
                        "Do you want to disable the ETM trigger?\n"}};
    const uint32_t trigger = ORN_CONTROL_TRIGGER_ADDRESS;
    const uint32_t idle =
        ORN_CONTROL_TRIGGER_ADDRESS | ORN_CONTROL_STOP_WHEN_FULL; // not in its stop mode
    const struct {
        int pairs;
        const char *pc, *data; // before
        uint32_t word;
        int click;
        std::string questions;
        std::vector<int> answers;
        int pcMode, triggerOnAddress, limit; // behind
        bool modified;
    } rows[] = {
        {2, "from 1", "from 1", ORN_CONTROL_TRIGGER_PIN, 1015, "", {}, 3, 0, 1, true},
        {2, "all", "none", trigger, 1017, "b", {IDYES}, 4, 0, 0, true},
        {2, "all", "none", trigger, 1015, "b", {IDCANCEL}, 1, 1, 0, false},
        {1, "all", "none", trigger, 1013, "", {}, 2, 1, 0, true}, // start lives beside the trigger
        {1, "all", "from 1", 0, 1013, "d", {IDNO}, 1, 0, 1, false},
        {1, "start 1", "from 1", trigger, 1015, "bd", {IDYES, IDNO}, 2, 0, 1, false},
        {1, "start 1", "all", 0, kLimit, "p", {IDNO}, 2, 0, 0, false},
        {1, "start 1", "all", idle, kLimit, "p", {IDYES}, 1, 0, 1, true},
        {1, "none", "all", trigger, kLimit, "t", {IDYES}, 1, 0, 1, true},
        {1, "start 1", "all", trigger, kLimit, "2", {IDNO}, 2, 1, 0, false},
        {1, "stop 1", "all", trigger, kLimit, "bp", {IDYES, IDYES}, 1, 0, 1, true},
        {1, "start 1", "from 1", 0, kValues, "d", {IDNO}, 2, 0, 1, false},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE("row " + std::to_string(&row - rows));
        SetTarget("1.3", row.pairs, 0, row.pc, row.data);
        host.values[ORN_VALUE_CONTROL] = ORN_CONTROL_ENABLE | row.word;
        Open(1, [&] {
            for (const int answer : row.answers) display.Answer(answer);
            display.Click(row.click);
            std::vector<std::string> asked;
            for (const char question : row.questions) asked.push_back(boxes.at(question));
            EXPECT_EQ(display.Boxes(), asked);
            EXPECT_EQ(PcMode(), row.pcMode);
            EXPECT_EQ(g_Settings->Working.TriggerOnAddress, row.triggerOnAddress);
            EXPECT_EQ(display.Checked(kLimit), row.limit != 0);
            EXPECT_EQ(CanApply(), row.modified);
            // A refusal takes back what needs comparators, and no other click.
            EXPECT_EQ(display.Checked(kValues), row.data[0] != 'n' && row.click != kValues);
        });
    }
}

TEST_F(TriggerPage, ABadEntryKeepsThePageAndTheSettings) {
    const std::string bad = "[Cannot validate address] ", empty = bad + "Address entry is empty";
    const std::string noIndex =
        "[Incorrect DWT comparator] DWT comparator index (0..3) must be used "
        "instead of address";
    const struct {
        bool cortexM3;
        int click, edit;       // click first, if not 0
        std::string text, box; // box empty: accepted
    } rows[] = {{false, 0, 1014, "a", bad + "a"},    {false, 0, 1016, "", empty},
                {false, 0, 1019, "unused", ""},      {false, 1015, 1019, "c", bad + "c"},
                {false, kLimit, 1014, "unused", ""}, {true, 0, 1018, "0", ""},
                {true, 0, 1018, " \t3 \n", ""},      {true, 0, 1018, "4", noIndex},
                {true, 0, 1018, "\xb2", noIndex},    {true, 0, 1018, "   ", empty}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.text);
        host.features = {row.cortexM3 ? ORN_FEATURE_CORTEX_M3 : 0};
        host.lines = {"ETM PC = start 1", "ETM DATA = from 2", "ETM DATA = to 3"};
        if (row.cortexM3) host.lines.resize(1);
        Open(1, [&] {
            if (row.click != 0) display.Click(row.click);
            display.Control(row.edit).SetWindowText(row.text);
            jTraceState expected = g_Settings->Working;
            const bool accepted = row.box.empty();
            if (!accepted) display.Answer(IDOK);
            display.Tab(0);
            EXPECT_EQ(FrontTab(), accepted ? 0 : 1);
            EXPECT_EQ(display.Boxes(), std::vector<std::string>(accepted ? 0 : 1, row.box));
            if (accepted && row.edit == 1018) expected.PcBegin = row.text;
            if (row.click == kLimit) expected.DataMode = 3;
            EXPECT_TRUE(g_Settings->Working == expected);
        });
    }
}

TEST_F(TriggerPage, WhatIsUsedAloneIsStored) {
    host.lines = {"ETM DATA = from 1", "ETM DATA = to 2"};
    Open(1, [&] {
        for (const int id : {kValues, 1027}) display.Click(id);
        display.Tab(0);
        EXPECT_EQ(g_Settings->Working.DataMode, 0) << "a range with nothing to capture";
    });
    for (const uint32_t word : {ORN_CONTROL_ENABLE, 0u}) { // complex; and a trace that is disabled
        host.values[ORN_VALUE_CONTROL] = word;
        host.lines = {"ETM PC = from x"};
        if (word != 0) host.lines.push_back("ETM COMPLEX");
        Open(1, [&] {
            EXPECT_EQ(PcMode(), word != 0 ? 5 : 4);
            display.Control(1019).SetWindowText("y");
            display.Click(IDOK);
            EXPECT_FALSE(IsOpen());
        });
        EXPECT_EQ(g_Settings->Working.PcBegin, "x");
        EXPECT_EQ(g_Settings->Working.PcEnd, "");
        EXPECT_THAT(host.TakeChanges(), IsEmpty());
    }
}

} // namespace
