// The record itself: attributes, texts and lists of choices.

#include "settings/jTraceSettings.h"

#include <gtest/gtest.h>

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
        jTraceAttribute row{99, 0, 0, 0, 0, 0};
        const bool hasRow = id >= 1 && id <= 17;
        EXPECT_EQ(settings.GetAttributeInfo(id, row), hasRow);
        EXPECT_EQ(row.Id, hasRow ? id : 99);
    }
}

TEST(Settings, HoldTexts) {
    jTraceSettings settings;
    char text[260];
    EXPECT_FALSE(settings.GetTextAttribute(20, text, sizeof text));
    EXPECT_FALSE(settings.SetTextAttribute(20, "new"));
    EXPECT_TRUE(settings.GetTextAttribute(TA_BOARD_FILE, text, 3));
    EXPECT_STREQ(text, "--");
    EXPECT_TRUE(settings.SetTextAttribute(TA_BOARD_FILE, nullptr));
    EXPECT_EQ(Difference({}, settings.Working), "");

    const std::string most = "/" + std::string(259, 'd'), longest = most + "d/module.so";
    // The module, what is set if anything, and the directory then
    const std::tuple<const char*, const char*, const char*> rows[] = {
        {"", nullptr, ""},
        {"C:\\tools\\module.dll", nullptr, "C:\\tools"},
        {"/other/module.so", nullptr, "C:\\tools"}, // derived once
        {"/other/module.so", "", "/other"},
        {longest.c_str(), "", most.c_str()},
        {"", "/boards", "/boards"}};
    for (const auto& [module, set, directory] : rows) {
        OrnDLL()->SetModulePath(module);
        EXPECT_TRUE(!set || settings.SetTextAttribute(TA_BOARD_DIRECTORY, set));
        EXPECT_TRUE(settings.GetTextAttribute(TA_BOARD_DIRECTORY, text, sizeof text));
        EXPECT_EQ(settings.BoardDirectory, directory);
        EXPECT_STREQ(text, std::string(directory).substr(0, 259).c_str());
    }
}

TEST(Settings, OfferWhatTheChipOffers) {
    // A list, the chip, and the choices: "text=value; " each
    const std::tuple<int32_t, const char*, std::string> rows[] = {
        {8, "PortSizeMask=2147483653", "1 bits=1; 3 bits=3; 32 bits=32; "},
        {9, "ArchVersion=30 NormalFormatSupported=1", "Half-rate clocking=8192; "},
        {9, "ArchVersion=29 HalfRateSupported=1", ""},
        {9, "ArchVersion=12 HalfRateSupported=1 NormalFormatSupported=1",
         "Normal, Half-rate clocking=8192; Normal, no Half-rate clocking=0; "},
        {10, "",
         "CPRT not traced=0; All CPRTs traced=2; CPRT traced when ViewData active=524290; "},
        {12, "", ""},
    };
    for (const auto& [id, chip, offered] : rows) {
        jTraceSettings settings;
        Edit(settings.Snapshot, chip);
        std::string choices;
        char text[64] = "kept";
        uint32_t value = 4711;
        const int32_t count = settings.GetChoiceCount(id);
        EXPECT_EQ(count < 0, id == 12);
        for (const int32_t outside : {-1, count, INT32_MAX, INT32_MIN})
            EXPECT_FALSE(settings.GetChoice(id, outside, text, sizeof text, value)) << outside;
        EXPECT_EQ(text + std::to_string(value), "kept4711");
        for (int32_t index = 0; index < count; ++index) {
            EXPECT_TRUE(settings.GetChoice(id, index, text, sizeof text, value));
            choices += std::string(text) + "=" + std::to_string(value) + "; ";
        }
        EXPECT_EQ(choices, offered) << id << " " << chip;
    }
    jTraceSettings settings;
    jTraceAttribute row;
    for (const auto& [mask, max, byDefault] : {std::tuple{0u, 2, 1}, {0x8008u, 1, 1}, {8u, 0, 0}}) {
        settings.Snapshot.PortSizeMask = mask;
        settings.GetChoiceCount(TA_PORT_SIZE);
        settings.GetAttributeInfo(TA_PORT_SIZE, row);
        EXPECT_EQ(std::pair(row.Max, row.Default), std::pair(max, byDefault)) << mask;
    }
}

TEST(Settings, ConvertPortSizes) {
    EXPECT_EQ(PortIndexFromSize(32, 0x8000000F), 4);
    EXPECT_EQ(PortSizeFromIndex(31, 0xFFFFFFFF), 32);
    for (const int32_t index : {2, -1, INT32_MIN, INT32_MAX})
        EXPECT_EQ(PortSizeFromIndex(index, 0x88), 0) << index;
    for (const int32_t size : {1, 0, 33, INT32_MIN, INT32_MAX})
        EXPECT_EQ(PortIndexFromSize(size, 0x88), 0) << size;
}

} // namespace
