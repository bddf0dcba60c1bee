// What a person sets in the dialog reaches the simulated target, and a fresh dialog
// shows it again: thousands of random legal settings on every chip.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <random>

#include "frame/slots.h"
#include "host/commandline/echo.h"
#include "host/module/module_session.h"
#include "testkit/TemporaryDirectory.h"
#include "tests/support/games.h"
#include "toolkit/CWinApp.h"
#include "toolkit/headless/HeadlessDisplay.h"

namespace {

using enum ControlKind;

constexpr int kRounds = 150 * kQuarters;

class RoundTrip : public ::testing::TestWithParam<const char*> {
protected:
    RoundTrip() { AfxGetApp()->UseDisplay(&display); }
    ~RoundTrip() override {
        AfxGetApp()->UseDisplay(nullptr);
        EXPECT_THAT(display.ScriptErrors(), ::testing::IsEmpty());
    }

    size_t Below(size_t limit) {
        return std::uniform_int_distribution<size_t>(0, limit - 1)(random);
    }
    bool Coin() { return Below(2) == 0; }

    /// What the dialog or page in front lets a person set: "id=state" of each control.
    std::string Describe() {
        std::string seen;
        for (const auto& control : display.FrontPage()->GetControls()) {
            if (!control->IsWindowEnabled() || !control->IsWindowVisible()) continue;
            const int id = control->GetDlgCtrlID();
            const ControlKind kind = control->GetKind();
            if (kind == Static || kind == GroupBox || kind == PushButton) continue;
            const std::string state = kind == Edit          ? display.Text(id)
                                      : kind == ComboBox    ? std::to_string(display.Selection(id))
                                      : kind == Slider      ? std::to_string(display.Position(id))
                                      : display.Checked(id) ? "on"
                                                            : "off";
            seen += std::to_string(id) + "=" + state + "\n";
        }
        return seen;
    }

    std::string DescribeAll() {
        display.Tab(1);
        std::string seen = Describe();
        display.Tab(0);
        seen += Describe();
        if (!display.Enabled(1029)) return seen;
        display.OnNextDialog([&] { seen += Describe(); });
        display.Click(1029);
        return seen;
    }

    /// Clicks check box `id` if it can be used and is not what it shall be.
    void Check(int id, bool wanted) {
        if (display.Enabled(id) && display.Checked(id) != wanted) display.Click(id);
    }

    void ClickOneOf(std::initializer_list<int> radios) {
        const int id = radios.begin()[Below(radios.size())];
        if (display.Enabled(id)) display.Click(id);
    }

    std::string Address() {
        static const char* const kForms[] = {"0x%zX", "%zu", "(%zu+4)", "0%zXh", "$%zX", "%zuk"};
        char text[64];
        std::snprintf(text, sizeof text, kForms[Below(std::size(kForms))], Below(1u << 20));
        return text;
    }

    void SetUpBoard() {
        display.OnNextDialog([&] {
            for (const int id : {1065, 1068, 1078})
                if (display.Enabled(id) && !display.Entries(id).empty())
                    display.Select(id, static_cast<int>(Below(display.Entries(id).size())));
            display.Click(IDOK);
        });
        display.Click(1029);
    }

    void SetUpControlPage() {
        const std::string chip = GetParam();
        if (chip == "cortex-m4") // its port has no buffer that could be full
            ClickOneOf({1061, 1035});
        else
            ClickOneOf({1061, 1034, 1035});
        Check(1002, Coin());
        Check(1009, Coin());
        if (display.Enabled(1008)) {
            display.Drag(1007, static_cast<int>(Below(101)));
            display.Release(1007);
            if (Coin()) display.Type(1008, std::to_string(Below(101)));
        }
        if (!display.Checked(1035) || !display.Enabled(1005)) return;
        Check(1004, Coin());
        Check(1005, !display.Checked(1004) || Coin());
        const bool index = chip.starts_with("cortex-m");
        if (display.Enabled(1077)) display.Type(1077, index ? std::to_string(Below(4)) : Address());
    }

