// The stories on the headless display.

#include "testkit/TemporaryDirectory.h"
#include "tests/scenarios/Scenarios.h"
#include "tests/support/Session.h"

namespace {

class HeadlessUser final : public User {
public:
    explicit HeadlessUser(HeadlessDisplay& display) : m_Display(display) {}

    void OnNextDialog(Script script) override {
        m_Display.OnNextDialog([this, script = std::move(script)] { script(*this); });
    }
    void Answer(int result) override { m_Display.Answer(result); }
    void AnswerSave(const char* path) override { m_Display.AnswerSave(path); }
    void Click(int id) override { m_Display.Click(id); }
    void Type(int id, const char* text) override { m_Display.Type(id, text); }
    void Select(int id, int index) override { m_Display.Select(id, index); }
    void Tab(int index) override { m_Display.Tab(index); }
    void Drag(int id, int position) override {
        m_Display.Drag(id, position);
        m_Display.Release(id);
    }
    void CloseFrame() override { m_Display.CloseFrame(); }
    void Wait(unsigned milliseconds) override { m_Display.Advance(milliseconds); }
    std::string Text(int id) override { return m_Display.Text(id); }
    bool Enabled(int id) override { return m_Display.Enabled(id); }
    bool Visible(int id) override { return m_Display.Visible(id); }
    bool Checked(int id) override { return m_Display.Checked(id); }
    int Selection(int id) override { return m_Display.Selection(id); }
    int TabInFront() override { return m_Display.Selection(IDC_TAB_CONTROL); }
    int Focus() override { return m_Display.Focused(); }
    std::vector<std::string> Boxes() override { return m_Display.Boxes(); }

private:
    HeadlessDisplay& m_Display;
};

class OnHeadless : public Session, public ::testing::WithParamInterface<Scenario> {};

TEST_P(OnHeadless, Tells) {
    TemporaryDirectory directory;
    OrnDLL()->SetModulePath((directory.Path() + "/KVETMControl.so").c_str());
    GetParam().prepare(host, directory.Path());
    HeadlessUser user(display);
    EXPECT_TRUE(OpenAnd([&] {
        host.TakeCalls();
        GetParam().script(user, directory.Path());
    }));
    EXPECT_EQ(TakeJournal(GetParam(), host, directory.Path()),
              ExpectedChanges(GetParam(), directory.Path()));
    EXPECT_EQ(user.Boxes(), GetParam().boxes);
    EXPECT_EQ(display.UnansweredBoxes(), 0);
}

INSTANTIATE_TEST_SUITE_P(Scenarios, OnHeadless, ::testing::ValuesIn(AllScenarios()),
                         [](const auto& info) { return std::string(info.param.name); });

} // namespace
