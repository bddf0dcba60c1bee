// The tab "ETM Trace Settings": what can be used, who gets the comparators, and what
// is stored.

#include "tests/pages/PagesTest.h"

using ::testing::ElementsAre;
using ::testing::ElementsAreArray;
using ::testing::IsEmpty;

namespace {

constexpr int kRadios[] = {1030, 1012, 1013, 1015, 1017, 1022, 1024}; // by PC mode
constexpr int kValues = 1026, kAddresses = 1027, kLimit = 1075;

class TriggerPage : public PagesTest {
protected:
    TriggerPage() { host.values[0] = kEnable; }

    void SetChip(const char* architecture, int pairs, int dataComparators) {
        host.report = std::string("ETM architecture version: ") + architecture +
                      "\nNumber of address comparator pairs: " + std::to_string(pairs) +
                      "\nNumber of data comparators: " + std::to_string(dataComparators) + "\n";
    }

    /// The settings that the target reports; `pc` may be "complex".
    void SetLines(const std::string& pc, const std::string& data) {
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
        bool cortexM3;
        uint32_t word;
        const char *pc, *data;
        std::string unusable;
    } rows[] = {
        {"1.3", 4, 2, true, 0, "from 1", "from 1", "1011 1030 1012 1013 1015 1017 " + nothing},
        {"1.3", 4, 2, false, kEnable, "all", "none", "1030 1014 1016 1018 1019 1075"},
        {"1.2", 1, 0, false, kEnable, "start 1", "addr", "1030 1014 1016 1019"},
        {"3.0", 1, 0, false, kEnable, "to 1", "to 2", "1030"},
        {"1.1", 4, 0, false, kEnable, "stop 1", "all", "1030 1013 1015 1017 1014 1016 1028 1020"},
        {"1.3", 0, 0, false, kEnable, "none", "all", "1030 1013 1015 1017 " + nothing},
        {"1.3", 0, 2, false, kEnable, "none", "to 1",
         "1030 1013 1015 1017 1028 1018 1020 1019 1075"},
        {"1.3", 4, 2, false, kEnable, "complex", "none", "1030 1014 1016 1018 1019 1075"},
        {"1.0", 0, 0, true, kEnable, "start 2", "none",
         "1017 1014 1016 1019 1025 1026 1027 1075 1029 1021"},
        {"3.5", 2, 0, true, kEnable, "all", "none", "1014 1016 1018 1019 1075 1083"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.unusable);
        SetChip(row.architecture, row.pairs, row.dataComparators);
        host.features = {row.cortexM3 ? kCortexM3 : 0};
        host.values[0] = row.word;
        SetLines(row.pc, row.data);
        Open(1, [&] {
            const bool on = row.word != 0;
            EXPECT_EQ(Unusable(), row.unusable);
            EXPECT_EQ(Note(), on && row.cortexM3
                                  ? "For Cortex-M3 use DWT comparator index (0..3)\r\n"
                                    "in Begin and End address fields."
                                  : "hidden");
        });
    }
}

TEST_F(TriggerPage, AsksWhoGetsTheComparators) {
    using Boxes = std::vector<std::string>;
    const std::string title = "[Conflicting Settings Used] ";
    const std::string byTrigger = title +
                                  "Address range cannot be used if ETM trigger is enabled.\n"
                                  "Do you want to disable ETM trigger generation now?";
    const std::string onePair =
        title + "Only one address comparator pair is available.\nCannot use ";
    const std::string ranges = onePair + "PC and data address ranges in same time.\n\n"
                                         "Do you want to disable the ";
    const std::string dropDataRange = ranges + "data address range?\n";
    const std::string dropPc = ranges + "PC address range?\n";
    const std::string dropBoth = ranges + "ETM trigger and PC address range?\n";
    const std::string dropTrigger = onePair + "ETM trigger and data address range in same time.\n\n"
                                              "Do you want to disable the ETM trigger?\n";
    const uint32_t trigger = kTriggerOnAddress;
    const uint32_t idle = kTriggerOnAddress | kStopWhenFull; // not in its stop mode
    const struct {
        int pairs;
        const char *pc, *data; // before
        uint32_t word;
        int click;
        Boxes questions;
        std::vector<int> answers;
        int pcMode, triggerOnAddress, limit; // behind
        bool modified;
    } rows[] = {
        {2, "from 1", "from 1", kTriggerPin, 1015, {}, {}, 3, 0, 1, true},
        {2, "all", "none", trigger, 1017, {byTrigger}, {IDNO}, 1, 1, 0, false},
        {2, "all", "none", trigger, 1017, {byTrigger}, {IDYES}, 4, 0, 0, true},
        {2, "all", "none", trigger, 1015, {byTrigger}, {IDCANCEL}, 1, 1, 0, false},
        {1, "all", "none", trigger, 1013, {}, {}, 2, 1, 0, true}, // start lives beside the trigger
        {1, "all", "from 1", 0, 1013, {dropDataRange}, {IDNO}, 1, 0, 1, false},
        {1, "all", "from 1", 0, 1017, {dropDataRange}, {IDYES}, 4, 0, 0, true},
        // A Yes to the first question stands.
        {1,
         "start 1",
         "from 1",
         trigger,
         1015,
         {byTrigger, dropDataRange},
         {IDYES, IDNO},
         2,
         0,
         1,
         false},
        {1, "start 1", "all", 0, kLimit, {dropPc}, {IDNO}, 2, 0, 0, false},
        {1, "start 1", "all", idle, kLimit, {dropPc}, {IDYES}, 1, 0, 1, true},
        {1, "none", "all", trigger, kLimit, {dropTrigger}, {IDYES}, 1, 0, 1, true},
        {1, "start 1", "all", trigger, kLimit, {dropBoth}, {IDNO}, 2, 1, 0, false},
        {1, "start 1", "all", trigger, kLimit, {dropBoth}, {IDYES}, 1, 0, 1, true},
        {1, "stop 1", "all", trigger, kLimit, {byTrigger, dropPc}, {IDYES, IDYES}, 1, 0, 1, true},
        {1, "start 1", "from 1", 0, kValues, {dropDataRange}, {IDNO}, 2, 0, 1, false},
        {1, "all", "all", 0, kLimit, {}, {}, 1, 0, 1, true},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE("row " + std::to_string(&row - rows));
        SetChip("1.3", row.pairs, 0);
        host.values[0] = kEnable | row.word;
        SetLines(row.pc, row.data);
        Open(1, [&] {
            for (const int answer : row.answers) display.Answer(answer);
            display.Click(row.click);
            EXPECT_THAT(display.Boxes(), ElementsAreArray(row.questions));
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
    host.lines = {"ETM PC = start 1", "ETM DATA = from 2", "ETM DATA = to 3"};
    const struct {
        int click; // first, if not 0
        int edit;
        const char *text, *refused; // null: accepted, as it is not used
    } rows[] = {{0, 1014, "a", "a"},    {0, 1016, "", "Address entry is empty"},
                {0, 1018, "b", "b"},    {0, 1019, "unused", nullptr},
                {1015, 1019, "c", "c"}, {kLimit, 1014, "unused", nullptr}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.text);
        Open(1, [&] {
            if (row.click != 0) display.Click(row.click);
            display.Control(row.edit).SetWindowText(row.text);
            const jTraceState before = g_Settings->Working;
            if (row.refused != nullptr) display.Answer(IDOK);
            display.Tab(0);
            EXPECT_EQ(FrontTab(), row.refused != nullptr ? 1 : 0);
            if (row.refused != nullptr) {
                EXPECT_THAT(display.Boxes(),
                            ElementsAre(std::string("[Cannot validate address] ") + row.refused));
                EXPECT_TRUE(g_Settings->Working == before);
            }
            EXPECT_EQ(g_Settings->Working.PcEnd, before.PcEnd);
            EXPECT_EQ(g_Settings->Working.DataBegin, before.DataBegin);
        });
    }
}

TEST_F(TriggerPage, StoresTheDataModeOfTheBoxes) {
    const struct {
        const char* before;
        std::vector<int> clicks;
        int32_t mode;
    } rows[] = {{"none", {}, 0},
                {"none", {kAddresses}, 1},
                {"none", {kValues}, 2},
                {"none", {kValues, kAddresses, kLimit}, 7},
                {"from 1", {kValues}, 5},
                {"from 1", {kValues, kAddresses}, 0}}; // a range with nothing to capture
    for (const auto& row : rows) {
        SCOPED_TRACE(row.mode);
        SetLines("none", row.before);
        Open(1, [&] {
            for (const int id : row.clicks) display.Click(id);
            for (const int id : {1014, 1016}) display.Type(id, "1");
            display.Tab(0);
            EXPECT_EQ(g_Settings->Working.DataMode, row.mode);
        });
    }
}

TEST_F(TriggerPage, WhatThePageDoesNotUseSurvives) {
    for (const uint32_t word : {kEnable, 0u}) { // complex; and a trace that is disabled
        host.values[0] = word;
        SetLines("from x", "none");
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

TEST_F(TriggerPage, CortexM3TakesComparatorIndexes) {
    const char* const incorrect = "[Incorrect DWT comparator] DWT comparator index (0..3) must be "
                                  "used instead of address";
    const char* const empty = "[Cannot validate address] Address entry is empty";
    const struct {
        const char *text, *box; // null: accepted
    } rows[] = {{"0", nullptr},    {"3", nullptr},      {" \t2", nullptr},  {"  3 \n", nullptr},
                {"4", incorrect},  {"10", incorrect},   {"0x1", incorrect}, {"1 2", incorrect},
                {"-1", incorrect}, {"\xb2", incorrect}, {"", empty},        {"   ", empty}};
    host.features = {kCortexM3};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.text);
        SetLines("start 1", "none");
        Open(1, [&] {
            display.Type(1018, row.text);
            if (row.box != nullptr) display.Answer(IDOK);
            display.Tab(0);
            EXPECT_EQ(FrontTab(), row.box != nullptr ? 1 : 0);
            EXPECT_EQ(g_Settings->Working.PcBegin, row.box != nullptr ? "1" : row.text);
            if (row.box != nullptr) {
                EXPECT_THAT(display.Boxes(), ElementsAre(row.box));
            }
        });
    }
}

} // namespace
