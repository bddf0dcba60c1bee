// Edits of the settings, and what an apply sends for them.

#include "tests/settings/StateText.h"
#include "tests/support/Session.h"

namespace {

class Applying : public Session {
protected:
    Applying() {
        host.boardFile = "/b.mac";
        host.values[ORN_VALUE_CONTROL] = 0x20;
        EXPECT_TRUE(settings.ReadFromTarget());
        host.TakeCalls();
    }

    /// What the last apply sent, joined by "; ", with commands as they are.
    std::string Sent() {
        std::string sent;
        for (const std::string& call : host.TakeCalls()) {
            const bool command = call.starts_with("Command(");
            sent += sent.empty() ? "" : "; ";
            sent += command ? call.substr(8, call.size() - 9) : call;
        }
        return sent;
    }

    jTraceSettings settings;
};

TEST_F(Applying, SendsWhatDiffers) {
    const std::string store = "; WriteSetting(KVETM,BoardFile,/b.mac)";
    const std::string port = "etm portsize=4; etm halfrate=on", name(500, 'x');
    const std::string on = port + store, off = "etm portsize=4; etm halfrate=off" + store;
    const struct {
        std::string was, now, sent; // edits of Snapshot and of Working
    } rows[] = {
        {"", "", ""},
        {"", "ManualMode=1 StopMode=1 TriggerPin=1 Accumulate=1", "SetValue(0x0,0x2E)"},
        {"", "StopMode=1", "SetValue(0x0,0x22)"},
        {"", "TriggerPin=1", "SetValue(0x0,0x20)"},
        {"TriggerPin=1", "TriggerPin=1 StopMode=2", "SetValue(0x0,0x120)"},
        {"", "Accumulate=1", "SetValue(0x0,0x24)"},
        {"", "ManualMode=1", "SetValue(0x0,0x28)"},
        {"", "ControlSpareBits=16", "SetValue(0x0,0x10)"},
        {"", "TriggerPosition=30", "SetValue(0x2,0x599)"},
        {"", "TriggerPosition=500", "SetValue(0x2,0x0)"},
        {"", "TriggerPosition=-2147483648", "SetValue(0x2,0xFFFFFFFF)"},
        {"", "PortSizeIndex=3", "etm halfrate=on" + store},
        // Half-rate: the chip has it, in the normal format
        {"", "PortModeIndex=2", off},
        {"", "CprtModeIndex=1", on},
        {"", "ContextIdIndex=1", on},
        {"", "StallProcessor=1", on},
        {"", "BranchOutput=1", on},
        {"NormalFormatSupported=0", "CycleAccurate=1", off},
        {"NormalFormatSupported=0 DemultiplexedFormatSupported=1", "CycleAccurate=1", on},
        {"DemultiplexedFormatSupported=1", "PortModeIndex=1", off},
        {"DemultiplexedFormatSupported=1", "PortModeIndex=2", on},
        {"DemultiplexedFormatSupported=1", "PortModeIndex=3", off},
        {"DemultiplexedFormatSupported=1 HalfRateSupported=0", "PortModeIndex=1", off},
        {"", "BoardFile=/B.mac",
         "macro /B.mac; " + port + "; WriteSetting(KVETM,BoardFile,/B.mac)"},
        {"", "BoardFile=", "macro ; " + port + "; WriteSetting(KVETM,BoardFile,/none)"},
        {"", "BoardFile=---", "macro ---; " + port},
        {"", "PcMode=4 PcBegin=" + name, "etm pc=from " + name + "; etm pc=to ; etm data=none"},
        {"", "PcMode=-1 DataMode=-1", "etm complex; etm data=all; etm data=from ; etm data=to "},
        {"", "PcBegin=a", "etm pc=none; etm data=none"},
        {"", "PcEnd=a", "etm pc=none; etm data=none"},
        {"", "DataBegin=a", "etm pc=none; etm data=none"},
        {"", "DataEnd=a", "etm pc=none; etm data=none"},
        {"", "DataMode=1", "etm pc=none; etm data=addr"},
        {"", "TriggerOnAddress=1", "SetValue(0x0,0x20); etm pc=none; etm data=none; etm trigger "},
        {"TriggerOnAddress=1", "TriggerOnAddress=0",
         "SetValue(0x0,0x20); etm pc=none; etm data=none"},
        {"TriggerOnAddress=1", "TriggerAddress=t",
         "SetValue(0x0,0x20); etm pc=none; etm data=none"},
    };
    const jTraceState read = settings.Snapshot;
    for (const auto& row : rows) {
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

TEST_F(Applying, DecidesOnceWhatDiffers) {
    Edit(settings.Working, "BoardFile=/c.mac Enable=1 TriggerPosition=0 CycleAccurate=1 PcMode=1");
    host.onCall = [&](const std::string& call) {
        if (call != "Command(macro /c.mac)") return;
        host.onCall = nullptr;
        EXPECT_TRUE(settings.ApplyToTarget());
        Sent();
    };
    EXPECT_TRUE(settings.ApplyToTarget());
    EXPECT_EQ(Sent(), "enable; SetValue(0x0,0x21); SetValue(0x2,0x800); etm portsize=4; "
                      "etm halfrate=on; WriteSetting(KVETM,BoardFile,/c.mac); etm pc=all; "
                      "etm data=none");
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
    // What is refused, a command or the id of a SetValue; what is sent, and the result
    const std::tuple<std::string, std::string, bool> rows[] = {
        {"macro /c.mac", all, true},
        {"etm portsize=4", all, true},
        {"enable", "macro /c.mac; enable", false},
        {"0", all, false},
        {"2", all, false},
        {"etm data=all", kind, false},
        {"etm data=from c", range, false}};
    for (const auto& [refused, sent, result] : rows) {
        SCOPED_TRACE(refused);
        settings.Snapshot = before;
        settings.Working = wanted;
        display.ClearLog();
        host.refusals = {{refused, "not now"}};
        host.refusedSetValues.clear();
        if (refused.size() == 1) host.refusedSetValues.insert(refused == "0" ? 0 : 2);
        // The host's text is good until its next call, a timer's during the box.
        display.DuringNextBox([&] { host.refusals["enable"] = "?"; });
        EXPECT_EQ(settings.ApplyToTarget(), result);
        EXPECT_EQ(Sent(), sent);
        EXPECT_EQ(Difference(result ? wanted : before, settings.Snapshot), "");
        EXPECT_EQ(Difference(wanted, settings.Working), "");
        EXPECT_EQ(testing::PrintToString(display.Boxes()),
                  refused == "enable" ? "{ \"[Cannot enable trace] not now\" }" : "{}");
    }
    settings.Snapshot = settings.Working = before;
    g_XTraceClient = nullptr; // no store
    settings.Working.CycleAccurate = 1;
    EXPECT_TRUE(settings.ApplyToTarget());
    EXPECT_EQ(Sent(), "etm portsize=4; etm halfrate=on");
    g_VETMTrace = nullptr;
    EXPECT_FALSE(settings.ApplyToTarget());
}

} // namespace
