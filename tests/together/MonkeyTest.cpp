// A monkey at the dialog: random events on a host that fails at random. Whatever it
// does, the rules between the two images of the settings and the target hold.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <deque>
#include <random>

#include "frame/interfaces/IOrnKVETMSupp.h"
#include "testkit/TemporaryDirectory.h"
#include "tests/support/Session.h"

namespace {

constexpr int kEvents = 200000;

auto ControlOf(const jTraceState& t) {
    return std::tie(t.Enable, t.StopMode, t.TriggerPin, t.TriggerOnAddress, t.Accumulate,
                    t.ManualMode, t.ControlSpareBits);
}
auto PortOf(const jTraceState& t) {
    return std::tie(t.PortSizeIndex, t.PortModeIndex, t.CprtModeIndex, t.ContextIdIndex,
                    t.StallProcessor, t.CycleAccurate, t.BranchOutput, t.BoardFile);
}
auto TraceOf(const jTraceState& t) {
    return std::tie(t.PcMode, t.PcBegin, t.PcEnd, t.DataMode, t.DataBegin, t.DataEnd,
                    t.TriggerOnAddress, t.TriggerAddress);
}

/// Says what an apply has to send, from the two images alone; and whether the host's
/// refusals, known in advance, let it succeed.
struct Expectation {
    Expectation(const jTraceSettings& settings, const RecordingHost& host)
        : working(settings.Working), target(host) {
        const jTraceState &s = settings.Snapshot, &w = working;
        if (w.BoardFile != s.BoardFile) Send("macro " + w.BoardFile);
        if (ControlOf(w) != ControlOf(s)) {
            if (w.Enable != 0 && s.Enable == 0 && !(success = Send("enable"))) return;
            if (w.Enable == 0 && s.Enable != 0) Send("disable");
            uint32_t word = static_cast<uint32_t>(w.ControlSpareBits);
            if (w.Enable != 0) word |= 0x1;
            if (w.StopMode == 1) word |= 0x2;
            if (w.StopMode == 2 && w.TriggerPin != 0) word |= 0x100;
            if (w.StopMode == 2 && w.TriggerOnAddress != 0) word |= 0x200;
            if (w.Accumulate != 0) word |= 0x4;
            if (w.ManualMode != 0) word |= 0x8;
            Set("0x0", word);
        }
        if (w.TriggerPosition != s.TriggerPosition)
            Set("0x2",
                static_cast<uint32_t>((100 - w.TriggerPosition) * 0.01 * settings.BufferSize));
        if (PortOf(w) != PortOf(s)) {
            const int32_t bits = PortSizeFromIndex(w.PortSizeIndex, s.PortSizeMask);
            if (bits > 0) Send("etm portsize=" + std::to_string(bits));
            // The report of this host: normal format and half-rate, no demultiplexing.
            Count(Send(w.PortModeIndex == 0 ? "etm halfrate=on" : "etm halfrate=off"));
            if (w.BoardFile != "---")
                calls.push_back("WriteSetting(KVETM,BoardFile," +
                                (w.BoardFile.empty() ? "/none" : w.BoardFile) + ")");
        }
        if (TraceOf(w) != TraceOf(s)) SendTrace(w);
    }

    void SendTrace(const jTraceState& w) {
        const std::string start = "start " + w.PcBegin;
        const std::vector<std::string> pcModes[] = {{"none"},
                                                    {"all"},
                                                    {start},
                                                    {start, "stop " + w.PcEnd},
                                                    {"from " + w.PcBegin, "to " + w.PcEnd}};
        static const char* const kData[] = {"none", "addr", "value", "all"};
        bool good = true;
        const auto send = [&](const std::string& text) { good = Send("etm " + text) && good; };
        if (static_cast<size_t>(w.PcMode) >= std::size(pcModes))
            send("complex");
        else
            for (const std::string& text : pcModes[w.PcMode]) send("pc=" + text);
        send(std::string("data=") + kData[w.DataMode & 3]);
        if (good && (w.DataMode & 4) != 0)
            send("data=from " + w.DataBegin), send("data=to " + w.DataEnd);
        if (good && w.TriggerOnAddress != 0) send("trigger " + w.TriggerAddress);
        Count(good);
    }

    bool Send(const std::string& text) {
        calls.push_back("Command(" + text + ")");
        return !target.refusals.contains(text) && target.refuseAllCommands.empty();
    }
    void Set(const char* id, uint32_t value) {
        char text[40];
        std::snprintf(text, sizeof text, "SetValue(%s,0x%X)", id, value);
        calls.push_back(text);
        Count(!target.refusedSetValues.contains(id[2] == '0' ? 0u : 2u));
    }
    void Count(bool good) { success = success && good; }

    const jTraceState working;
    const RecordingHost& target;
    std::deque<std::string> calls;
    bool success = true;
};

class Monkey : public Session {
protected:
    Monkey() {
        OrnDLL()->SetModulePath((directory.Path() + "/KVETMControl.so").c_str());
        for (const std::string title : {"First", "Second"})
            directory.Write(title + ".mac",
                            ";[OrnithalWorksTraceInitFile]\n;Title=" + title + "\nmem_init 1\n");
        host.onCall = [this](const std::string& call) { OnCall(call); };
        display.OnOtherDialogs([this] { Play(static_cast<int>(Below(20))); });
        display.AnswerOtherBoxes([this](const std::string&, unsigned flags) {
            if (Below(4) == 0) display.Advance(600);
            return (flags & MB_YESNO) == 0 ? IDOK : Below(2) == 0 ? IDYES : IDNO;
        });
    }

    size_t Below(size_t limit) {
        return std::uniform_int_distribution<size_t>(0, limit - 1)(random);
    }

