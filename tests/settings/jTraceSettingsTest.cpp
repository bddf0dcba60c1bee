// The record itself: attributes, texts and lists of choices.

#include "settings/jTraceSettings.h"

#include <gtest/gtest.h>

#include <sstream>

#include "frame/interfaces/IOrnAPIBase.h"
#include "tests/settings/StateText.h"

namespace {

TEST(Settings, HoldAValuePerAttribute) {
    std::istringstream names("- Enable StopMode TriggerPin TriggerOnAddress TriggerPosition "
                             "Accumulate - PortSizeIndex PortModeIndex CprtModeIndex "
                             "ContextIdIndex StallProcessor CycleAccurate BranchOutput PcMode "
                             "DataMode ManualMode - - - - -");
    std::string name;
    for (int32_t id = 0; names >> name; ++id) {
        SCOPED_TRACE(id);
        jTraceSettings settings;
        const bool has = name != "-";
        EXPECT_EQ(settings.GetAttribute(id), has ? 0 : -1);
        EXPECT_EQ(settings.SetAttribute(id, 500), has);
        EXPECT_EQ(settings.GetAttribute(id), has ? 500 : -1);
        EXPECT_EQ(Difference(settings.Snapshot, settings.Working), has ? name + "=500" : "");
        EXPECT_EQ(settings.IsModified(), has);
        settings.DiscardChanges();
        EXPECT_EQ(settings.Working, settings.Snapshot);

        jTraceAttribute row{99, 0, 0, 0, 0, 0};
        const bool hasRow = id >= 1 && id <= 17;
        EXPECT_EQ(settings.GetAttributeInfo(id, row), hasRow);
        EXPECT_EQ(row.Id, hasRow ? id : 99);
    }
}

TEST(Settings, HoldTexts) {
    jTraceSettings settings;
    char text[260] = "kept";
    EXPECT_FALSE(settings.GetTextAttribute(20, text, sizeof text));
    EXPECT_FALSE(settings.SetTextAttribute(20, "new"));
    EXPECT_STREQ(text, "kept");
    EXPECT_EQ(Difference({}, settings.Working), "BoardFile=---");
    EXPECT_TRUE(settings.SetTextAttribute(TA_BOARD_FILE, "/startup"));
    EXPECT_TRUE(settings.GetTextAttribute(TA_BOARD_FILE, text, 4));
    EXPECT_STREQ(text, "/st");
    EXPECT_TRUE(settings.SetTextAttribute(TA_BOARD_FILE, nullptr));
    EXPECT_EQ(Difference({}, settings.Working), "");

    const auto directory = [&settings, &text] {
        EXPECT_TRUE(settings.GetTextAttribute(TA_BOARD_DIRECTORY, text, sizeof text));
        return std::string(text);
    };
    OrnDLL()->SetModulePath("");
    EXPECT_EQ(directory(), "");
    OrnDLL()->SetModulePath("C:\\tools\\debugger\\module.dll");
    EXPECT_EQ(directory(), "C:\\tools\\debugger");
    OrnDLL()->SetModulePath("/other/module.so");
    EXPECT_EQ(directory(), "C:\\tools\\debugger") << "derived once";
    EXPECT_TRUE(settings.SetTextAttribute(TA_BOARD_DIRECTORY, "/boards"));
    EXPECT_EQ(directory(), "/boards");
    EXPECT_TRUE(settings.SetTextAttribute(TA_BOARD_DIRECTORY, ""));
    EXPECT_EQ(directory(), "/other");
    OrnDLL()->SetModulePath("");
}

/// "text=value" of each entry of a list, separated by "; ".
std::string Choices(jTraceSettings& settings, int32_t id) {
    std::string dump;
    char text[64] = "kept";
    uint32_t value = 4711;
    const int32_t count = settings.GetChoiceCount(id);
    for (const int32_t outside : {-1, count, INT32_MAX, INT32_MIN})
        EXPECT_FALSE(settings.GetChoice(id, outside, text, sizeof text, value)) << outside;
    EXPECT_EQ(text + std::to_string(value), "kept4711");
    for (int32_t index = 0; index < count; ++index) {
        EXPECT_TRUE(settings.GetChoice(id, index, text, sizeof text, value));
        dump += std::string(index == 0 ? "" : "; ") + text + "=" + std::to_string(value);
    }
    return count < 0 ? "no list" : dump;
}

TEST(Settings, OfferWhatTheChipOffers) {
    struct Row {
        int32_t id;
        const char* chip;
        const char* choices;
    };
    const Row rows[] = {
        {8, "PortSizeMask=0x88", "4 bits=4; 8 bits=8"},
        {8, "PortSizeMask=0x80000005", "1 bits=1; 3 bits=3; 32 bits=32"},
        {8, "", ""},
        {9, "ArchVersion=31", "Half-rate clocking=8192"},
        {9, "ArchVersion=30 NormalFormatSupported=1", "Half-rate clocking=8192"},
        {9, "ArchVersion=29 HalfRateSupported=1", ""},
        {9, "ArchVersion=12 HalfRateSupported=1 NormalFormatSupported=1",
         "Normal, Half-rate clocking=8192; Normal, no Half-rate clocking=0"},
        {9, "NormalFormatSupported=1", "Normal, no Half-rate clocking=0"},
        {10, "", "CPRT not traced=0; All CPRTs traced=2; CPRT traced when ViewData active=524290"},
        {11, "",
         "No context ID tracing=0; context ID bits [7:0] traced=16384; "
         "context ID bits [15:0] traced=32768; context ID bits [31:0] traced=49152"},
        {7, "", "no list"},
        {12, "", "no list"},
    };
    for (const Row& row : rows) {
        jTraceSettings settings;
        Edit(settings.Snapshot, row.chip);
        EXPECT_EQ(Choices(settings, row.id), row.choices) << row.id << " " << row.chip;
    }
    char text[5];
    uint32_t value = 0;
    EXPECT_TRUE(jTraceSettings().GetChoice(TA_CPRT_MODE, 2, text, sizeof text, value));
    EXPECT_STREQ(text, "CPRT");
}

TEST(Settings, DefaultToTheWidestPort) {
    jTraceSettings settings;
    jTraceAttribute row;
    for (const auto& [mask, max, byDefault] : {std::tuple{0u, 2, 1}, {0x8088u, 2, 2}, {8u, 0, 0}}) {
        settings.Snapshot.PortSizeMask = mask;
        settings.GetChoiceCount(TA_PORT_SIZE);
        settings.GetAttributeInfo(TA_PORT_SIZE, row);
        EXPECT_EQ(row.Max, max) << mask;
        EXPECT_EQ(row.Default, byDefault) << mask;
    }
}

TEST(Settings, ConvertPortSizes) {
    for (const auto& [index, mask, size] : {std::tuple{0, 0x88u, 4},
                                            {1, 0x88u, 8},
                                            {0, 1u, 1},
                                            {4, 0x8000000Fu, 32},
                                            {31, 0xFFFFFFFFu, 32}}) {
        EXPECT_EQ(PortSizeFromIndex(index, mask), size);
        EXPECT_EQ(PortIndexFromSize(size, mask), index);
    }
    for (const int32_t index : {2, -1, INT32_MIN, INT32_MAX})
        EXPECT_EQ(PortSizeFromIndex(index, 0x88), 0) << index;
    for (const int32_t size : {1, 5, 0, 33, -1, INT32_MIN, INT32_MAX})
        EXPECT_EQ(PortIndexFromSize(size, 0x88), 0) << size;
}

} // namespace
