// How long a script waits, and what it does where waiting is in vain: on windows that stand still.

#include "host/drive/Interpreter.h"

#include <gmock/gmock.h>

#include <optional>

#include "host/drive/Watchdog.h"

namespace etmhost {
namespace {

using ::testing::HasSubstr;

/// One dialog with the check boxes 5 and 6 of one caption, which stays whatever is done.
class StubbornWindow final : public User {
public:
    FrontWindow Front() override { return {FrontWindow::Dialog, "Stubborn", {}, false}; }
    bool Has(int id) override { return id == 5 || id == 6; }
    std::vector<int> WithCaption(const std::string& caption) override {
        return caption == "Twin" ? std::vector{5, 6} : std::vector<int>();
    }
    void Click(int) override { ++clicks; }
    void Type(int, const std::string&) override {}
    void Select(int, int) override {}
    void Tab(int) override {}
    void Drag(int, int) override {}
    void Press(const KeyName&) override {}
    void Write(const std::string&) override {}
    void CloseFrame() override { ++closed; }
    void AnswerBox(Answer) override {}
    void SaveAs(const std::string&) override {}
    void TakePicture(const std::filesystem::path&) override {}
    std::string Text(int) override { return "Twin"; }
    bool Enabled(int) override { return enabled; }
    bool Visible(int) override { return true; }
    bool Checked(int) override { return false; }
    int Selection(int) override { return 0; }
    std::vector<std::string> Entries(int) override { return {}; }
    std::string Help() override { return {}; }
    int Focus() override { return 0; }

    bool enabled = false;
    int clicks = 0, closed = 0;
};

class OnAStubbornWindow : public ::testing::Test {
protected:
    void Run(const char* text) {
        script = ParseScript("test", text);
        ASSERT_TRUE(script.errors.empty());
        interpreter.emplace(script, user, nullptr);
        interpreter->OnStuck([this] { ++stuck; });
    }

    StubbornWindow user;
    Script script;
    std::optional<Interpreter> interpreter;
    int stuck = 0;
};

TEST_F(OnAStubbornWindow, EachStepHasPatienceOfItsOwnAndSoHasTheEnd) {
    Run("click 5\nwait until checked 6\nclick 5");
    constexpr uint64_t kAlmost = kStepPatience - 1;
    interpreter->Tick(0);
    interpreter->Tick(kAlmost);
    user.enabled = true;
    interpreter->Tick(kAlmost + 1); // just in time
    EXPECT_EQ(user.clicks, 1);
    interpreter->Tick(kAlmost + 2);
    interpreter->Tick(2 * kAlmost);
    EXPECT_EQ(interpreter->failure(), "") << "the first step's time is not the second one's";
    uint64_t now = 2 * kAlmost + 10;
    interpreter->Tick(now);
    EXPECT_THAT(interpreter->failure(), HasSubstr("expected 6 checked"));
    EXPECT_EQ(interpreter->failureLine(), 2);
    interpreter->Tick(++now);
    interpreter->Tick(now += kAlmost);
    EXPECT_GE(user.closed, 2);
    EXPECT_EQ(stuck, 0) << "it has not been long since the failure";
    interpreter->Tick(now += 10);
    EXPECT_EQ(stuck, 1) << "a window that does not close";
    EXPECT_EQ(user.clicks, 1);
}

TEST_F(OnAStubbornWindow, ACaptionOfTwoIsNoName) {
    user.enabled = true;
    Run("click \"Twin\"");
    interpreter->Tick(0);
    EXPECT_EQ(interpreter->failure(), "\"Twin\" is the caption of several: 5 6");
    EXPECT_EQ(user.clicks, 0);
}

TEST_F(OnAStubbornWindow, TheWatchdogBitesWhoeverDoesNotLetItWork) {
    Run("wait 60000");
    std::atomic<int> bites = 0;
    const auto waitFor = [&](bool ticking, int most) {
        for (int i = 0; i < most && bites == 0; ++i) {
            if (ticking) interpreter->Tick(1);
            std::this_thread::sleep_for(std::chrono::milliseconds(5));
        }
        return bites.exchange(0) != 0;
    };
    const Watchdog watchdog(
        *interpreter, [&] { ++bites; }, std::chrono::seconds(1));
    EXPECT_FALSE(waitFor(true, 400)) << "bites while all goes well";
    EXPECT_TRUE(waitFor(false, 2000));
}

} // namespace
} // namespace etmhost
