// The stories on the real library and its real windows.

#include <gtest/gtest.h>

#include <QApplication>

#include "testkit/TemporaryDirectory.h"
#include "tests/module/LoadedModule.h"
#include "tests/module/QtUser.h"
#include "tests/scenarios/Scenarios.h"

namespace {

class OnQt : public ::testing::TestWithParam<Scenario> {};

TEST_P(OnQt, Tells) {
    int argc = 1;
    char name[] = "module_tests";
    char* argv[] = {name, nullptr};
    QApplication application(argc, argv);
    TemporaryDirectory directory;
    LoadedModule loaded(directory.Path());
    GetParam().prepare(loaded.host, directory.Path());
    ASSERT_TRUE(loaded.control->Init(0)) << loaded.LastError();

    QtUser user;
    user.OnNextDialog([&](User&) {
        loaded.host.TakeCalls();
        GetParam().script(user, directory.Path());
    });
    user.Watch();
    EXPECT_TRUE(loaded.control->Open()) << loaded.LastError();
    EXPECT_EQ(TakeJournal(GetParam(), loaded.host, directory.Path()),
              ExpectedChanges(GetParam(), directory.Path()));
    EXPECT_EQ(user.Boxes(), GetParam().boxes);
    EXPECT_EQ(user.Surprises(), 0);
}

INSTANTIATE_TEST_SUITE_P(Scenarios, OnQt, ::testing::ValuesIn(AllScenarios()),
                         [](const auto& info) { return std::string(info.param.name); });

} // namespace
