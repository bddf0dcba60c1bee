// A monkey at the dialog: random events on a host that fails at random. Whatever it
// does, the rules between the two images of the settings and the target hold.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <optional>
#include <random>

#include "frame/interfaces/IOrnKVETMSupp.h"
#include "testkit/TemporaryDirectory.h"
#include "tests/support/Session.h"
#include "tests/support/games.h"

namespace {

constexpr int kEvents = 50000 * kQuarters;

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
        if (g_Settings->Snapshot != snapshot) Settle(); // another apply has ended
        EXPECT_TRUE(g_Settings->IsModified()) << call << " although nothing differs";
        sent = g_Settings->Working;
        refusals |= Refuses(call);
    }

    /// Whether the host is about to refuse what an apply can't do without.
    bool Refuses(const std::string& call) const {
        if (call.starts_with("SetValue("))
            return host.refusedSetValues.contains(call[11] == '0' ? 0u : 2u);
        if (!call.starts_with("Command(")) return false;
        return !host.refuseAllCommands.empty() ||
               host.refusals.contains(call.substr(8, call.size() - 9));
    }

    /// Between events: Snapshot is what the last apply sent whole, or as it was.
    void Settle() {
        const jTraceState& now = g_Settings->Snapshot;
        if (!reading) {
            if (!refusals && sent) snapshot = *sent;
            EXPECT_TRUE(now == snapshot || (refusals && now == sent)) << "Snapshot by itself";
        }
        if (sent) ++(refusals ? refused : applied);
        reading = refusals = false;
        sent.reset();
        snapshot = now;
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
    jTraceState snapshot;                   // as it was behind the last event
    std::optional<jTraceState> sent;        // Working, when the last change went out
    bool refusals = false;                  // something that went out was refused
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
    EXPECT_GT(applied, kEvents / 200);
    EXPECT_GT(refused, kEvents / 2000);
}

} // namespace
