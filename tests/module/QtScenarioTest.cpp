// The stories on the real library and its real windows, native ones or those of Qt.

#include <gtest/gtest.h>

#include "testkit/TemporaryDirectory.h"
#include "tests/module/LoadedModule.h"
#include "tests/scenarios/Scenarios.h"
#if defined(_WIN32)
#include "tests/win32/Win32User.h"
using Person = Win32User;
struct Application {};
#else
#include "tests/module/QtUser.h"
using Person = QtUser;
#endif

namespace {

class Stories : public ::testing::TestWithParam<Scenario> {
    Application application;
};

TEST_P(Stories, Tell) {
    TemporaryDirectory directory;
    LoadedModule loaded(directory.Path());
    GetParam().prepare(loaded.host, directory.Path());
    ASSERT_TRUE(loaded.control->Init(0)) << loaded.LastError();

    Person person;
    person.OnNextDialog([&](User& user) {
        loaded.host.TakeCalls();
        GetParam().script(user, directory.Path());
    });
    EXPECT_TRUE(person.Open(*loaded.control)) << loaded.LastError();
    EXPECT_EQ(TakeJournal(GetParam(), loaded.host, directory.Path()),
              ExpectedChanges(GetParam(), directory.Path()));
    EXPECT_EQ(person.Boxes(), GetParam().boxes);
    EXPECT_EQ(person.Surprises(), 0);
}

constexpr auto NameOf = [](const auto& info) { return std::string(info.param.name); };
#if defined(_WIN32)
INSTANTIATE_TEST_SUITE_P(OnWin32, Stories, ::testing::ValuesIn(AllScenarios()), NameOf);
#else
INSTANTIATE_TEST_SUITE_P(OnQt, Stories, ::testing::ValuesIn(AllScenarios()), NameOf);
#endif

} // namespace
