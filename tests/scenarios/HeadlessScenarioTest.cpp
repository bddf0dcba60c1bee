// The stories on the headless display.

#include <optional>
#include <utility>

#include "host/drive/Interpreter.h"
#include "testkit/TemporaryDirectory.h"
#include "tests/scenarios/Scenarios.h"
#include "tests/support/Session.h"
#include "toolkit/help.h"

namespace {

using etmhost::FrontWindow;
using etmhost::Interpreter;

/// A display whose windows, while they are open, let an interpreter work, and the user that it
/// works as. Where a step cannot be made yet, time goes by.
class DrivenDisplay final : public HeadlessDisplay, public etmhost::User {
public:
    explicit DrivenDisplay(const etmhost::Script& script) : interpreter(script, *this, nullptr) {
        OnOtherDialogs([this] {
            CDialog* const dialog = HeadlessDisplay::Front();
            while (!dialog->HasEnded()) Work();
        });
    }

    int ShowMessage(CWnd*, const char* text, const char* title, unsigned flags) override {
        const bool asks = (flags & MB_YESNO) != 0;
        m_Buttons = asks ? std::vector{IDYES, IDNO} : std::vector{IDOK};
        return WorkAt({FrontWindow::Box, title, text, false});
    }
    bool AskSaveFile(SaveFileRecord& record) override {
        WorkAt({FrontWindow::Save, record.title != nullptr ? record.title : "", "", false});
        HeadlessDisplay::AnswerSave(m_Path.empty() ? nullptr : m_Path.c_str());
        return HeadlessDisplay::AskSaveFile(record);
    }

    FrontWindow Front() override {
        if (m_Box) return *m_Box;
        const CDialog& dialog = *HeadlessDisplay::Front();
        return {FrontWindow::Dialog, dialog.GetWindowText(), "", dialog.AsSheet() != nullptr};
    }
    bool Has(int id) override { return HeadlessDisplay::Has(id); }
    std::vector<int> WithCaption(const std::string& caption) override {
        std::vector<int> found;
        for (const CDialog* dialog :
             std::set<const CDialog*>{HeadlessDisplay::Front(), FrontPage()})
            for (const auto& control : dialog->GetControls())
                if (dynamic_cast<CButton*>(control.get()) != nullptr &&
                    control->IsWindowVisible() &&
                    etmhost::WithoutMarks(control->GetWindowText()) == caption)
                    found.push_back(control->GetDlgCtrlID());
        return found;
    }

    void Click(int id) override { HeadlessDisplay::Click(id); }
    void Type(int id, const std::string& text) override {
        std::string typed;
        for (const char c : text) typed += c == '\n' ? "\r\n" : std::string(1, c);
        HeadlessDisplay::Type(id, typed);
    }
    void Select(int id, int index) override { HeadlessDisplay::Select(id, index); }
    void Tab(int index) override { HeadlessDisplay::Tab(index); }
    void Drag(int id, int position) override {
        HeadlessDisplay::Drag(id, position);
        HeadlessDisplay::Release(id);
    }
    void Press(const etmhost::KeyName& key) override {
        const bool putAway = key.name == "Escape" && m_Helped != nullptr;
        if (key.name != "F1" && !putAway) throw std::runtime_error("no keyboard");
        CWnd* const shown = std::exchange(m_Helped, nullptr);
        if (putAway) return;
        m_Helped =
            NextHelp(*HeadlessDisplay::Front(), Focus() != 0 ? &Control(Focus()) : nullptr, shown);
    }
    void Write(const std::string&) override { throw std::runtime_error("no keyboard"); }
    void CloseFrame() override {
        if (!m_Box) return HeadlessDisplay::CloseFrame();
        m_Answer = m_Buttons.empty() ? 0 : m_Buttons.back();
    }
    void AnswerBox(etmhost::Answer answer) override {
        if (answer == etmhost::Answer::Escape) return CloseFrame();
        const int button = std::array{IDYES, IDNO, IDOK, IDCANCEL}[static_cast<size_t>(answer)];
        if (std::ranges::count(m_Buttons, button) == 0) throw std::runtime_error("no such button");
        m_Answer = button;
    }
    void SaveAs(const std::string& path) override {
        m_Path = path;
        m_Answer = 0;
    }
    void TakePicture(const std::filesystem::path&) override { throw std::runtime_error("blind"); }

    std::string Text(int id) override { return HeadlessDisplay::Text(id); }
    bool Enabled(int id) override { return HeadlessDisplay::Enabled(id); }
    bool Visible(int id) override { return HeadlessDisplay::Visible(id); }
    bool Checked(int id) override { return HeadlessDisplay::Checked(id); }
    int Selection(int id) override { return HeadlessDisplay::Selection(id); }
    std::vector<std::string> Entries(int id) override { return HeadlessDisplay::Entries(id); }
    using HeadlessDisplay::Focus; // the other one
    int Focus() override { return Focused(); }
    std::string Help() override { return m_Helped != nullptr ? HelpText(*m_Helped) : ""; }

