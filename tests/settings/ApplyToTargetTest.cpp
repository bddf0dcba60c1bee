// Edits of the settings, and what an apply sends for them.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "frame/slots.h"
#include "tests/settings/StateText.h"
#include "tests/support/RecordingHost.h"
#include "toolkit/CWinApp.h"
#include "toolkit/headless/HeadlessDisplay.h"

namespace {

class Applying : public ::testing::Test {
protected:
    Applying() {
        AfxGetApp()->UseDisplay(&display);
        host.AttachSlots();
        host.boardFile = "/b.mac";
        host.values[0] = 0x20;
        EXPECT_TRUE(settings.ReadFromTarget());
        host.TakeCalls();
    }
    ~Applying() override { AfxGetApp()->UseDisplay(nullptr); }

    /// What the last apply sent, joined by "; ", with commands as they are.
    std::string Sent() {
        std::string sent;
        for (const std::string& call : host.TakeCalls()) {
            if (!sent.empty()) sent += "; ";
            const bool command = call.starts_with("Command(");
            sent += command ? call.substr(8, call.size() - 9) : call;
        }
        return sent;
    }

    RecordingHost host;
    HeadlessDisplay display;
    jTraceSettings settings;
};

TEST_F(Applying, SendsWhatDiffers) {
    const std::string store = "; WriteSetting(KVETM,BoardFile,/b.mac)";
    const std::string port = "etm portsize=4; etm halfrate=on" + store;
    const std::string longName(500, 'x');
    struct Row {
        std::string was, now; // edits of Snapshot and of Working
        std::string sent;
    };
    const Row rows[] = {
        {"", "", ""},
        // The control word, whose spare bit 5 is set
        {"", "Enable=1", "enable; SetValue(0x0,0x21)"},
        {"Enable=1", "", "disable; SetValue(0x0,0x20)"},
        {"Enable=1", "Enable=1 Accumulate=1", "SetValue(0x0,0x25)"},
        {"", "ManualMode=1 StopMode=1 TriggerPin=1", "SetValue(0x0,0x2A)"},
        {"", "StopMode=2 TriggerPin=1", "SetValue(0x0,0x120)"},
        {"", "StopMode=2", "SetValue(0x0,0x20)"},
        {"", "ControlSpareBits=16", "SetValue(0x0,0x10)"},
        // The trigger position, in a buffer of 2048
        {"", "TriggerPosition=30", "SetValue(0x2,0x599)"},
        {"", "TriggerPosition=100", "SetValue(0x2,0x0)"},
        {"", "TriggerPosition=0", "SetValue(0x2,0x800)"},
        {"", "TriggerPosition=500", "SetValue(0x2,0x0)"},
        {"", "TriggerPosition=-2147483648", "SetValue(0x2,0xFFFFFFFF)"},
        // The port
        {"", "CycleAccurate=1", port},
        {"", "CprtModeIndex=1 ContextIdIndex=1 StallProcessor=1 BranchOutput=1", port},
        {"", "PortSizeIndex=2 PortModeIndex=1", "etm portsize=16; etm halfrate=off" + store},
        {"", "PortSizeIndex=3", "etm halfrate=on" + store},
        {"", "BoardFile=/B.mac",
         "macro /B.mac; etm portsize=4; etm halfrate=on; WriteSetting(KVETM,BoardFile,/B.mac)"},
        {"", "BoardFile=",
         "macro ; etm portsize=4; etm halfrate=on; WriteSetting(KVETM,BoardFile,/none)"},
        {"", "BoardFile=---", "macro ---; etm portsize=4; etm halfrate=on"},
        // PC, data and trigger
        {"PcMode=6", "", "etm pc=none; etm data=none"},
        {"", "PcMode=1 DataMode=1", "etm pc=all; etm data=addr"},
        {"", "PcMode=2 PcBegin=a PcEnd=b", "etm pc=start a; etm data=none"},
        {"", "PcMode=3 DataMode=2 PcBegin=a PcEnd=b",
         "etm pc=start a; etm pc=stop b; etm data=value"},
        {"", "PcMode=4 PcBegin=" + longName,
         "etm pc=from " + longName + "; etm pc=to ; etm data=none"},
        {"", "PcMode=5", "etm complex; etm data=none"},
        {"", "PcMode=-1 DataMode=-1", "etm complex; etm data=all; etm data=from ; etm data=to "},
        {"", "PcBegin=a PcEnd=b DataBegin=c DataEnd=d", "etm pc=none; etm data=none"},
        {"", "DataMode=7 DataBegin=c DataEnd=d",
         "etm pc=none; etm data=all; etm data=from c; etm data=to d"},
        {"TriggerOnAddress=1", "TriggerOnAddress=1 TriggerAddress=t",
         "etm pc=none; etm data=none; etm trigger t"},
        {"TriggerOnAddress=1", "TriggerAddress=t",
         "SetValue(0x0,0x20); etm pc=none; etm data=none"},
    };
    const jTraceState read = settings.Snapshot;
    for (const Row& row : rows) {
        SCOPED_TRACE(row.was + " -> " + row.now);
        settings.Snapshot = settings.Working = read;
        Edit(settings.Snapshot, row.was);
        Edit(settings.Working, row.now);
        EXPECT_EQ(settings.IsModified(), !row.sent.empty());
        for (const std::string& sent : {row.sent, std::string()}) {
            EXPECT_TRUE(settings.ApplyToTarget());
            EXPECT_EQ(Sent(), sent);
            EXPECT_EQ(Difference(settings.Snapshot, settings.Working), "");
        }
    }
}

TEST_F(Applying, DecidesOnHalfRateByChipAndIndex) {
    struct Row {
        const char* chip;    // has nothing else
        const char* indexes; // that mean half-rate
    };
    for (const Row& row : {Row{"ArchVersion=31", ""},
                           {"HalfRateSupported=1", ""},
                           {"NormalFormatSupported=1 DemultiplexedFormatSupported=1", ""},
                           {"NormalFormatSupported=1 HalfRateSupported=1 ArchVersion=31", "0"},
                           {"HalfRateSupported=1 DemultiplexedFormatSupported=1", "0"},
                           {"NormalFormatSupported=1 HalfRateSupported=1 "
                            "DemultiplexedFormatSupported=1",
                            "02"}}) {
        settings.Snapshot = {};
        Edit(settings.Snapshot, row.chip);
        std::string indexes;
        for (int32_t index = 0; index <= 3; ++index) {
            settings.Working = settings.Snapshot;
            settings.Working.CycleAccurate ^= 1;
            settings.Working.PortModeIndex = index;
            EXPECT_TRUE(settings.ApplyToTarget());
            if (Sent().starts_with("etm halfrate=on")) indexes += std::to_string(index);
        }
        EXPECT_EQ(indexes, row.indexes) << row.chip;
    }
}

TEST_F(Applying, StopsWhereARefusalCounts) {
    const jTraceState before = settings.Snapshot;
    jTraceState wanted = before;
    Edit(wanted,
         "BoardFile=/c.mac Enable=1 TriggerPosition=0 PcMode=4 PcBegin=a PcEnd=b DataMode=7 "
         "DataBegin=c DataEnd=d TriggerOnAddress=1 TriggerAddress=t");
    const std::string kind = "macro /c.mac; enable; SetValue(0x0,0x21); SetValue(0x2,0x800); "
                             "etm portsize=4; etm halfrate=on; "
                             "WriteSetting(KVETM,BoardFile,/c.mac); "
                             "etm pc=from a; etm pc=to b; etm data=all";
    const std::string range = kind + "; etm data=from c; etm data=to d";
    const std::string all = range + "; etm trigger t";
    struct Row {
        std::vector<std::string> refused; // commands, and ids of SetValue, one at a time
        std::string sent;
        bool result;
    };
    const Row rows[] = {
        {{"", "macro /c.mac", "etm portsize=4"}, all, true},
        {{"enable"}, "macro /c.mac; enable", false},
        {{"0", "2", "etm halfrate=on", "etm trigger t"}, all, false},
        {{"etm pc=from a", "etm pc=to b", "etm data=all"}, kind, false},
        {{"etm data=from c", "etm data=to d"}, range, false},
    };
    for (const Row& row : rows) {
        for (const std::string& refused : row.refused) {
            SCOPED_TRACE(refused);
            settings.Snapshot = before;
            settings.Working = wanted;
            host.refusals = {{refused, "not now"}};
            host.refusedSetValues.clear();
            if (refused.size() == 1) host.refusedSetValues.insert(refused == "0" ? 0 : 2);
            for (int again = 0; again < (row.result ? 1 : 2); ++again) {
                display.ClearLog();
                // The host's text is good until its next call, a timer's during the box.
                display.DuringNextBox([&] { host.refusals["enable"] = "?"; });
                EXPECT_EQ(settings.ApplyToTarget(), row.result);
                if (refused == "enable") host.refusals["enable"] = "not now";
                EXPECT_EQ(Sent(), row.sent);
                EXPECT_EQ(Difference(row.result ? wanted : before, settings.Snapshot), "");
                EXPECT_EQ(Difference(wanted, settings.Working), "");
                EXPECT_EQ(testing::PrintToString(display.Boxes()),
                          refused == "enable" ? "{ \"[Cannot enable trace] not now\" }" : "{}");
            }
        }
    }
    settings.Snapshot = wanted;
    settings.Working.Enable = 0;
    host.refusals = {{"disable", "not now"}};
    EXPECT_TRUE(settings.ApplyToTarget());
}

TEST_F(Applying, NeedsNoSettingsStore) {
    g_XTraceClient = nullptr;
    settings.Working.CycleAccurate = 1;
    EXPECT_TRUE(settings.ApplyToTarget());
    EXPECT_EQ(Sent(), "etm portsize=4; etm halfrate=on");
    g_VETMTrace = nullptr;
    EXPECT_FALSE(settings.ApplyToTarget());
}

} // namespace
