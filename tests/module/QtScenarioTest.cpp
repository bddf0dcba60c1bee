// The stories on the real library and its real windows, native ones or those of Qt.

#include <gtest/gtest.h>

#include <chrono>
#include <thread>

#include "host/drive/windows.h"
#include "testkit/TemporaryDirectory.h"
#include "tests/module/LoadedModule.h"
#include "tests/scenarios/Scenarios.h"
#if defined(_WIN32)
struct Application {};
#else
#include "tests/module/QtPerson.h"
#endif

namespace {

class Stories : public ::testing::TestWithParam<Scenario> {
    Application application;
};

TEST_P(Stories, Tell) {
    TemporaryDirectory directory;
    const Scenario scenario = GetParam().In(directory.Path());
    LoadedModule loaded(directory.Path());
    scenario.prepare(loaded.host);
    ASSERT_TRUE(loaded.control->Init(0)) << loaded.LastError();
    loaded.host.TakeCalls();

    const std::unique_ptr<etmhost::User> user = etmhost::MakeUser();
    // On a busy machine, where a step takes longer than the pause behind it.
    const auto busy = [](const std::string&) {
        std::this_thread::sleep_for(std::chrono::milliseconds(25));
    };
    etmhost::Interpreter interpreter(scenario.script, *user, busy);
    etmhost::DriveWindows(interpreter,
                          [&] { EXPECT_TRUE(loaded.control->Open()) << loaded.LastError(); });
    interpreter.End();
    EXPECT_EQ(interpreter.failure(), "") << interpreter.failureLine();
    EXPECT_EQ(TakeJournal(scenario, loaded.host, directory.Path()), scenario.changes);
}

constexpr auto NameOf = [](const auto& info) { return info.param.name; };
#if defined(_WIN32)
INSTANTIATE_TEST_SUITE_P(OnWin32, Stories, ::testing::ValuesIn(AllScenarios()), NameOf);
#else
INSTANTIATE_TEST_SUITE_P(OnQt, Stories, ::testing::ValuesIn(AllScenarios()), NameOf);
#endif

} // namespace
