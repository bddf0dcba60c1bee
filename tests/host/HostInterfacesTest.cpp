#include "host/host_interfaces.h"

#include <gtest/gtest.h>

#include <sstream>

#include "host/report.h"

namespace etmhost {
namespace {

TEST(HostInterfaces, JournalHoldsEveryCallWithItsAnswer) {
    std::ostringstream out, report;
    SimulatedHost host(*FindChip("arm926"), {{"main", 0x8000}}, Journal(&out));
    IOrnVETMTrace& trace = host.trace;
    uint32_t word = 0;
    EXPECT_TRUE(trace.GetValue(0x1000004, &word));
    EXPECT_FALSE(trace.GetValue(0x10001E4, &word)) << "this chip has no ID register";
    EXPECT_EQ(trace.Command("capability", &report), nullptr);
    EXPECT_STREQ(trace.Command("etm\n\"x\"", nullptr), "Unknown command: etm\n\"x\"");
    EXPECT_STREQ(trace.Command(nullptr, nullptr), "Empty command");
    EXPECT_FALSE(trace.SetValue(1, 5));
    EXPECT_TRUE(trace.SetValue(0, 0x3));
    EXPECT_EQ(trace.Command("start", nullptr), nullptr);
    for (int look = 0; look < 20; ++look) trace.GetTraceState(nullptr); // told only with news
    EXPECT_STREQ(trace.GetSettingsLine(0), "ETM PC = all");
    EXPECT_EQ(trace.Command("etm pc=from 5", nullptr), nullptr);
    EXPECT_EQ(trace.Command("etm pc=to 6", nullptr), nullptr);
    EXPECT_STREQ(trace.GetSettingsLine(1), "ETM DATA = none") << "the same within one pass";
    EXPECT_STREQ(trace.GetSettingsLine(0), "ETM PC = from 5");
    EXPECT_EQ(trace.GetSettingsLine(99), nullptr);
    EXPECT_TRUE(host.traceClient.Action("CheckAction", "Eval"));
    EXPECT_TRUE(host.traceClient.Action("Eval main + 4", nullptr));
    EXPECT_FALSE(host.traceClient.Action("Eval 1.5", nullptr));
    EXPECT_FALSE(host.traceClient.Action(nullptr, nullptr));
    IOrnXTraceClient& client = host.xTraceClient;
    char buffer[8];
    EXPECT_TRUE(client.HasCommand("ExecuteCmd"));
    EXPECT_FALSE(client.ReadSetting("KVETM", "BoardFile", 8, buffer));
    EXPECT_FALSE(client.WriteSetting("KVETM", nullptr, "x"));
    EXPECT_TRUE(client.WriteSetting("KVETM", "BoardFile", "/startup"));
    EXPECT_TRUE(client.ReadSetting("KVETM", "BoardFile", 8, buffer)) << "cut, and terminated";
    EXPECT_EQ(out.str(), R"(GetValue 0x1000004 -> 0x30194824
GetValue 0x10001E4 -> refused
Command "capability" -> ok
Command "etm\n\"x\"" -> "Unknown command: etm\n\"x\""
Command null -> "Empty command"
SetValue 0x1 0x5 -> refused
SetValue 0x0 0x3 -> ok
Command "start" -> ok
GetTraceState -> 0x4
GetTraceState -> 0x2
GetSettingsLine 0 -> "ETM PC = all"
Command "etm pc=from 5" -> ok
Command "etm pc=to 6" -> ok
GetSettingsLine 1 -> "ETM DATA = none"
GetSettingsLine 0 -> "ETM PC = from 5"
GetSettingsLine 99 -> null
Action "CheckAction" "Eval" -> yes
Action "Eval main + 4" null -> yes
Action "Eval 1.5" null -> no
Action null null -> no
HasCommand "ExecuteCmd" -> yes
ReadSetting "KVETM" "BoardFile" 8 -> none
WriteSetting "KVETM" null "x" -> refused
WriteSetting "KVETM" "BoardFile" "/startup" -> ok
ReadSetting "KVETM" "BoardFile" 8 -> "/startu"
)");
    EXPECT_EQ(report.str(), std::string(R"(ETM protocol version: 3
ETM architecture version: 1.3
Number of address comparator pairs: 4
Number of data comparators: 2
Number of memory map decoders: 8
Number of counters: 2
Sequencer present: yes
Number of external inputs: 4
Number of external outputs: 1
FIFOFULL logic present: no
Half-rate clocking supported: yes
Full-rate clocking supported: no
Normal format supported: yes
Multiplexed  format  supported: no
Demultiplexed format supported: no
)") + '\0');
}

TEST(HostInterfaces, SayWhatEachChipOffers) {
    const struct {
        const char *chip, *offers; // values of the report; sizes of the port; features
    } rows[] = {
        {"arm7", "2 1.2 1 0 4 1 no 2 0 no no yes yes no no; 4 8;"},
        {"ARM9-ETB", "3 1.3 4 2 8 2 yes 4 1 no yes no yes no no; 4 8 16; 0x2000000"},
        {"cortex-a8", "0 3.3 4 2 0 2 yes 4 2 no no no no no no; 1 2 4 8 16 32;"},
        {"cortex-m3", "0 3.5 0 0 0 1 no 0 0 yes no no no no no; 1 2 4; 0x3000000 0x4000000"},
    };
    for (const auto& row : rows) {
        SimulatedHost host(*FindChip(row.chip), {}, Journal());
        std::istringstream report(CapabilityReport(host.target.chip()));
        std::string offers;
        for (std::string line; std::getline(report, line);)
            offers += line.substr(line.find(": ") + 1);
        offers += ";";
        for (const uint32_t size : PortSizes(host.target.chip()))
            offers += " " + std::to_string(size);
        offers += ";";
        for (const uint32_t feature : {0x1000000u, 0x2000000u, 0x3000000u, 0x4000000u})
            if (host.trace.HasFeature(feature)) offers += " " + Hex(feature);
        EXPECT_EQ(offers, std::string(" ") + row.offers) << row.chip;
    }
}

} // namespace
} // namespace etmhost
