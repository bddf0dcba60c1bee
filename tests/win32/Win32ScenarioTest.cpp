// The stories on the real library and its native windows.

#include <gtest/gtest.h>

#include "testkit/TemporaryDirectory.h"
#include "tests/module/LoadedModule.h"
#include "tests/scenarios/Scenarios.h"
#include "tests/win32/Win32User.h"

namespace {

class OnWin32 : public ::testing::TestWithParam<Scenario> {};

TEST_P(OnWin32, Tells) {
    TemporaryDirectory directory;
    LoadedModule loaded(directory.Path());
    GetParam().prepare(loaded.host, directory.Path());
    ASSERT_TRUE(loaded.control->Init(0)) << loaded.LastError();

    Win32User user;
    user.OnNextDialog([&](User&) {
        loaded.host.TakeCalls();
        GetParam().script(user, directory.Path());
    });
    user.Sit();
    EXPECT_TRUE(loaded.control->Open()) << loaded.LastError();
    user.GetUp();
    EXPECT_EQ(TakeJournal(GetParam(), loaded.host, directory.Path()),
              ExpectedChanges(GetParam(), directory.Path()));
    EXPECT_EQ(user.Boxes(), GetParam().boxes);
    EXPECT_EQ(user.Surprises(), 0);
}

INSTANTIATE_TEST_SUITE_P(Scenarios, OnWin32, ::testing::ValuesIn(AllScenarios()),
                         [](const auto& info) { return std::string(info.param.name); });

} // namespace