    Interpreter interpreter;

private:
    void Work() {
        constexpr unsigned pause = 20; // in ms
        if (interpreter.Tick(m_Time)) return;
        m_Time += pause;
        Advance(pause);
    }
    int WorkAt(FrontWindow box) {
        m_Box = std::move(box);
        for (m_Answer.reset(); !m_Answer;) Work();
        m_Box.reset();
        return *m_Answer;
    }

    uint64_t m_Time = 0;
    std::optional<FrontWindow> m_Box; // or save dialog, if one is in front
    std::vector<int> m_Buttons;       // of the box
    std::optional<int> m_Answer;      // ends it
    std::string m_Path;
    CWnd* m_Helped = nullptr; // whose help F1 has brought up
};

class OnHeadless : public Session, public ::testing::WithParamInterface<Scenario> {};

TEST_P(OnHeadless, Tells) {
    TemporaryDirectory directory;
    const Scenario scenario = GetParam().In(directory.Path());
    DrivenDisplay driven(scenario.script);
    AfxGetApp()->UseDisplay(&driven);
    OrnDLL()->SetModulePath((directory.Path() + "/KVETMControl.so").c_str());
    scenario.prepare(host);
    ASSERT_TRUE(control->Init(0)) << LastError();
    host.TakeCalls();
    EXPECT_TRUE(control->Open());
    driven.interpreter.End();
    EXPECT_EQ(driven.interpreter.failure(), "") << driven.interpreter.failureLine();
    EXPECT_EQ(TakeJournal(scenario, host, directory.Path()), scenario.changes);
}

using AScriptOnHeadless = Session;

TEST_F(AScriptOnHeadless, EndsAtTheFirstThingThatIsNotSo) {
    host.values[ORN_VALUE_CONTROL] = ORN_CONTROL_ENABLE;
    const std::pair<const char*, const char*> rows[] = {
        {"if checked 1000\nif not tab 1\nclick 9\nelse\ncancel\nend\nelse\nok\nend", ""},
        {"click \"Start\"\nwait 700\nwait until tab 1\nif hidden 9\nclick 9\nend\nclose", ""},
        {"click \"Nothing\"", "1: expected \"Nothing\" in front, is window \"ETM Control\""},
        {"click 1031", "1: expected 1031 enabled, is disabled"},
        {"tab 3\nclick 1002", "2: expected 1002 in front, is window \"ETM Control\""},
        {"tab \"Four\"", "1: expected \"Four\" in 12320, is \"General Control\", \"ETM Trace "
                         "Settings\", \"Status\""},
        {"expect not enabled apply\nexpect enabled apply",
         "2: expected apply enabled, is disabled"},
        {"expect not visible 9", "1: expected 9 hidden, is not there"},
        {"expect text 1008 \"1\"", "1: expected text \"1\" in 1008, is \"50\""},
        {"wait until tab 2", "1: expected tab 2, is 1 (General Control)"},
        {"click 1029\nexpect window \"ETM Control\"",
         "2: expected window \"ETM Control\", is window \"ETM Configuration\""},
        {"click 1029\nexpect selection 1078 none",
         "2: expected selection none in 1078, is 1 (Generic board - no trace "
         "init file)"},
        {"answer ok", "1: expected a message box, is window \"ETM Control\""},
        {"save cancel", "1: expected the save dialog, is window \"ETM Control\""},
        {"tab 2\nclick 1013\ntab 1\n\nclick 1012",
         "5: a box \"Cannot validate address\" came up: Address entry is empty"},
        {"tab 2\nclick 1013\ntab 1\nanswer yes", "4: no such button"},
        {"tab 2\nclick 1013\ntab 1\nanswer ok\nok",
         "5: a box \"Cannot validate address\" came up: Address entry is empty"},
        {"step \"on\"", "1: expected the windows to close, is window \"ETM Control\" open"},
        {"cancel\nstep \"on\"\nexpect tab 1", "3: the dialog has closed already"},
    };
    for (const auto& [text, failure] : rows) {
        SCOPED_TRACE(text);
        const etmhost::Script script = etmhost::ParseScript("s", text);
        ASSERT_THAT(script.errors, ::testing::SizeIs(0));
        DrivenDisplay driven(script);
        AfxGetApp()->UseDisplay(&driven);
        EXPECT_TRUE(control->Init(0) && control->Open());
        driven.interpreter.End();
        const std::string line = std::to_string(driven.interpreter.failureLine()) + ": ";
        EXPECT_EQ(line + driven.interpreter.failure(), *failure != '\0' ? failure : "0: ");
        EXPECT_EQ(driven.OpenWindows(), 0);
    }
    AfxGetApp()->UseDisplay(&display);
}

INSTANTIATE_TEST_SUITE_P(Scenarios, OnHeadless, ::testing::ValuesIn(AllScenarios()),
                         [](const auto& info) { return info.param.name; });

} // namespace
