// The dialog "ETM Configuration" as a person meets it.

#include "tests/board/BoardTest.h"
#include "tests/settings/StateText.h"

TEST_F(BoardTest, ListsAreFilledAndDisabledWhenThereIsNoChoice) {
    const struct {
        const char* chip;
        size_t sizes, modes;
        const char* stored; // an OK without a choice; a list without entries selects nothing
    } rows[] = {
        {"PortSizeMask=8", 1, 2, ""},
        {"PortSizeMask=136 ArchVersion=31 NormalFormatSupported=0", 2, 1, ""},
        {"PortSizeMask=0 NormalFormatSupported=0", 0, 0, "PortSizeIndex=-1 PortModeIndex=-1 "}};
    const jTraceState chip = settings.Snapshot;
    for (const auto& row : rows) {
        settings.Snapshot = settings.Working = chip;
        Edit(settings.Snapshot, row.chip);
        Configure([&] {
            EXPECT_EQ(display.Entries(1065).size(), row.sizes);
            EXPECT_EQ(display.Entries(1068).size(), row.modes);
            EXPECT_EQ(display.Enabled(1065), row.sizes > 1);
            EXPECT_EQ(display.Enabled(1068), row.modes > 1);
            EXPECT_EQ(display.Entries(1070).size(), 3u);
            EXPECT_EQ(display.Entries(1072).size(), 4u);
            const int tipped[] = {1080, 1078, 1065, 1068, 1082, 1056};
            for (unsigned id = 1; id <= 6; ++id)
                EXPECT_EQ(display.ToolTip(tipped[id - 1]), FindString(id));
            for (const int id : {1079, 1050, 1067, 1081, IDOK, IDCANCEL}) {
                EXPECT_EQ(display.ToolTip(id), "") << id;
                EXPECT_NE(display.Control(id).GetHelp(), nullptr) << id;
            }
            display.Click(IDOK);
        });
        EXPECT_EQ(Difference(chip, settings.Working), row.stored + std::string("BoardFile=/none"));
    }
}

TEST_F(BoardTest, HiddenSettingsPassThroughAndDefaultsCountOnlyWithOk) {
    Edit(settings.Working, "PortSizeIndex=1 PortModeIndex=1 CprtModeIndex=2 ContextIdIndex=3 "
                           "StallProcessor=1 CycleAccurate=1 BranchOutput=1");
    settings.Working.BoardFile = Write("a.mac", kMarker + ";Title=A\nx\n");
    host.offersExecuteCmd = true; // and so is the default
    const jTraceState set = settings.Working;
    for (const bool defaults : {false, true})
        for (const bool ok : {false, true}) {
            g_ConfigAccepted = 1;
            EXPECT_EQ(Configure([&] {
                          EXPECT_EQ(g_ConfigAccepted, 0);
                          if (defaults) display.Click(1056);
                          EXPECT_EQ(display.Text(1080) == "Title=A\r\nx\r\n", !defaults);
                          display.Click(ok ? IDOK : IDCANCEL);
                      }),
                      ok);
            EXPECT_EQ(g_ConfigAccepted, ok ? 1 : 0);
            EXPECT_EQ(Difference(set, settings.Working),
                      !defaults || !ok ? ""
                                       : "PortSizeIndex=2 PortModeIndex=0 CprtModeIndex=0 "
                                         "ContextIdIndex=0 StallProcessor=0 CycleAccurate=0 "
                                         "BranchOutput=0 BoardFile=/startup");
        }
}

TEST_F(BoardTest, TheSelectionDecidesWhatTheBoxShowsAndWhetherItCanBeUsed) {
    host.offersExecuteCmd = true;
    const std::string file = Write("a.mac", kMarker + ";Title=A\ntrace enable\nx\n");
    const char* const startup = "Debugger startup macro will be called\r\n"
                                "at [traceenable] label to enable trace pins\r\n"
                                "and at [tracedisable] label to disable trace pins.";
    const char* const texts[] = {"", startup, "Title=A\r\nx\r\n"};
    Configure([&] {
        EXPECT_EQ(display.Text(1080), texts[1]);
        for (const int selection : {2, 1, 0}) {
            if (display.Enabled(1080)) display.Type(1080, "typed and lost");
            display.Select(1078, selection);
            EXPECT_EQ(display.Text(1080), texts[selection]);
            EXPECT_EQ(display.Enabled(1080), selection != 1);
            EXPECT_EQ(display.Enabled(1082), selection != 1);
        }
        std::filesystem::remove(file);
        display.Select(1078, 2);
        EXPECT_EQ(display.Text(1080), "");
        display.Click(IDOK);
    });
    EXPECT_EQ(Selected(), file); // not tested again

    // Of a file that is too long only the start is shown, and nothing is made from it.
    const size_t most = 1024 * 1024;
    for (const size_t excess : {0, 1}) {
        const std::string start = kMarker + ";Title=A\n";
        Write("a.mac", start + std::string(most - start.size() + excess, 'x'));
        Configure([&] {
            EXPECT_EQ(display.Text(1080).ends_with("x\r\n..."), excess > 0);
            EXPECT_LT(display.Text(1080).size(), most + most / 100);
            display.Type(1080, "typed");
            EXPECT_EQ(display.Text(1080) == "typed", excess == 0);
            EXPECT_EQ(display.Enabled(1082), excess == 0);
            display.Select(1078, 0);
            display.Type(1080, "typed");
            display.Select(1078, 0); // chosen again
            EXPECT_EQ(display.Text(1080), "typed");
            EXPECT_TRUE(display.Enabled(1082));
        });
    }
}
