#include "host/host_interfaces.h"

#include <gtest/gtest.h>

#include <sstream>

namespace etmhost {
namespace {

struct JournaledHost {
    explicit JournaledHost(const char* chip)
        : host(*FindChip(chip), {{"main", 0x8000}}, Journal(&out)) {}

    // The journal so far, emptied by this.
    std::string Take() {
        const std::string text = out.str();
        out.str("");
        return text;
    }

    std::ostringstream out;
    SimulatedHost host;
};

TEST(HostInterfaces, OffersTheSixThatTheModuleRequires) {
    JournaledHost journaled("arm926");
    for (const char* name : {"IOrnAPI", "IOrnVETMTrace", "IOrnTraceClient", "IOrnXTraceClient",
                             "IOrnXTrace", "IOrnEmu"}) {
        IOrnInterface* object = journaled.host.Find(name);
        ASSERT_NE(object, nullptr) << name;
        EXPECT_STREQ(object->GetInterfaceName(), name);
    }
    EXPECT_EQ(journaled.host.Find("iornapi"), nullptr);
    EXPECT_GE(journaled.host.xTraceClient.GetInterfaceVersion(), 111);
}

TEST(HostInterfaces, JournalHoldsEveryCallWithItsAnswer) {
    JournaledHost journaled("arm926");
    IOrnVETMTrace& trace = journaled.host.trace;
    uint32_t word = 0;
    char buffer[8];
    std::ostringstream report;
    EXPECT_TRUE(trace.GetValue(0x1000004, &word));
    EXPECT_FALSE(trace.GetValue(0x10001E4, &word)) << "this chip has no ID register";
    EXPECT_FALSE(trace.GetValue(0, nullptr));
    EXPECT_EQ(trace.Command("capability", &report), nullptr);
    EXPECT_STREQ(trace.Command("etm\n\"x\"", nullptr), "Unknown command: etm\n\"x\"");
    EXPECT_STREQ(trace.Command(nullptr, nullptr), "Empty command");
    EXPECT_TRUE(trace.SetValue(0, 0x201));
    EXPECT_FALSE(trace.SetValue(1, 5));
    EXPECT_STREQ(trace.GetSettingsLine(0), "ETM PC = all");
    EXPECT_EQ(trace.GetSettingsLine(99), nullptr);
    EXPECT_EQ(trace.GetInfoText(1), nullptr);
    EXPECT_TRUE(journaled.host.traceClient.Action("CheckAction", "Eval"));
    EXPECT_TRUE(journaled.host.traceClient.Action("Eval main + 4", nullptr));
    EXPECT_FALSE(journaled.host.traceClient.Action("Eval 1.5", nullptr));
    EXPECT_FALSE(journaled.host.traceClient.Action(nullptr, nullptr));
    IOrnXTraceClient& client = journaled.host.xTraceClient;
    EXPECT_TRUE(client.HasCommand("ExecuteCmd"));
    EXPECT_FALSE(client.ReadSetting("KVETM", "BoardFile", 8, buffer));
    EXPECT_FALSE(client.WriteSetting("KVETM", nullptr, "x"));
    EXPECT_TRUE(client.WriteSetting("KVETM", "BoardFile", "/startup"));
    EXPECT_TRUE(client.ReadSetting("KVETM", "BoardFile", 8, buffer)) << "cut, and terminated";
    EXPECT_FALSE(client.ReadSetting("KVETM", "BoardFile", 0, buffer));
    EXPECT_EQ(journaled.Take(), R"(GetValue 0x1000004 -> 0x30194824
GetValue 0x10001E4 -> refused
GetValue 0x0 -> refused
Command "capability" -> ok
Command "etm\n\"x\"" -> "Unknown command: etm\n\"x\""
Command null -> "Empty command"
SetValue 0x0 0x201 -> ok
SetValue 0x1 0x5 -> refused
GetSettingsLine 0 -> "ETM PC = all"
GetSettingsLine 99 -> null
GetInfoText 1 -> null
Action "CheckAction" "Eval" -> yes
Action "Eval main + 4" null -> yes
Action "Eval 1.5" null -> no
Action null null -> no
HasCommand "ExecuteCmd" -> yes
ReadSetting "KVETM" "BoardFile" 8 -> none
WriteSetting "KVETM" null "x" -> refused
WriteSetting "KVETM" "BoardFile" "/startup" -> ok
ReadSetting "KVETM" "BoardFile" 8 -> "/startu"
ReadSetting "KVETM" "BoardFile" 0 -> none
)");
}

TEST(HostInterfaces, PollsAreJournaledOnlyWithNews) {
    JournaledHost journaled("arm926");
    IOrnVETMTrace& trace = journaled.host.trace;
    const auto poll = [&trace] {
        for (int look = 0; look < 20; ++look) {
            trace.GetTraceState(nullptr);
        }
    };
    poll();
    trace.SetValue(0, 0x3);
    trace.Command("start", nullptr);
    poll();
    poll();
    EXPECT_EQ(journaled.Take(), "GetTraceState -> 0x0\n"
                                "SetValue 0x0 0x3 -> ok\n"
                                "Command \"start\" -> ok\n"
                                "GetTraceState -> 0x4\n"
                                "GetTraceState -> 0x2\n");
}

TEST(HostInterfaces, LinesStayTheSameWithinOnePass) {
    JournaledHost journaled("arm926");
    IOrnVETMTrace& trace = journaled.host.trace;
    EXPECT_STREQ(trace.GetSettingsLine(0), "ETM PC = all");
    trace.Command("etm pc=start 5", nullptr);
    trace.Command("etm pc=stop 6", nullptr);
    EXPECT_STREQ(trace.GetSettingsLine(1), "ETM DATA = none");
    EXPECT_STREQ(trace.GetSettingsLine(0), "ETM PC = start 5");
}

TEST(HostInterfaces, FeaturesTellTheTracePath) {
    const struct {
        const char* chip;
        bool etb, tpiu, cortexM3;
    } rows[] = {{"arm7", false, false, false},
                {"arm926", false, false, false},
                {"arm9-etb", true, false, false},
                {"cortex-a8", false, false, false},
                {"cortex-m3", false, true, true}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.chip);
        JournaledHost journaled(row.chip);
        EXPECT_EQ(journaled.host.trace.HasFeature(0x2000000), row.etb);
        EXPECT_EQ(journaled.host.trace.HasFeature(0x3000000), row.tpiu);
        EXPECT_EQ(journaled.host.trace.HasFeature(0x4000000), row.cortexM3);
        EXPECT_FALSE(journaled.host.trace.HasFeature(0x1000000));
    }
}

} // namespace
} // namespace etmhost