    void SetUpTracePage() {
        ClickOneOf({1030, 1012, 1013, 1015, 1017});
        Check(1075, false);
        for (const int id : {1026, 1027}) Check(id, Coin());
        // A range without data to limit is dropped, so it is no setting.
        Check(1075, (display.Checked(1026) || display.Checked(1027)) && Coin());
        const bool indexes = display.Visible(1083);
        for (const int id : {1018, 1019})
            if (display.Enabled(id))
                display.Type(id, indexes ? std::to_string(Below(4)) : Address());
        for (const int id : {1014, 1016})
            if (display.Enabled(id)) display.Type(id, Address());
    }

    HeadlessDisplay display;
    std::mt19937 random{20261122};
};

// Another host, to which every line of the echo is sent.
struct Mirror final : record::EventWriter {
    explicit Mirror(const etmhost::Chip& chip) : host(chip) {}
    void Write(const record::Event& event) override {
        const std::string line = etmhost::EchoLine(event);
        if (!line.empty()) host.trace.Command(line.c_str(), nullptr);
    }
    static auto Held(etmhost::SimulatedHost& host) {
        etmhost::Target& target = host.target;
        return std::tuple(target.SettingsLines(), target.Control(), target.TriggerCount(),
                          target.state.macro, target.state.pinsReady, host.settings);
    }
    etmhost::SimulatedHost host;
};

TEST_P(RoundTrip, AFreshDialogShowsWhatWasSet) {
    TemporaryDirectory directory;
    for (const std::string title : {"First", "Second"})
        directory.Write(title + ".mac",
                        ";[OrnithalWorksTraceInitFile]\n;Title=" + title + "\nmem_init 1\n");
    const etmhost::Chip& chip = *etmhost::FindChip(GetParam());
    Mirror mirror(chip);
    record::EventStream events;
    events.Add(mirror);
    etmhost::SimulatedHost host(chip, {}, events);
    const auto open = [&](HeadlessDisplay::Script script) {
        etmhost::ModuleSession session(*OrnDLL(), directory.PathOf("KVETMControl.so"), host);
        display.OnNextDialog(std::move(script));
        ASSERT_TRUE(session.Open());
    };
    display.AnswerOtherBoxes([&](const std::string&, unsigned flags) {
        return (flags & MB_YESNO) == 0 ? IDOK : Coin() ? IDYES : IDNO;
    });

    for (int round = 0; round < kRounds && !HasFailure(); ++round) {
        SCOPED_TRACE(round);
        std::string set, shown = "nothing";
        display.ClearLog();
        open([&] {
            if (!display.Checked(1000)) {
                display.OnOtherDialogs([&] { display.Click(IDOK); }); // a board, if asked
                display.Click(1000);
            }
            if (Below(20) != 0) {
                SetUpBoard();
                SetUpControlPage();
                display.Tab(1);
                SetUpTracePage();
                display.Tab(0);
                // Stopping after a trigger needs one: without any, the target forgets the mode.
                if (display.Checked(1035) && !display.Checked(1004) && !display.Checked(1005))
                    display.Click(1061);
            } else {
                display.Click(1000); // off again
            }
            set = DescribeAll();
            display.Click(IDOK);
            EXPECT_TRUE(display.Front()->HasEnded()) << "the sheet refused to close";
        });
        EXPECT_EQ(Mirror::Held(mirror.host), Mirror::Held(host));
        open([&] { shown = DescribeAll(); });
        EXPECT_EQ(shown, set) << ::testing::PrintToString(display.Log());
    }
}

INSTANTIATE_TEST_SUITE_P(Chips, RoundTrip,
                         ::testing::Values("arm7", "arm926", "arm9-etb", "cortex-a8", "cortex-m3",
                                           "cortex-m4", "cortex-m4-etb"));

} // namespace
