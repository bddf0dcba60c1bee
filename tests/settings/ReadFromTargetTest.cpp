// A target's answers, and what the settings record makes of them.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "frame/slots.h"
#include "settings/ReadCapabilities.h"
#include "tests/settings/StateText.h"
#include "tests/support/RecordingHost.h"

using ::testing::ElementsAre;

namespace {

class Reading : public ::testing::Test {
protected:
    Reading() { host.AttachSlots(); }

    RecordingHost host;
    jTraceSettings settings;
};

TEST_F(Reading, TakesTheLinesThatItKnows) {
    struct Row {
        std::vector<std::string> lines;
        const char* changes;
    };
    const Row rows[] = {
        {{"ETM PC = all"}, "PcMode=1"},
        {{"etm pc = FROM 0x1000"}, "PcMode=4 PcBegin=0x1000"},
        {{"ETM PC=to\tmain + 4 // end "}, "PcMode=4 PcEnd=main + 4 // end "},
        {{"ETM PC = start a", "ETM PC = stop b"}, "PcMode=3 PcBegin=a PcEnd=b"},
        {{"ETM PC = stop b", "ETM PC = start a"}, "PcMode=2 PcBegin=a PcEnd=b"},
        {{"ETM PC = from a", "ETM PC = none"}, "PcBegin=a"},
        {{"ETM PC = start \"open"}, "PcMode=2 PcBegin=\"open"},
        {{"ETM PC = start"}, "PcMode=2"},
        {{"ETM COMPLEX or not"}, "PcMode=5"},
        {{"ETM DATA = addr"}, "DataMode=1"},
        {{"ETM DATA = value", "ETM DATA = from 0x100"}, "DataMode=6 DataBegin=0x100"},
        {{"ETM DATA = none", "ETM DATA = from 0x100"}, "DataMode=7 DataBegin=0x100"},
        {{"ETM DATA = from 0x100", "ETM DATA = value"}, "DataMode=2 DataBegin=0x100"},
        {{"ETM DATA = to 8", "ETM DATA = none"}, "DataEnd=8"},
        {{"ETM DATA = ALL", "ETM DATA = to 8"}, "DataMode=7 DataEnd=8"},
        {{"ETM TRIGGER 0x100 + 4"}, "TriggerAddress=0x100 + 4"},
        {{"ETM TRIGGER 8", "ETM TRIGGER "}, ""},
        {{"ETM PORTSIZE = 8"}, "PortSizeIndex=1"}, // the mask has 4, 8 and 16
        {{"ETM PORTSIZE = 16 bits"}, "PortSizeIndex=2"},
        {{"ETM PORTSIZE = 8", "ETM PORTSIZE = 0x10", "ETM PORTSIZE = 1k", "ETM PORTSIZE 4"},
         "PortSizeIndex=1"},
        {{"ETM PORTSIZE = 8", "ETM PORTSIZE = 2"}, ""},
        {{"ETM PORTSIZE = 8", "ETM PORTSIZE = 4294967295"}, ""},
        {{"ETM HALFRATE = off"}, "PortModeIndex=1"},
        {{"ETM HALFRATE = maybe", "ETM HALFRATE = 1", "ETM HALFRATE on"}, "PortModeIndex=1"},
        {{"ETM HALFRATE = off", "ETM HALFRATE = ON"}, ""},
        // No line of these has an effect
        {{"", "  \t", "PC = all", "ETM", "ETM = all", "ETM PC all", "ETM PC = some",
          "ETM PC == all", "ETM DATA addr", "ETM DATA = some", "ETMPC = all", "\"ETM\" PC = all",
          "ETM \"PC\" = all", "ETM COMPLEXITY", "// ETM PC = all"},
         ""},
        {{"ETM PC = " + std::string(5000, 'x'), std::string(5000, 'E') + " PC = all"}, ""},
    };
    ASSERT_TRUE(settings.ReadFromTarget());
    for (const Row& row : rows) {
        jTraceSettings read;
        host.lines = row.lines;
        EXPECT_TRUE(read.ReadFromTarget());
        EXPECT_EQ(Difference(settings.Snapshot, read.Snapshot), row.changes) << row.lines[0];
        EXPECT_EQ(read.Working, read.Snapshot);
    }
}

TEST_F(Reading, TakesTheWordsThatItKnows) {
    struct Row {
        uint32_t control, size, count;
        const char* changes; // against all 0, with a position of 100
    };
    const Row rows[] = {
        {0x1, 2048, 0, "Enable=1"},
        {0x303, 2048, 0, "Enable=1 StopMode=1 TriggerPin=1 TriggerOnAddress=1"},
        {0x100, 2048, 0, "StopMode=2 TriggerPin=1"},
        {0x200, 2048, 0, "StopMode=2 TriggerOnAddress=1"},
        {0x3C, 2048, 0, "Accumulate=1 ManualMode=1 ControlSpareBits=48"},
        {0xFFFFFCC0, 2048, 10, ""},
        {0, 2048, 1024, "TriggerPosition=50"},
        {0, 2048, 2048, "TriggerPosition=0"},
        {0, 2048, 11, "TriggerPosition=99"},
        {0, 2048, 4096, "TriggerPosition=-100"},
        {0, 4294967295, 4294967295, "TriggerPosition=0"},
        {0, 1, 4294967295, "TriggerPosition=-2147483648"},
        {0, 0, 1024, "TriggerPosition=0"},
    };
    host.values[2] = 0;
    ASSERT_TRUE(settings.ReadFromTarget());
    for (const Row& row : rows) {
        jTraceSettings read;
        host.values[0] = row.control, host.values[1] = row.size, host.values[2] = row.count;
        ASSERT_TRUE(read.ReadFromTarget());
        EXPECT_EQ(Difference(settings.Working, read.Working), row.changes);
    }
}

TEST_F(Reading, AsksInOrder) {
    host.values[0x1000004] = 0x80000000;
    host.values[0x10001E4] = 0x4100F100;
    host.lines = {"ETM COMPLEX"};
    host.boardFile = "/none";
    ASSERT_TRUE(settings.ReadFromTarget());
    EXPECT_THAT(host.TakeCalls(),
                ElementsAre("GetValue(0x1000004)", "GetValue(0x1000014)", "GetValue(0x10001E4)",
                            "GetValue(0x5)", "Command(capability)", "GetValue(0x0)",
                            "GetValue(0x1)", "GetValue(0x2)", "GetSettingsLine(0)",
                            "GetSettingsLine(1)", "ReadSetting(KVETM,BoardFile)"));
    const jTraceState first = settings.Working;
    EXPECT_TRUE(Difference({}, first).starts_with(
        "ConfigCode=2147483648 SystemConfig=42 EtmId=1090580736 ProtocolVersion=3"));
    EXPECT_EQ(first.PortSizeMask, 0x8088u);
    EXPECT_EQ(settings.BufferSize, 2048u);

    // A chip without the ID register, then one whose registers can't be read
    host.values[0x1000004] = 1;
    ASSERT_TRUE(settings.ReadFromTarget());
    EXPECT_EQ(Difference(first, settings.Working), "ConfigCode=1 EtmId=0");
    const jTraceState before = settings.Working;
    for (const uint32_t id : {0x1000014u, 0x1000004u}) {
        host.values.erase(id);
        host.TakeCalls();
        ASSERT_TRUE(settings.ReadFromTarget());
        EXPECT_EQ(host.calls[id == 0x1000004 ? 1 : 2], "GetValue(0x0)");
        EXPECT_EQ(Difference(before, settings.Working), "");
    }
}

TEST_F(Reading, FailsWithoutTheValuesThatCount) {
    host.values[0] = 0x13F;
    host.values[1] = 4096;
    host.boardFile = "/startup";
    host.lines = {"ETM PC = all"};
    const auto complete = host.values;
    for (const uint32_t id : {0u, 1u, 2u}) {
        jTraceSettings read;
        host.values = complete;
        host.values.erase(id);
        host.TakeCalls();
        EXPECT_FALSE(read.ReadFromTarget());
        EXPECT_EQ(host.calls.back(), "GetSettingsLine(1)") << "all else is asked as ever";
        EXPECT_EQ(read.Working, jTraceSettings().Working);
        EXPECT_TRUE(read.TraceChanged()) << "the line was read";
        EXPECT_FALSE(read.ControlChanged() || read.TriggerPositionChanged() || read.PortChanged());
        EXPECT_EQ(read.BufferSize, id == 1 ? 0u : 4096u);
    }
    g_VETMTrace = nullptr;
    EXPECT_FALSE(settings.ReadFromTarget());
    EXPECT_EQ(settings.Snapshot, jTraceSettings().Snapshot);
}

TEST_F(Reading, TakesTheBoardFile) {
    settings.Working.BoardFile = "edited";
    ASSERT_TRUE(settings.ReadFromTarget());
    EXPECT_EQ(settings.Working.BoardFile, "---");
    for (const std::string& stored :
         {std::string(), std::string("/b.mac"), std::string(400, 'x')}) {
        host.boardFile = stored; // the longest comes without its NUL
        ASSERT_TRUE(settings.ReadFromTarget());
        EXPECT_EQ(settings.Working.BoardFile, stored.substr(0, 259));
    }
    g_XTraceClient = nullptr;
    ASSERT_TRUE(settings.ReadFromTarget());
    EXPECT_EQ(settings.Working.BoardFile, "---");
}

TEST_F(Reading, EndsWithAHostThatNeverEndsItsText) {
    struct Endless final : HostObject<IOrnVETMTrace> {
        Endless() : HostObject("IOrnVETMTrace") {}
        const char* Command(const char*, std::ostream*) override { return nullptr; }
        const char* GetInfoText(uint32_t) override { return nullptr; }
        uint32_t GetTraceState(uint32_t*) override { return 0; }
        bool HasFeature(uint32_t) override { return false; }
        bool SetValue(uint32_t, uint32_t) override { return false; }
        bool GetValue(uint32_t, uint32_t*) override { return true; }
        const char* GetSettingsLine(uint32_t) override { return "ETM PC = all"; }
    } endless;
    g_VETMTrace = &endless;
    EXPECT_TRUE(settings.ReadFromTarget());
    EXPECT_EQ(settings.Working.PcMode, 1);
}

TEST_F(Reading, PicksCapabilitiesOutOfTheReport) {
    struct Row {
        std::string report;
        const char* changes; // against a report without any label
    };
    const Row rows[] = {
        {RecordingHost::kReport,
         "ProtocolVersion=3 ArchVersion=13 AddressComparatorPairs=4 DataComparators=2 "
         "MemoryMapDecoders=8 Counters=2 SequencerPresent=1 ExternalInputs=4 ExternalOutputs=1 "
         "FifoFullPresent=1 HalfRateSupported=1 NormalFormatSupported=1"},
        {"Full-rate clocking supported: yes\nMultiplexed  format  supported: y yes\n"
         "Demultiplexed format supported:\t YESTERDAY",
         "FullRateSupported=1 DemultiplexedFormatSupported=1"},
        {"ETM architecture version: 3.1", "ArchVersion=31"},
        {"ETM architecture version\n:\n 3.\n 2 ", "ArchVersion=32"},
        {"ETM architecture version: 99999999999.9", "ArchVersion=2147483647"},
        {"ETM architecture version: -2147483648.-9", "ArchVersion=-2147483648"},
        {"my ETM protocol version of today: 7", "ProtocolVersion=7"},
        {"Number of counters: -1\nNumber of counters: 5", "Counters=-1"},
        {"Number of counters:\n\n +12th", "Counters=12"},
        {"Number of counters: 99999999999999999999999", "Counters=2147483647"},
        {"Number of counters: -99999999999999999999999", "Counters=-2147483648"},
        {"Sequencer present\nNormal format supported: Yes",
         "SequencerPresent=1 NormalFormatSupported=1"},
        {"Sequencer present:\v\f\r yes", "SequencerPresent=1"},
    };
    const std::string noEffect[] = {"ETM architecture version: 3",
                                    "ETM architecture version: 3 . 1",
                                    "ETM architecture version: 3.x",
                                    "etm protocol version: 7",
                                    "ETM protocol version 7",
                                    "ETM protocol version: x7",
                                    "Number of counters: - 1",
                                    "Sequencer present: \n yes",
                                    "Sequencer present: y",
                                    "Sequencer present: none\nFIFOFULL logic present: nyes",
                                    "Multiplexed format supported: yes",
                                    std::string("Number of\0 counters: 4", 22),
                                    std::string("Number of counters\0: 4", 22)};
    host.report = "";
    jTraceState plain;
    ReadCapabilities(plain);
    EXPECT_EQ(Difference({}, plain), "ArchVersion=10");
    const auto read = [&plain] {
        jTraceState state;
        Edit(state, "ArchVersion=31 Counters=77 SequencerPresent=1"); // of an earlier read
        ReadCapabilities(state);
        return Difference(plain, state);
    };
    for (const Row& row : rows) {
        host.report = row.report;
        EXPECT_EQ(read(), row.changes) << row.report;
    }
    for (const std::string& report : noEffect) {
        host.report = report;
        EXPECT_EQ(read(), "") << report;
    }
    host.reportEndsWithNul = false;
    host.report = "Number of counters: 4";
    EXPECT_EQ(read(), "Counters=4");
    host.refusals["capability"] = "no target";
    EXPECT_EQ(read(), "");

    int32_t kept = 5;
    EXPECT_FALSE(ScanYesNo("a: maybe", "a", &kept));
    EXPECT_FALSE(ScanNumber("a: maybe", "a", &kept));
    EXPECT_EQ(kept, 5);
}

} // namespace