    void OnCall(const std::string& call) {
        if (call == "GetValue(0x1000004)") Settle(), reading = true; // a read begins
        static const char* const kChanges[] = {"SetValue(",        "WriteSetting(",
                                               "Command(macro ",   "Command(enable)",
                                               "Command(disable)", "Command(etm "};
        const auto fits = [&](const char* start) { return call.starts_with(start); };
        if (std::ranges::none_of(kChanges, fits)) return;
        if (!expected || expected->calls.empty()) {
            Settle();
            expected.emplace(*g_Settings, host);
        }
        ASSERT_FALSE(expected->calls.empty()) << call << " although nothing differs";
        EXPECT_EQ(call, expected->calls.front());
        expected->calls.pop_front();
    }

    /// Between events: an apply has been sent whole, and Snapshot is what it left.
    void Settle() {
        if (expected) {
            EXPECT_TRUE(expected->calls.empty()) << "not sent: " << expected->calls.front();
            if (expected->success) snapshot = expected->working;
            ++(expected->success ? applied : refused);
            expected.reset();
        }
        EXPECT_TRUE(reading || g_Settings->Snapshot == snapshot) << "Snapshot changed by itself";
        reading = false;
        snapshot = g_Settings->Snapshot;
    }

    void ChangeTheHost() {
        static const char* const kCommands[] = {
            "enable",          "disable",    "start",         "etm pc=all",    "etm data=none",
            "etm halfrate=on", "capability", "etm pc=from 1", "etm trigger 1", "etm data=all"};
        const std::string command = kCommands[Below(std::size(kCommands))];
        host.refusals.erase(command);
        if (Below(3) == 0) host.refusals[command] = "refused";
        host.refuseAllCommands = Below(50) == 0 ? "out of order" : "";
        host.refusedSetValues.clear();
        if (Below(10) == 0) host.refusedSetValues.insert(Below(2) == 0 ? 0 : 2);
        host.features.clear();
        if (Below(4) == 0) host.features = {static_cast<uint32_t>(2 + Below(3)) << 24};
        host.state = static_cast<uint32_t>(Below(8));
        host.evaluates = Below(2) == 0;
        host.validExpressions = {"1", "0x20", "main"};
    }

    void PlayOne() {
        static const char* const kTexts[] = {"1", "0x20", "main", "",   "  ",
                                             "2", "\xFF", "101",  "-4", "Title=New\r\nmem 1\r\n"};
        const CDialog& front = Below(12) == 0 ? *display.Front() : *display.FrontPage();
        const auto& controls = front.GetControls();
        CWnd& control = *controls[Below(controls.size())];
        const int id = control.GetDlgCtrlID();
        if (&display.Control(id) != &control) return; // -1, or hidden behind another
        switch (control.GetKind()) {
        case ControlKind::PushButton:
            if ((id == IDOK || id == IDCANCEL) && Below(4) != 0) break; // else no game lasts
            cancelled = id == IDCANCEL && display.Front()->GetParent() == nullptr;
            if (Below(2) == 0)
                display.AnswerSave(directory.PathOf("new" + std::to_string(Below(4))).c_str());
            [[fallthrough]];
        case ControlKind::CheckBox:
        case ControlKind::RadioButton:
            display.Click(id);
            break;
        case ControlKind::Edit:
            display.Type(id, kTexts[Below(std::size(kTexts))]);
            break;
        case ControlKind::ComboBox:
        case ControlKind::Tab:
            if (const size_t entries = display.Entries(id).size(); entries > 0)
                display.Select(id, static_cast<int>(Below(entries)));
            break;
        case ControlKind::Slider:
            display.Drag(id, static_cast<int>(Below(130)));
            if (Below(2) == 0) display.Release(id);
            break;
        default:
            display.Advance(static_cast<unsigned>(Below(700)));
        }
    }

    void Play(int events) {
        CDialog* const dialog = display.Front();
        for (int i = 0; i < events && !dialog->HasEnded() && !HasFailure(); ++i) {
            if (Below(30) == 0) ChangeTheHost();
            PlayOne();
            Settle();
            display.ClearLog();
            ++played;
        }
        // Its frame is closed behind the script. Dialogs inside the sheet have a parent.
        if (!dialog->HasEnded() && dialog->GetParent() == nullptr) cancelled = true;
    }

    TemporaryDirectory directory;
    std::mt19937 random{4711};
    std::optional<Expectation> expected;
    jTraceState snapshot;
    bool reading = true, cancelled = false; // Init reads
    int played = 0, applied = 0, refused = 0;
};

TEST_F(Monkey, CantBreakTheRules) {
    ASSERT_TRUE(control->Init(0));
    IOrnKVETMSupp* support = static_cast<IOrnKVETMSupp*>(control->GetInterface("IOrnKVETMSupp"));
    while (played < kEvents && !HasFailure()) {
        cancelled = false;
        display.OnNextDialog([this] { Play(2000); });
        if (Below(10) != 0) {
            EXPECT_TRUE(control->Open()) << LastError();
        } else {
            char value[64];
            int32_t mode = 7;
            support->InitBoardFile("", value, sizeof value, &mode);
            EXPECT_TRUE(mode >= -1 && mode <= 2) << mode;
        }
        Settle();
        EXPECT_EQ(g_SheetOpen, 0);
        EXPECT_EQ(display.OpenWindows(), 0);
        EXPECT_TRUE(!cancelled || g_Settings->Working == g_Settings->Snapshot);
        host.boardFile.reset();
    }
    EXPECT_GT(applied, 1000);
    EXPECT_GT(refused, 100);
}

} // namespace
