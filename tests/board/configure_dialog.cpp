// The dialog "ETM Configuration" as a person meets it.

#include "tests/board/BoardTest.h"

namespace {

using Values = std::vector<int32_t>;

/// The seven settings of the dialog, in the order of their ids.
Values Settings(const jTraceSettings& settings) {
    Values values;
    for (int32_t id = TA_PORT_SIZE; id <= TA_BRANCH_OUTPUT; ++id)
        values.push_back(settings.GetAttribute(id));
    return values;
}

void Store(jTraceSettings& settings, const Values& values) {
    int32_t id = TA_PORT_SIZE;
    for (const int32_t value : values) settings.SetAttribute(id++, value);
}

} // namespace

TEST_F(BoardTest, ListsAreFilledAndDisabledWhenThereIsNoChoice) {
    const struct {
        uint32_t sizes;
        int32_t arch, normal;
        size_t sizeCount, modeCount;
        Values stored;
    } rows[] = {
        {0x8088, 12, 1, 3, 2, {0, 0, 0, 0, 0, 0, 0}},
        {0x8, 12, 1, 1, 2, {0, 0, 0, 0, 0, 0, 0}},
        {0x88, 31, 0, 2, 1, {0, 0, 0, 0, 0, 0, 0}},
        {0, 12, 0, 0, 0, {-1, -1, 0, 0, 0, 0, 0}}, // a list without entries selects nothing
    };
    for (const auto& row : rows) {
        settings.Snapshot.PortSizeMask = row.sizes;
        settings.Snapshot.ArchVersion = row.arch;
        settings.Snapshot.NormalFormatSupported = row.normal;
        Store(settings, Values(7, 0));
        Configure([&] {
            EXPECT_EQ(display.Entries(1065).size(), row.sizeCount);
            EXPECT_EQ(display.Entries(1068).size(), row.modeCount);
            EXPECT_EQ(display.Enabled(1065), row.sizeCount > 1);
            EXPECT_EQ(display.Enabled(1068), row.modeCount > 1);
            EXPECT_EQ(display.Entries(1070).size(), 3u);
            EXPECT_EQ(display.Entries(1072).size(), 4u);
            const int tipped[] = {1080, 1078, 1065, 1068, 1082, 1056};
            for (unsigned id = 1; id <= 6; ++id)
                EXPECT_EQ(display.ToolTip(tipped[id - 1]), FindString(id));
            display.Click(IDOK);
        });
        EXPECT_EQ(Settings(settings), row.stored);
    }
}

TEST_F(BoardTest, HiddenSettingsPassThroughAndDefaultsCountOnlyWithOk) {
    const Values set = {1, 1, 2, 3, 1, 1, 1};
    const std::string file = Write("a.mac", kMarker + ";Title=A\nx\n");
    Store(settings, set);
    for (const bool defaults : {false, true}) {
        for (const bool ok : {false, true}) {
            settings.SetTextAttribute(TA_BOARD_FILE, file.c_str());
            g_ConfigAccepted = 1;
            EXPECT_EQ(Configure([&] {
                          EXPECT_EQ(g_ConfigAccepted, 0);
                          if (defaults) display.Click(1056);
                          EXPECT_EQ(display.Text(1080), defaults ? "" : "Title=A\r\nx\r\n");
                          display.Click(ok ? IDOK : IDCANCEL);
                      }),
                      ok);
            EXPECT_EQ(g_ConfigAccepted, ok ? 1 : 0);
            EXPECT_EQ(Settings(settings), defaults && ok ? Values({2, 0, 0, 0, 0, 0, 0}) : set);
            EXPECT_EQ(Selected(), defaults && ok ? "/none" : file);
        }
    }
}

TEST_F(BoardTest, TheSelectionDecidesWhatTheBoxShowsAndWhetherItCanBeUsed) {
    host.offersExecuteCmd = true;
    const std::string file = Write("a.mac", kMarker + ";Title=A\ntrace enable\nx\n");
    const char* const startup = "Debugger startup macro will be called\r\n"
                                "at [traceenable] label to enable trace pins\r\n"
                                "and at [tracedisable] label to disable trace pins.";
    Configure([&] {
        EXPECT_EQ(display.Text(1080), startup);
        for (const int selection : {2, 1, 0}) {
            if (display.Enabled(1080)) display.Type(1080, "typed and lost");
            display.Select(1078, selection);
            EXPECT_EQ(display.Text(1080), selection == 2   ? "Title=A\r\nx\r\n"
                                          : selection == 1 ? startup
                                                           : "");
            EXPECT_EQ(display.Enabled(1080), selection != 1);
            EXPECT_EQ(display.Enabled(1082), selection != 1);
        }
        std::filesystem::remove(file);
        display.Select(1078, 2);
        EXPECT_EQ(display.Text(1080), "");
        display.Click(IDOK);
    });
    EXPECT_EQ(Selected(), file); // not tested again
}
