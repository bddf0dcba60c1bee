#include "host/module/host_interfaces.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sstream>

#include "host/module/module_session.h"
#include "host/support/host_error.h"

namespace etmhost {
namespace {

TEST(HostInterfaces, JournalHoldsEveryCallWithItsAnswer) {
    std::ostringstream out, report, refusals;
    SimulatedHost host(*FindChip("arm926"), {{"main", 0x8000}}, Journal(&out, &refusals));
    IOrnVETMTrace& trace = host.trace;
    uint32_t word = 0;
    EXPECT_TRUE(trace.GetValue(0x1000004, &word));
    EXPECT_FALSE(trace.GetValue(0x10001E4, &word)) << "this chip has no ID register";
    EXPECT_EQ(trace.Command("capability", &report), nullptr);
    EXPECT_STREQ(trace.Command("etm\n\"x\"", nullptr), "Unknown command: etm\\n\"x\"");
    EXPECT_FALSE(trace.SetValue(2, 5000000));
    EXPECT_TRUE(trace.SetValue(0, 0x3));
    EXPECT_EQ(trace.Command("start", nullptr), nullptr);
    for (int look = 0; look < 20; ++look) trace.GetTraceState(nullptr); // told only with news
    EXPECT_STREQ(trace.GetSettingsLine(0), "ETM PC = all");
    EXPECT_EQ(trace.Command("etm pc=from 5", nullptr), nullptr);
    EXPECT_STREQ(trace.GetSettingsLine(1), "ETM DATA = none") << "the same within one pass";
    EXPECT_STREQ(trace.GetSettingsLine(0), "ETM PC = from 5");
    EXPECT_TRUE(host.traceClient.Action("CheckAction", "Eval"));
    EXPECT_TRUE(host.traceClient.Action("Eval main + 4", nullptr));
    EXPECT_FALSE(host.traceClient.Action("Eval main + mian", nullptr));
    IOrnXTraceClient& client = host.xTraceClient;
    char buffer[8];
    EXPECT_TRUE(client.HasCommand("ExecuteCmd"));
    EXPECT_FALSE(client.WriteSetting("KVETM", nullptr, "x"));
    EXPECT_TRUE(client.WriteSetting("KVETM", "BoardFile", "/startup"));
    EXPECT_TRUE(client.ReadSetting("KVETM", "BoardFile", 8, buffer)) << "cut, and terminated";
    EXPECT_EQ(out.str(), R"(GetValue 0x1000004 -> 0x30194824
GetValue 0x10001E4 -> refused
Command "capability" -> ok
Command "etm\n\"x\"" -> "Unknown command: etm\\n\"x\""
SetValue 0x2 0x4C4B40 -> refused
SetValue 0x0 0x3 -> ok
Command "start" -> ok
GetTraceState -> 0x4
GetTraceState -> 0x2
GetSettingsLine 0 -> "ETM PC = all"
Command "etm pc=from 5" -> ok
GetSettingsLine 1 -> "ETM DATA = none"
GetSettingsLine 0 -> "ETM PC = from 5"
Action "CheckAction" "Eval" -> yes
Action "Eval main + 4" null -> yes
Action "Eval main + mian" null -> no
HasCommand "ExecuteCmd" -> yes
WriteSetting "KVETM" null "x" -> refused
WriteSetting "KVETM" "BoardFile" "/startup" -> ok
ReadSetting "KVETM" "BoardFile" 8 -> "/startu"
)");
    EXPECT_EQ(refusals.str(), R"(GetValue 0x10001E4: There is no such value to read
etm\n"x": Unknown command: etm\n"x"
SetValue 0x2 0x4C4B40: The trace buffer has only 524288 words
main + mian: unknown symbol "mian"
WriteSetting "KVETM" null "x": A section, a key and a value are needed
)");
    EXPECT_TRUE(report.str().ends_with(std::string("Demultiplexed format supported: no\n") + '\0'));
}

// A journal that has room up to the first questions of Init; then it throws.
struct ShortBuffer : std::streambuf {
    ShortBuffer() { setp(text, text + sizeof text); }
    char text[100];
};

TEST(ModuleSession, EndsCleanlyBehindAFailedInit) {
    LoadedModule module(std::filesystem::path(ETMHOST_PATH)
                            .replace_filename(std::string("KVETMControl") + LibraryExtension()));
    ShortBuffer buffer;
    std::ostream out(&buffer);
    out.exceptions(std::ios::badbit);
    SimulatedHost failing(*FindChip("arm7"), {}, Journal(&out));
    EXPECT_THAT(
        [&] { ModuleSession(module.object(), module.path(), failing); },
        testing::ThrowsMessage<HostError>(testing::StartsWith("the module failed in Init: ")));
    SimulatedHost working(*FindChip("arm7"), {}, Journal());
    ModuleSession session(module.object(), module.path(), working);
    EXPECT_TRUE(session.control().Apply()) << session.LastError();
}

} // namespace
} // namespace etmhost
