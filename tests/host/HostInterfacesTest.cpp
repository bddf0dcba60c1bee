#include "host/module/host_interfaces.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sstream>

#include "host/module/journal.h"
#include "host/module/module_session.h"
#include "host/record/json_lines.h"
#include "host/support/host_error.h"
#include "tests/support/built.h"

namespace etmhost {
namespace {

// Keeps events as a program would get them.
struct JsonLines final : record::EventWriter {
    void Write(const record::Event& event) override {
        const std::string line = record::ToJsonLine(event);
        EXPECT_EQ(line.find('\n'), std::string::npos);
        read.push_back(record::FromJsonLine(line));
        EXPECT_EQ(read.back(), event) << line;
    }
    std::vector<record::Event> read;
};

TEST(HostInterfaces, JournalHoldsEveryCallWithItsAnswer) {
    std::ostringstream out, report, refusals;
    record::EventStream events;
    TextJournal journal(out);
    RefusalPrinter printer(refusals);
    events.Add(journal);
    events.Add(printer);
    JsonLines lines;
    events.Add(lines);
    SimulatedHost host(*FindChip("arm926"), {{"main", 0x8000}}, events);
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
    trace.Command("\xFFx", nullptr);
    host.emu.GetComponentVersion();
    host.emu.GetInterface("x");
    events.Step("click OK");
    events.Note("a note");
    EXPECT_EQ(out.str(), R"(GetValue 0x1000004 -> 0x30194824
GetValue 0x10001E4 -> refused: There is no such value to read
Command "capability" -> ok
Command "etm\n\"x\"" -> "Unknown command: etm\\n\"x\""
SetValue 0x2 0x4C4B40 -> refused: The trace buffer has only 524288 words
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
Action "Eval main + mian" null -> no: unknown symbol "mian"
HasCommand "ExecuteCmd" -> yes
WriteSetting "KVETM" null "x" -> refused: A section, a key and a value are needed
WriteSetting "KVETM" "BoardFile" "/startup" -> ok
ReadSetting "KVETM" "BoardFile" 8 -> "/startu"
)"
                         "Command \"\xFFx\" -> \"Unknown command: \xFFx\"\n"
                         R"(IOrnEmu.GetComponentVersion -> 100
IOrnEmu.GetInterface "x" -> null
-- click OK
)");
    EXPECT_EQ(refusals.str(), R"(GetValue 0x10001E4: There is no such value to read
etm\n"x": Unknown command: etm\n"x"
SetValue 0x2 0x4C4B40: The trace buffer has only 524288 words
main + mian: unknown symbol "mian"
WriteSetting "KVETM" null "x": A section, a key and a value are needed
)"
                              "\xFFx: Unknown command: \xFFx\netmhost: a note\n");
    std::ostringstream again;
    TextJournal rebuilt(again);
    for (const record::Event& event : lines.read) rebuilt.Write(event);
    EXPECT_EQ(again.str(), out.str());
    EXPECT_EQ(record::TextOf(lines.read[2].results, "report"), report.str());
    const auto isPoll = [](const record::Event& event) {
        return event.operation == "GetTraceState";
    };
    EXPECT_EQ(std::ranges::count_if(lines.read, isPoll), 20) << "the polls without news too";
    EXPECT_TRUE(report.str().ends_with(std::string("Demultiplexed format supported: no\n") + '\0'));
}

TEST(Record, ALineThatIsNoEventIsRefused) {
    const std::string head = R"({"direction":"toHost","operation":"x","results":{"return":)";
    EXPECT_EQ(record::FromJsonLine(head + "-2}}").results,
              (record::Fields{{"return", int64_t{-2}}}));
    for (const std::string& line :
         {std::string(), std::string("7"), std::string("{}"), head, head + "1.5}}",
          head + "18446744073709551615}}", head + "[256]}}", head + "[\"a\"]}}",
          std::string(R"({"direction":"up","operation":"x"})"),
          std::string(R"({"direction":"host","operation":7})"),
          head + std::string(1000000, '[') + std::string(1000000, ']') + "}}"})
        EXPECT_THROW(record::FromJsonLine(line), std::runtime_error) << line.substr(0, 100);
}

