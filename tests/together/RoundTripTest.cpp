// What a person sets in the dialog reaches the simulated target, and a fresh dialog
// shows it again: thousands of random legal settings on every chip.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fstream>
#include <random>

#include "frame/slots.h"
#include "host/module_session.h"
#include "tests/support/TemporaryDirectory.h"
#include "toolkit/CWinApp.h"
#include "toolkit/headless/HeadlessDisplay.h"

namespace {

constexpr int kRoundsPerChip = 600;

class RoundTrip : public ::testing::TestWithParam<const char*> {
protected:
    RoundTrip() { AfxGetApp()->UseDisplay(&display); }
    ~RoundTrip() override {
        AfxGetApp()->UseDisplay(nullptr);
        EXPECT_THAT(display.ScriptErrors(), ::testing::IsEmpty());
    }

    size_t Below(size_t limit) {
        return std::uniform_int_distribution<size_t>(0, limit - 1)(m_Random);
    }
    bool Coin() { return Below(2) == 0; }

    /// Adds "id=state" for what the dialog or page in front lets a person set.
    void Describe(std::vector<std::string>& seen) {
        for (const auto& control : display.FrontPage()->GetControls()) {
            if (!control->IsWindowEnabled() || !control->IsWindowVisible()) continue;
            const int id = control->GetDlgCtrlID();
            std::string state;
            switch (control->GetKind()) {
            case ControlKind::CheckBox:
            case ControlKind::RadioButton:
                state = display.Checked(id) ? "on" : "off";
                break;
            case ControlKind::ComboBox:
                state = std::to_string(display.Selection(id));
                break;
            case ControlKind::Slider:
                state = std::to_string(display.Position(id));
                break;
            case ControlKind::Edit:
                state = display.Text(id);
                break;
            default:
                continue;
            }
            seen.push_back(std::to_string(id) + "=" + state);
        }
    }

    void DescribeAll(std::vector<std::string>& seen) {
        display.Tab(1);
        Describe(seen);
        display.Tab(0);
        Describe(seen);
        if (!display.Enabled(1029)) return;
        display.OnNextDialog([&] { Describe(seen); });
        display.Click(1029);
    }

    /// Clicks check box `id` if it can be used and is not what it shall be.
    void Check(int id, bool wanted) {
        if (display.Enabled(id) && display.Checked(id) != wanted) display.Click(id);
    }

    std::string Address() {
        static const char* const kForms[] = {"0x%zX", "%zu", "(%zu+4)", "%zXh", "$%zX", "%zuk"};
        char text[64];
        std::snprintf(text, sizeof text, kForms[Below(std::size(kForms))], Below(1u << 20));
        return std::isalpha(static_cast<unsigned char>(text[0])) ? "0" + std::string(text) : text;
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
        static constexpr int kStopModes[] = {1061, 1034, 1035};
        const int stop = kStopModes[Below(3)];
        if (display.Enabled(stop)) display.Click(stop);
        Check(1002, Coin());
        Check(1009, Coin());
        if (display.Enabled(1008)) {
            if (Coin())
                display.Type(1008, std::to_string(Below(101)));
            else {
                display.Drag(1007, static_cast<int>(Below(101)));
                display.Release(1007);
            }
        }
        if (!display.Checked(1035) || !display.Enabled(1005)) return;
        Check(1004, Coin());
        Check(1005, !display.Checked(1004) || Coin());
        if (display.Enabled(1077)) display.Type(1077, Address());
    }

    /// Stopping after a trigger needs one: without any, the target forgets the mode.
    void GiveUpAnIdleStopMode() {
        if (display.Checked(1035) && !display.Checked(1004) && !display.Checked(1005))
            display.Click(1061);
    }

    void SetUpTracePage() {
        static constexpr int kModes[] = {1030, 1012, 1013, 1015, 1017};
        const int mode = kModes[Below(5)];
        if (display.Enabled(mode)) display.Click(mode);
        for (const int id : {1026, 1027, 1075}) Check(id, Coin());
        // A range without data to limit is dropped, so it is no setting.
        if (!display.Checked(1026) && !display.Checked(1027) && display.Checked(1075) &&
            display.Enabled(1026)) {
            display.Click(1026);
            if (display.Checked(1075)) display.Click(1075);
            display.Click(1026);
        }
        const bool indexes = display.Visible(1083);
        for (const int id : {1018, 1019})
            if (display.Enabled(id))
                display.Type(id, indexes ? std::to_string(Below(4)) : Address());
        for (const int id : {1014, 1016})
            if (display.Enabled(id)) display.Type(id, Address());
    }

    HeadlessDisplay display;

private:
    std::mt19937 m_Random{20261122};
};

TEST_P(RoundTrip, AFreshDialogShowsWhatWasSet) {
    TemporaryDirectory directory;
    for (const char* title : {"First", "Second"})
        std::ofstream(directory.Path() + "/" + title + ".mac")
            << ";[OrnithalWorksTraceInitFile]\n;Title=" << title << "\nmem_init 1\n";
    const std::string path = directory.Path() + "/KVETMControl.so";
    etmhost::SimulatedHost host(*etmhost::FindChip(GetParam()), {}, etmhost::Journal());
    display.AnswerOtherBoxes([&](const std::string&, unsigned flags) {
        return (flags & MB_YESNO) == 0 ? IDOK : Coin() ? IDYES : IDNO;
    });

    for (int round = 0; round < kRoundsPerChip && !HasFailure(); ++round) {
        SCOPED_TRACE(round);
        std::vector<std::string> set;
        std::vector<std::string> shown;
        bool answered = false;
        {
            etmhost::ModuleSession session(*OrnDLL(), path, host);
            display.ClearLog();
            display.OnNextDialog([&] {
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
                    GiveUpAnIdleStopMode();
                } else {
                    display.Click(1000); // off again
                }
                DescribeAll(set);
                display.Click(IDOK);
                answered = true;
                EXPECT_TRUE(display.Front()->HasEnded()) << "the sheet refused to close";
            });
            ASSERT_TRUE(session.control().Open());
        }
        ASSERT_TRUE(answered);
        {
            etmhost::ModuleSession session(*OrnDLL(), path, host);
            display.OnNextDialog([&] { DescribeAll(shown); });
            ASSERT_TRUE(session.control().Open());
        }
        EXPECT_EQ(shown, set) << ::testing::PrintToString(display.Log());
    }
}

INSTANTIATE_TEST_SUITE_P(Chips, RoundTrip,
                         ::testing::Values("arm7", "arm926", "arm9-etb", "cortex-a8", "cortex-m3"),
                         [](const auto& info) {
                             std::string name = info.param;
                             std::erase(name, '-');
                             return name;
                         });

} // namespace
