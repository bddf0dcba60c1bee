// A target's answers, and what the settings record makes of them.

#include <utility>

#include "settings/ReadCapabilities.h"
#include "settings/ReportStream.h"
#include "testkit/SilentTrace.h"
#include "tests/settings/StateText.h"
#include "tests/support/Session.h"

namespace {

class Reading : public Session {
protected:
    jTraceSettings settings;
};

TEST_F(Reading, TakesTheLinesThatItKnows) {
    const std::pair<std::vector<std::string>, const char*> rows[] = {
        {{"etm pc = FROM 0x1000"}, "PcMode=4 PcBegin=0x1000"},
        {{"ETM PC=to\tmain + 4 // end "}, "PcMode=4 PcEnd=main + 4 // end "},
        {{"ETM PC = start a", "ETM PC = stop b"}, "PcMode=3 PcBegin=a PcEnd=b"},
        {{"ETM PC = stop b", "ETM PC = start a"}, "PcMode=2 PcBegin=a PcEnd=b"},
        {{"ETM COMPLEX or not"}, "PcMode=5"},
        {{"ETM DATA = none", "ETM DATA = from 0x100"}, "DataMode=7 DataBegin=0x100"},
        {{"ETM DATA = from 0x100", "ETM DATA = value"}, "DataMode=2 DataBegin=0x100"},
        {{"ETM TRIGGER 0x100 + 4"}, "TriggerAddress=0x100 + 4"},
        {{"ETM TRIGGER 8", "ETM TRIGGER "}, ""},
        {{"ETM PORTSIZE = 16 bits", "ETM PORTSIZE = 0x10", "ETM PORTSIZE 4"}, "PortSizeIndex=2"},
        {{"ETM PORTSIZE = 8", "ETM PORTSIZE = 4294967295", "ETM HALFRATE = off",
          "ETM HALFRATE = ON"},
         ""},
        {{"ETM HALFRATE = maybe", "ETM HALFRATE = 1", "ETM HALFRATE on"}, "PortModeIndex=1"},
        {{"", "  \t", "PC = all", "ETM", "ETM = all", "ETM PC all", "ETM PC = some",
          "ETM PC == all", "ETM DATA addr", "ETM DATA = some", "ETMPC = all", "\"ETM\" PC = all",
          "ETM \"PC\" = all", "ETM COMPLEXITY", "// ETM PC = all"},
         ""},
        {{"ETM PC = " + std::string(5000, 'x'), std::string(5000, 'E') + " PC = all"}, ""},
    };
    ASSERT_TRUE(settings.ReadFromTarget());
    for (const auto& [lines, changes] : rows) {
        jTraceSettings read;
        host.lines = lines;
        EXPECT_TRUE(read.ReadFromTarget());
        EXPECT_EQ(Difference(settings.Snapshot, read.Snapshot), changes) << lines[0];
    }
}

TEST_F(Reading, EndsWhereTheLinesDoNot) {
    struct : SilentTrace {
        const char* GetSettingsLine(uint32_t index) override {
            last = index;
            return index == 0 ? "ETM PC = all" : "";
        }
        uint32_t last = 0;
    } endless;
    IOrnVETMTrace* const before = std::exchange(g_VETMTrace, &endless);
    EXPECT_TRUE(settings.ReadFromTarget());
    g_VETMTrace = before;
    EXPECT_EQ(settings.Working.PcMode, 1);
    EXPECT_LT(endless.last, 1100000u);
}

TEST_F(Reading, TakesTheWordsThatItKnows) {
    // Control word, buffer size, trigger count; changes against all 0 and a position of 100
    const std::tuple<uint32_t, uint32_t, uint32_t, const char*> rows[] = {
        {0x303, 2048, 0, "Enable=1 StopMode=1 TriggerPin=1 TriggerOnAddress=1"},
        {0x3C, 2048, 0, "Accumulate=1 ManualMode=1 ControlSpareBits=48"},
        {0xFFFFFDC0, 2048, 11, "StopMode=2 TriggerPin=1 TriggerPosition=99"},
        {0, 2048, 4096, "TriggerPosition=-100"},
        {0, 4294967295, 4294967295, "TriggerPosition=0"},
        {0, 1, 4294967295, "TriggerPosition=-2147483648"},
        {0, 0, 1024, "TriggerPosition=0"},
    };
    host.values[ORN_VALUE_TRIGGER_COUNT] = 0;
    ASSERT_TRUE(settings.ReadFromTarget());
    for (const auto& [control, size, count, changes] : rows) {
        jTraceSettings read;
        host.values[ORN_VALUE_CONTROL] = control;
        host.values[ORN_VALUE_BUFFER_SIZE] = size;
        host.values[ORN_VALUE_TRIGGER_COUNT] = count;
        ASSERT_TRUE(read.ReadFromTarget());
        EXPECT_EQ(Difference(settings.Working, read.Working), changes);
    }
}

TEST_F(Reading, AsksInOrder) {
    host.values[ORN_VALUE_ETMCCR] = ORN_ETMCCR_HAS_ID;
    host.values[ORN_VALUE_ETMIDR] = 0x4100F100;
    host.lines = {"ETM COMPLEX"};
    host.boardFile = "/none";
    ASSERT_TRUE(settings.ReadFromTarget());
    EXPECT_THAT(host.TakeCalls(),
                testing::ElementsAre("GetValue(0x1000004)", "GetValue(0x1000014)",
                                     "GetValue(0x10001E4)", "GetValue(0x5)", "Command(capability)",
                                     "GetValue(0x0)", "GetValue(0x1)", "GetValue(0x2)",
                                     "GetSettingsLine(0)", "GetSettingsLine(1)",
                                     "ReadSetting(KVETM,BoardFile)"));
    const jTraceState first = settings.Working;
    EXPECT_THAT(Difference({}, first), testing::StartsWith("ConfigCode=2147483648 SystemConfig=42 "
                                                           "EtmId=1090580736 ProtocolVersion=3"));
    // A chip without the ID register, then one whose registers can't be read
    host.values[ORN_VALUE_ETMCCR] = 1;
    ASSERT_TRUE(settings.ReadFromTarget());
    EXPECT_EQ(Difference(first, settings.Working), "ConfigCode=1 EtmId=0");
    const jTraceState before = settings.Working;
    for (const uint32_t id : {ORN_VALUE_ETMSCR, ORN_VALUE_ETMCCR}) {
        host.values.erase(id);
        host.TakeCalls();
        ASSERT_TRUE(settings.ReadFromTarget());
        EXPECT_EQ(host.calls[id == ORN_VALUE_ETMCCR ? 1 : 2], "GetValue(0x0)");
        EXPECT_EQ(Difference(before, settings.Working), "");
    }
}

TEST_F(Reading, FailsWithoutTheValuesThatCount) {
    host.values[ORN_VALUE_CONTROL] = 0x13F;
    host.boardFile = "/startup";
    host.lines = {"ETM PC = all"};
    for (const uint32_t id : {ORN_VALUE_CONTROL, ORN_VALUE_BUFFER_SIZE, ORN_VALUE_TRIGGER_COUNT}) {
        jTraceSettings read;
        const auto value = host.values.extract(id);
        EXPECT_FALSE(read.ReadFromTarget());
        host.values[id] = value.mapped();
        EXPECT_EQ(host.calls.back(), "GetSettingsLine(1)") << "all else is asked as ever";
        EXPECT_EQ(read.Working, jTraceSettings().Working);
        EXPECT_TRUE(read.TraceChanged()) << "the line was read";
        EXPECT_FALSE(read.ControlChanged() || read.TriggerPositionChanged() || read.PortChanged());
        EXPECT_EQ(read.BufferSize, id == ORN_VALUE_BUFFER_SIZE ? 0u : 2048u);
    }
    EXPECT_TRUE(settings.ReadFromTarget());
    host.values.erase(ORN_VALUE_BUFFER_SIZE);
    settings.ReadFromTarget();
    EXPECT_EQ(settings.BufferSize, 2048u) << "as it was known";
}

TEST_F(Reading, TakesTheBoardFileAndNeedsATarget) {
    const std::string longest(400, 'x'); // comes without its NUL
    for (const std::string& stored : {std::string(), std::string("/b.mac"), longest}) {
        host.boardFile = stored;
        ASSERT_TRUE(settings.ReadFromTarget());
        EXPECT_EQ(settings.Working.BoardFile, stored.substr(0, 259));
    }
    g_XTraceClient = nullptr;
    ASSERT_TRUE(settings.ReadFromTarget());
    EXPECT_EQ(settings.Working.BoardFile, "---");
    g_VETMTrace = nullptr;
    EXPECT_FALSE(settings.ReadFromTarget());
}

TEST_F(Reading, PicksCapabilitiesOutOfTheReport) {
    const std::pair<std::string, const char*> rows[] = {
        // a report, and what it changes against one without any label
        {RecordingHost::kReport,
         "ProtocolVersion=3 ArchVersion=13 AddressComparatorPairs=4 DataComparators=2 "
         "MemoryMapDecoders=8 Counters=2 SequencerPresent=1 ExternalInputs=4 ExternalOutputs=1 "
         "FifoFullPresent=1 HalfRateSupported=1 NormalFormatSupported=1"},
        {"Full-rate clocking supported: yes\nMultiplexed  format  supported: y yes\n"
         "Demultiplexed format supported:\t YESTERDAY",
         "FullRateSupported=1 DemultiplexedFormatSupported=1"},
        {"ETM architecture version\n:\n 3.\n 2 ", "ArchVersion=32"},
        {"ETM architecture version: -2147483648.-9", "ArchVersion=-2147483648"},
        {"my ETM protocol version of today: 7\nSequencer present:\v\f\r yes",
         "ProtocolVersion=7 SequencerPresent=1"},
        {"ETM protocol version: 1 Number of counters: 5\nNumber of counters: 6\n",
         "ProtocolVersion=1 Counters=5"},
        {"Number of counters: 99999999999999999999999", "Counters=2147483647"},
        {"Number of counters:\n\n +12th\nSequencer present\nNormal format supported: Yes",
         "Counters=12 SequencerPresent=1 NormalFormatSupported=1"},
    };
    std::istringstream noEffect(
        "#ETM architecture version: 3#ETM architecture version: 3 . 1#etm protocol version: 7#"
        "ETM architecture version: 3.x#ETM protocol version 7#ETM protocol version: x7#"
        "Number of counters: - 1#Sequencer present: \n yes#Sequencer present: y#"
        "Sequencer present: none\nFIFOFULL logic present: nyes#"
        "Multiplexed format supported: yes#" +
        std::string("Number of counters\0: 4", 22));
    jTraceState plain;
    plain.ArchVersion = 10;
    const auto read = [&plain] {
        jTraceState state;
        Edit(state, "ArchVersion=31 Counters=77 SequencerPresent=1"); // of an earlier read
        ReadCapabilities(state);
        return Difference(plain, state);
    };
    for (const auto& [report, changes] : rows) {
        host.report = report;
        EXPECT_EQ(read(), changes) << report;
    }
    while (std::getline(noEffect, host.report, '#')) EXPECT_EQ(read(), "") << host.report;
    host.reportEndsWithNul = false;
    host.report = "Number of counters: 4";
    EXPECT_EQ(read(), "Counters=4");
    host.refusals["capability"] = "no target";
    EXPECT_EQ(read(), "");
}

TEST(ReportStream, KeepsWhatAnyStreamWould) {
    ReportStream ours;
    std::ostringstream standard;
    for (std::ostream* stream :
         {static_cast<std::ostream*>(&ours), static_cast<std::ostream*>(&standard)}) {
        for (int i = 0; i < 3000; ++i) *stream << i << ' '; // beyond the first memory, twice
        const auto end = stream->tellp();
        stream->seekp(5).put('x');
        stream->seekp(-3, std::ios_base::cur) << "ab" << std::hex << 255;
        EXPECT_FALSE(stream->seekp(1, std::ios_base::end));
        stream->clear();
        EXPECT_EQ(stream->seekp(0, std::ios_base::end).tellp(), end);
        stream->write("end", 3).seekp(1);
    }
    EXPECT_EQ(ours.GetText(), standard.str());
}

} // namespace
