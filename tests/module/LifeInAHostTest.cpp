// The built library in hosts of all kinds: with a Qt application, without one, with
// no screen, on another thread, loaded again and again.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QApplication>
#include <QTabBar>
#include <algorithm>
#include <clocale>
#include <cstdio>
#include <cstdlib>
#include <optional>
#include <thread>

#include "tests/module/LoadedModule.h"
#include "tests/module/QtUser.h"
#include "toolkit/constants.h"

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::StartsWith;

namespace {

/// Sets an environment variable, or removes it, for the length of a test.
class Environment {
public:
    Environment(const char* name, const char* value) : m_Name(name) {
        if (const char* old = std::getenv(name)) m_Old = old;
        Set(value);
    }
    ~Environment() { Set(m_Old ? m_Old->c_str() : nullptr); }

private:
    void Set(const char* value) {
        if (value != nullptr)
            setenv(m_Name, value, 1);
        else
            unsetenv(m_Name);
    }
    const char* m_Name;
    std::optional<std::string> m_Old;
};

struct Application {
    int argc = 1;
    char name[8] = "host";
    char* argv[2] = {name, nullptr};
    QApplication qt{argc, argv};
};

/// Opens the sheet, runs `script` in it and returns what Open gave. Works in a host
/// without an application too: the watch begins inside the module's first question
/// after the sheet was made.
bool OpenAnd(LoadedModule& loaded, QtUser& user, User::Script script) {
    user.OnNextDialog(std::move(script));
    loaded.host.onCall = [&](const std::string& call) {
        if (call == "GetTraceState" && qApp != nullptr && !user.Watching()) user.Watch();
    };
    const bool opened = loaded.control->Open();
    loaded.host.onCall = nullptr;
    return opened;
}

TEST(ExportedNames, AreOrnDLLAlone) {
    std::string names;
    FILE* pipe = popen("nm -D --defined-only " MODULE_PATH, "r");
    ASSERT_NE(pipe, nullptr);
    char line[512];
    while (std::fgets(line, sizeof line, pipe) != nullptr) names += line;
    ASSERT_EQ(pclose(pipe), 0) << names;
    EXPECT_THAT(names, HasSubstr(" T OrnDLL\n"));
    EXPECT_EQ(std::count(names.begin(), names.end(), '\n'), 1) << names;
}

TEST(HostWithAnApplication, KeepsItsOwnAndItsThread) {
    Application application;
    const QString style = qApp->styleSheet();
    LoadedModule loaded;
    QtUser user;
    ASSERT_TRUE(loaded.control->Init(0));
    std::vector<std::string> tabs;
    EXPECT_TRUE(OpenAnd(loaded, user, [&](User&) {
        QWidget* window = QtUser::Window();
        EXPECT_EQ(window->windowTitle(), "ETM Control");
        auto* bar = window->findChild<QTabBar*>();
        for (int i = 0; i < bar->count(); ++i) tabs.push_back(bar->tabText(i).toStdString());
        user.Click(IDOK);
    })) << loaded.LastError();
    EXPECT_THAT(tabs, ElementsAre("General Control", "ETM Trace Settings", "Status"));
    bool opened = true;
    std::thread([&] { opened = loaded.control->Open(); }).join();
    EXPECT_FALSE(opened);
    EXPECT_THAT(loaded.LastError(), HasSubstr("thread"));
    EXPECT_EQ(qApp, &application.qt);
    EXPECT_EQ(qApp->styleSheet(), style);
    EXPECT_TRUE(QApplication::topLevelWidgets().isEmpty());
}

TEST(HostWithoutAnApplication, GetsOneForAsLongAsTheComponentLives) {
    ASSERT_STREQ(std::setlocale(LC_ALL, "C"), "C");
    Environment locale("LC_ALL", "C.UTF-8");
    {
        LoadedModule loaded;
        QtUser user;
        ASSERT_TRUE(loaded.control->Init(0));
        EXPECT_EQ(qApp, nullptr);
        EXPECT_TRUE(OpenAnd(loaded, user, [&](User&) { user.Click(IDCANCEL); }))
            << loaded.LastError();
        EXPECT_NE(qApp, nullptr);
        EXPECT_STREQ(std::setlocale(LC_ALL, nullptr), "C");
    }
    EXPECT_EQ(qApp, nullptr);
}

TEST(HostWithoutADisplay, GetsAFailedOpenWithAReason) {
    Environment platform("QT_QPA_PLATFORM", nullptr);
    Environment wayland("WAYLAND_DISPLAY", nullptr);
    for (const char* display : {static_cast<const char*>(nullptr), ":987"}) {
        Environment screen("DISPLAY", display);
        LoadedModule loaded;
        ASSERT_TRUE(loaded.control->Init(0));
        EXPECT_FALSE(loaded.control->Open());
        EXPECT_THAT(loaded.LastError(), StartsWith("Error while creating main window: "));
        EXPECT_GT(loaded.LastError().size(), 45u) << loaded.LastError();
        EXPECT_EQ(qApp, nullptr);
    }
}

TEST(HostWithACoreApplication, GetsAFailedOpenWithAReason) {
    int argc = 1;
    char name[] = "host";
    char* argv[] = {name, nullptr};
    QCoreApplication application(argc, argv);
    LoadedModule loaded;
    ASSERT_TRUE(loaded.control->Init(0));
    EXPECT_FALSE(loaded.control->Open());
    EXPECT_THAT(loaded.LastError(), HasSubstr("no QApplication"));
}

TEST(LoadingAgain, Works50Times) {
    for (int round = 0; round < 50; ++round) {
        LoadedModule loaded;
        QtUser user;
        ASSERT_TRUE(loaded.control->Init(0));
        EXPECT_TRUE(OpenAnd(loaded, user, [&](User&) {
            user.Tab(2);
            user.Click(IDCANCEL);
        })) << loaded.LastError();
        EXPECT_EQ(user.Surprises(), 0);
    }
    EXPECT_EQ(qApp, nullptr);
}

TEST(AHostThatThrows, EndsInABox) {
    Application application;
    LoadedModule loaded;
    loaded.host.values[0] = 1;
    ASSERT_TRUE(loaded.control->Init(0));
    QtUser user;
    EXPECT_TRUE(OpenAnd(loaded, user, [&](User&) {
        loaded.host.onCall = [](const std::string& call) {
            if (call == "Command(start)") throw std::runtime_error("the target is gone");
        };
        user.Answer(IDOK);
        user.Click(1030);
        user.Click(IDCANCEL);
    }));
    EXPECT_THAT(user.Boxes(), ElementsAre("[KVETMControl] the target is gone"));

    loaded.host.onCall = [](const std::string&) { throw std::runtime_error("gone"); };
    EXPECT_FALSE(loaded.control->Open());
    EXPECT_EQ(loaded.LastError(), "gone");
}

} // namespace