// What a host with these options answers to the same calls. The first row takes its time.
TEST(Faults, CallsFailAndWaitAsTheOptionsSay) {
    const struct {
        std::vector<std::string> failures, delays;
        std::string differences; ///< lines of the journal that are not the usual ones
        std::vector<std::string> unmet;
    } rows[] = {
        {{}, {"Command=1ms", "HasFeature=1ms"}, "", {}},
        {{"Command:enable=no power"},
         {},
         "Command \"enable\" -> \"no power\"\nCommand \"enable\" -> \"no power\"\n"
         "GetValue 0x0 -> 0x0\nGetValue 0x0 -> 0x0\n",
         {}},
        {{"Command:enable@2=no", "Command:etm pc=all=no a=b"},
         {"Command:start=1s"},
         "Command \"enable\" -> \"no\"\nCommand \"etm pc=all\" -> \"no a=b\"\n",
         {"--delay \"Command:start=1s\" met no call: there were none such"}},
        {{"Command:e*=", "Command:enable=other"},
         {},
         "Command \"enable\" -> \"\"\nCommand \"enable\" -> \"\"\nCommand \"etm pc=all\" -> "
         "\"\"\nGetValue 0x0 -> 0x0\nGetValue 0x0 -> 0x0\n",
         {}},
        {{"GetValue:0@2", "GetValue:0x10000*@1=off", "GetValue:2@9"},
         {},
         "GetValue 0x1000004 -> refused: off\nGetValue 0x0 -> refused: Failed on request\n",
         {"--fail \"GetValue:2@9\" met no call: there were only 1"}},
        {{"SetValue:2,7", "WriteSetting:a,b*", "IOrnEmu.GetComponentName=x", "GetSettingsLine",
          "Action:Eval *=x", "GetInfoText", "GetTraceState", "ReadSetting:a", "HasCommand"},
         {},
         "SetValue 0x2 0x7 -> refused: Failed on request\nGetTraceState -> 0x0: Failed on request\n"
         "GetSettingsLine 0 -> null: Failed on request\nGetInfoText 0 -> null: Failed on request\n"
         "Action \"Eval 1\" null -> no: x\nWriteSetting \"a\" \"bc\" \"d\" -> refused: Failed on "
         "request\nReadSetting \"a\" \"b\" 8 -> none: Failed on request\nHasCommand "
         "\"ExecuteCmd\" -> no: Failed on request\nIOrnEmu.GetComponentName -> \"\": x\n",
         {}},
    };
    std::vector<std::string> usual;
    for (const auto& [failures, delays, differences, unmet] : rows) {
        std::ostringstream out;
        record::EventStream events;
        TextJournal journal(out);
        events.Add(journal);
        SimulatedHost host(*FindChip("arm926"), {}, events);
        Faults faults(events);
        for (const std::string& text : failures) faults.Fail(text);
        for (const std::string& text : delays) faults.Delay(text);
        host.PutInFront(faults);
        auto& trace = static_cast<IOrnVETMTrace&>(*host.Find(ORN_VETM_TRACE));
        auto& client = static_cast<IOrnXTraceClient&>(*host.Find(ORN_XTRACE_CLIENT));
        uint32_t word = 77;
        char buffer[8];
        std::ostringstream report;
        const auto begin = std::chrono::steady_clock::now();
        for (const char* text : {"enable", "enable", "etm pc=all"}) trace.Command(text, nullptr);
        for (const uint32_t id : {0x1000004u, 0u, 0u, 2u}) trace.GetValue(id, &word);
        trace.SetValue(2, 7);
        trace.SetValue(2, 8);
        trace.GetTraceState(nullptr);
        trace.GetSettingsLine(0);
        trace.GetInfoText(0);
        trace.HasFeature(ORN_FEATURE_ETB);
        static_cast<IOrnTraceClient&>(*host.Find(ORN_TRACE_CLIENT)).Action("Eval 1", nullptr);
        client.WriteSetting("a", "bc", "d");
        client.ReadSetting("a", "b", 8, buffer);
        client.HasCommand("ExecuteCmd");
        host.Find(ORN_EMU)->GetComponentName();
        std::istringstream lines(out.str());
        std::string text;
        size_t at = 0;
        for (std::string line; std::getline(lines, line); ++at) {
            if (at == usual.size()) usual.push_back(line);
            if (line != usual[at]) text += line + "\n";
        }
        const auto time = std::chrono::steady_clock::now() - begin;
        EXPECT_TRUE(!failures.empty() || time >= std::chrono::milliseconds(4));
        EXPECT_EQ(text, differences);
        EXPECT_EQ(faults.Unmet(), unmet);
    }
    record::EventStream events;
    Faults faults(events);
    for (const char* text : {"", "=x", "Comand", "GetValue:zero", "GetValue:0@0", "GetValue@x=y",
                             "GetValue:", "GetTraceState:1", "IOrnEmu.Command", "HasFeature:1,2"})
        EXPECT_THROW(faults.Fail(text), HostError) << text;
    for (const char* text : {"", "Command", "Command=1", "Command=0ms", "Command=61s", "Command=1m",
                             "Command=99999999999999999999s", "Comand=1s"})
        EXPECT_THROW(faults.Delay(text), HostError) << text;
}

// Fails at the first question of Init.
struct FailingWriter final : record::EventWriter {
    void Write(const record::Event& event) override {
        if (event.operation == "GetValue") throw std::runtime_error("no more");
    }
};

TEST(ModuleSession, EndsCleanlyBehindAFailedInit) {
    LoadedModule module(std::filesystem::path(built::kEtmhost)
                            .replace_filename(std::string("KVETMControl") + LibraryExtension()));
    FailingWriter writer;
    record::EventStream events;
    events.Add(writer);
    SimulatedHost failing(*FindChip("arm7"), {}, events);
    EXPECT_THAT(
        [&] { ModuleSession(module.object(), module.path(), failing); },
        testing::ThrowsMessage<HostError>(testing::StartsWith("the module failed in Init: ")));
    SimulatedHost working(*FindChip("arm7"));
    ModuleSession session(module.object(), module.path(), working);
    EXPECT_TRUE(session.Apply()) << session.LastError();
}

} // namespace
} // namespace etmhost
