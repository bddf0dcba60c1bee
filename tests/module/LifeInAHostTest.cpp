// The built library in hosts of all kinds: with a Qt application, without one, with
// no screen, on another thread, loaded again and again, forked, with an X server that
// dies.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QDialog>
#include <QLineEdit>
#include <QTimer>
#include <clocale>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <deque>
#include <dlfcn.h>
#include <fstream>
#include <optional>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

#include "testkit/TemporaryDirectory.h"
#include "tests/module/LoadedModule.h"
#include "tests/module/QtPerson.h"
#include "tests/support/built.h"
#include "toolkit/constants.h"

/// For AddressSanitizer: that library copies texts of the X server, which bear no NUL.
extern "C" const char* AsanSuppressions() __asm__("__asan_default_suppressions");
extern "C" const char* AsanSuppressions() {
    return "interceptor_via_lib:libxkbcommon-x11";
}

using ::testing::ElementsAre;
using ::testing::ExitedWithCode;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::MatchesRegex;
using ::testing::Not;
using ::testing::StartsWith;

namespace {

/// Sets an environment variable, or removes it, for the length of a test.
struct Environment {
    Environment(const char* variable, const char* value) : name(variable), old(qgetenv(variable)) {
        Set(value);
    }
    ~Environment() { Set(old.isNull() ? nullptr : old.constData()); }
    void Set(const char* value) { value ? setenv(name, value, 1) : unsetenv(name); }

    const char* const name;
    const QByteArray old;
};

void ExpectRefused(LoadedModule& loaded, const char* reason) {
    EXPECT_TRUE(loaded.control->Init(0));
    EXPECT_FALSE(loaded.control->Open());
    EXPECT_THAT(loaded.LastError(), StartsWith("Error while creating main window: "));
    EXPECT_THAT(loaded.LastError(), HasSubstr(reason));
}

/// Works in a host without an application too: the watch begins inside the module's first
/// question after the sheet was made.
void OpenAndCancel(LoadedModule& loaded) {
    EXPECT_TRUE(loaded.control->Init(0));
    QtPerson user;
    user.OnNextDialog([](QtPerson& person) {
        person.Tab(2);
        person.Click(IDCANCEL);
    });
    loaded.host.onCall = [&](const std::string& call) {
        if (call == "GetTraceState" && qApp != nullptr && !user.Watching()) user.Watch();
    };
    EXPECT_TRUE(loaded.control->Open()) << loaded.LastError();
    EXPECT_EQ(user.Surprises(), 0);
    loaded.host.onCall = nullptr;
}

std::string OutputOf(const std::string& program, const char* file) {
    std::string output;
    FILE* pipe = popen((program + file).c_str(), "r");
    char line[512];
    while (std::fgets(line, sizeof line, pipe) != nullptr) output += line;
    EXPECT_EQ(pclose(pipe), 0) << output;
    return output;
}

TEST(EachLibrary, HasOneExportAndTheModuleNoWindowToolkit) {
    EXPECT_THAT(OutputOf("nm -D --defined-only ", built::kModule),
                MatchesRegex("[^\n]* T OrnDLL\n"));
    EXPECT_THAT(OutputOf("nm -D --defined-only ", built::kDisplay),
                MatchesRegex("[^\n]* T KVETMDisplay\n"));
    EXPECT_THAT(OutputOf("readelf -d ", built::kModule), Not(HasSubstr("libQt")));
}

TEST(HostWithAnApplication, KeepsItsOwnAndItsThreadAndMayThrow) {
    const Application application;
    const QString style = qApp->styleSheet();
    LoadedModule loaded;
    loaded.host.values[ORN_VALUE_CONTROL] = ORN_CONTROL_ENABLE;
    ASSERT_TRUE(loaded.control->Init(0));
    QtPerson user;
    user.OnNextDialog([&](QtPerson&) {
        loaded.host.onCall = [](const std::string& call) {
            if (call == "Command(start)") throw std::runtime_error("the target is gone");
        };
        user.Answer(IDOK);
        user.Click(1030);
        user.Click(IDCANCEL);
    });
    EXPECT_TRUE(user.Open(*loaded.control));
    EXPECT_THAT(user.Boxes(), ElementsAre("[KVETMControl] the target is gone"));
    loaded.host.onCall = [](const std::string&) { throw std::runtime_error("gone"); };
    EXPECT_FALSE(loaded.control->Open());
    EXPECT_EQ(loaded.LastError(), "gone");
    loaded.host.onCall = nullptr;
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
    const Environment locale("LC_ALL", "C.UTF-8");
    for (int round = 0; round < 50; ++round) {
        LoadedModule loaded;
        EXPECT_EQ(qApp, nullptr);
        OpenAndCancel(loaded);
        EXPECT_NE(qApp, nullptr);
        EXPECT_STREQ(std::setlocale(LC_ALL, nullptr), "C");
    }
    EXPECT_EQ(qApp, nullptr);
}

TEST(HostWithoutADisplay, GetsAFailedOpenWithAReason) {
    Environment wayland("WAYLAND_DISPLAY", nullptr);
    struct {
        const char *platforms, *display, *reason;
    } const rows[] = {
        {nullptr, nullptr, "DISPLAY is not set"},
        {nullptr, ":987", "\":987\" does not answer"},
        {";", nullptr, "DISPLAY is not set"},
        {"wayland", nullptr, "Wayland server"},
        {"linuxfb", nullptr, "\"linuxfb\" is not supported"},
        {"eglfs;xcb", nullptr, "\"eglfs\" is not supported"},
        {"minimalegl", nullptr, "\"minimalegl\" is not supported"},
        {"vnc", nullptr, "\"vnc\" is not supported"},
        {"offscreen:configfile=none", nullptr, "\"offscreen:configfile=none\" is not supported"},
    };
    for (const auto& row : rows) {
        Environment platform("QT_QPA_PLATFORM", row.platforms);
        Environment screen("DISPLAY", row.display);
        LoadedModule loaded;
        ExpectRefused(loaded, row.reason);
        EXPECT_EQ(qApp, nullptr);
    }
}

TEST(HostWithACoreApplication, GetsAFailedOpenWithAReason) {
    int argc = 1;
    char name[] = "host", *argv[] = {name, nullptr};
    QCoreApplication application(argc, argv);
    LoadedModule loaded;
    ExpectRefused(loaded, "no QApplication");
}

constexpr int kFine = 7;

/// For what may end or spoil a process: the status, and a word on what went wrong.
int Status() {
    const auto& result = *::testing::UnitTest::GetInstance()->current_test_info()->result();
    for (int i = 0; i < result.total_part_count(); ++i)
        std::fprintf(stderr, "%s\n", result.GetTestPartResult(i).message());
    return result.Failed() ? 1 : kFine;
}

namespace fs = std::filesystem;

std::string BytesOf(const char* file) {
    std::string bytes(fs::file_size(file), '\0');
    std::ifstream(file, std::ios::binary).read(bytes.data(), std::streamsize(bytes.size()));
    return bytes;
}

TEST(TheDisplay, LiesBesideTheModule) {
    std::string otherHash = BytesOf(built::kDisplay); // of the toolkit's sources
    otherHash[otherHash.find(", compiler ") - 1] ^= 1;
    const std::pair<std::string, const char*> rows[] = {
        {"", "KVETMControlQt.so: cannot open"},
        {"no library", "KVETMControlQt.so: "},
        {BytesOf(built::kModule), "KVETMControlQt.so is none."},
        {otherHash, "KVETMControlQt.so is of another build."},
        {BytesOf(built::kDisplay), nullptr},
    };
    const fs::path before = fs::current_path();
    std::deque<TemporaryDirectory> directories; // the loader knows files by name and inode
    for (const auto& [bytes, reason] : rows) {
        const TemporaryDirectory& modules = directories.emplace_back();
        const TemporaryDirectory& links = directories.emplace_back();
        modules.Write("KVETMControl.so", BytesOf(built::kModule));
        if (!bytes.empty()) modules.Write("KVETMControlQt.so", bytes);
        const std::string link = "./" + std::to_string(directories.size());
        fs::create_symlink(modules.PathOf("KVETMControl.so"), links.PathOf(link));
        fs::current_path(links.Path());
        LoadedModule loaded("/opt/debugger", link);
        fs::current_path(before);
        if (reason != nullptr) ExpectRefused(loaded, reason);
        if (bytes.empty()) modules.Write("KVETMControlQt.so", BytesOf(built::kDisplay));
        if (bytes.empty() || reason == nullptr) OpenAndCancel(loaded);
    }
}

/// An X server that goes with this process.
struct XServer {
    XServer() {
        if (std::fscanf(pipe, "%d %d", &process, &number) != 2) throw std::runtime_error("no Xvfb");
    }
    ~XServer() { Kill(), pclose(pipe); }
    /// Returns when it is dead, which takes a while on a busy machine.
    void Kill() const {
        siginfo_t end;
        kill(process, SIGKILL);
        waitid(P_PID, static_cast<id_t>(process), &end, WEXITED | WNOWAIT);
    }

    FILE* const pipe = popen("echo $$; exec setpriv --pdeathsig KILL Xvfb -displayfd 1", "r");
    int process = 0, number = 0;
};

/// Opens the sheet, runs the steps with a pause between, whatever windows they bring up,
/// and returns what Open gave. "Start" brings up a box.
bool OpenAndGo(LoadedModule& loaded, const std::vector<std::function<void(QtPerson&)>>& steps) {
    loaded.host.values[ORN_VALUE_CONTROL] = ORN_CONTROL_ENABLE;
    EXPECT_TRUE(loaded.control->Init(0));
    QtPerson user;
    bool begun = false;
    auto step = steps.begin();
    std::function<void()> next = [&] {
        if (step + 1 != steps.end()) QTimer::singleShot(100, qApp, next);
        (*step++)(user);
    };
    loaded.host.onCall = [&](const std::string& call) {
        if (call == "Command(start)") throw std::runtime_error("in a box");
        if (call == "GetTraceState" && !std::exchange(begun, true))
            QTimer::singleShot(100, qApp, next);
    };
    const bool opened = loaded.control->Open();
    loaded.host.onCall = nullptr;
    EXPECT_TRUE(step == steps.end());
    return opened;
}

constexpr auto Edit = [](QtPerson& user) { user.Click(1002); };
constexpr auto Configure = [](QtPerson& user) { user.Click(1029); };
constexpr auto Start = [](QtPerson& user) { user.Click(1030); };

TEST(AHostThatDestroysTheComponent, EndsWhateverRuns) {
    const Application application;
    const TemporaryDirectory directory;
    directory.Write("b.mac", "");
    const auto save = [](QtPerson& user) {
        user.Type(1080, "Title=My Board\n");
        user.Click(1082);
    };
    const auto replace = [](QtPerson&) { // a question in front of the save dialog
        QtPerson::Window()->findChild<QLineEdit*>("fileNameEdit")->setText("b.mac");
        QMetaObject::invokeMethod(QtPerson::Window(), "accept");
    };
    const auto menu = [](QtPerson&) {
        QMetaObject::invokeMethod(QtPerson::Window(), "_q_showContextMenu",
                                  Q_ARG(QPoint, QPoint(5, 5)));
    };
    std::vector<std::function<void(QtPerson&)>> const rows[] = {
        {Configure},
        {Start},
        {Configure, save},
        {Configure, save, replace},
        {Configure, save, menu},
    };
    for (auto steps : rows) {
        SCOPED_TRACE(steps.size());
        LoadedModule loaded(directory.Path());
        steps.insert(steps.begin(), Edit);
        steps.push_back([&](QtPerson&) {
            loaded.host.TakeCalls();
            loaded.Destroy();
        });
        OpenAndGo(loaded, steps);
        EXPECT_THAT(loaded.host.TakeChanges(), IsEmpty());
        EXPECT_TRUE(QApplication::topLevelWidgets().isEmpty());
    }
}

[[noreturn]] void LoseTheXServer(std::vector<std::function<void(QtPerson&)>> steps) {
    alarm(30);
    XServer server;
    const Environment platform("QT_QPA_PLATFORM", "xcb");
    const Environment display("DISPLAY", (":" + std::to_string(server.number)).c_str());
    std::optional<LoadedModule> loaded(std::in_place);
    steps.push_back([&](QtPerson&) {
        loaded->host.TakeCalls();
        // Inside a handler, with events of the server to be read behind it.
        QTimer::singleShot(0, qApp, [&] { server.Kill(), usleep(20'000); });
        QtPerson::Window()->move(5, 5);
        QtPerson::Window()->repaint();
        usleep(20'000);
    });
    EXPECT_TRUE(OpenAndGo(*loaded, steps));
    EXPECT_TRUE(loaded->control->Apply());
    EXPECT_THAT(loaded->host.TakeChanges(), IsEmpty());
    for (int components = 0; components < 2; ++components) {
        ExpectRefused(*loaded, "X server");
        loaded.emplace();
    }
    loaded.reset();
    std::exit(Status());
}

/// The host makes an application while ours is there.
[[noreturn]] void HaveAnotherBesideOurs(bool itEndsFirst) {
    std::optional<LoadedModule> loaded(std::in_place);
    OpenAndCancel(*loaded);
    std::optional<Application> other(std::in_place);
    OpenAndCancel(*loaded);
    if (itEndsFirst) {
        other.reset();
        ExpectRefused(*loaded, "has ended its Qt application");
        loaded.emplace();
        ExpectRefused(*loaded, "has ended its Qt application");
    }
    loaded.reset();
    if (other) {
        QDialog dialog;
        QTimer::singleShot(0, &dialog, &QDialog::reject);
        dialog.exec();
    }
    other.reset();
    std::exit(Status());
}

/// The host shows no window. The component may be destroyed from inside a call.
[[noreturn]] void ShowNoWindow() {
    LoadedModule loaded;
    EXPECT_TRUE(loaded.control->Init(0));
    EXPECT_TRUE(loaded.control->Apply());
    IOrnKVETMCtrl* control = loaded.control;
    loaded.host.onCall = [&](const std::string&) { loaded.Destroy(); };
    control->Init(0);
    EXPECT_EQ(loaded.control, nullptr);
    EXPECT_EQ(dlopen(built::kDisplay, RTLD_LAZY | RTLD_NOLOAD), nullptr);
    std::exit(Status());
}

/// The host exits while the sheet is there.
[[noreturn]] void ExitInside() {
    LoadedModule loaded;
    OpenAndGo(loaded, {Edit, [](QtPerson&) { std::exit(Status()); }});
    std::abort();
}

/// The host is forked with an application of its own or with ours.
[[noreturn]] void OpenInAForkedProcess(bool withOurs) {
    std::optional<LoadedModule> loaded(std::in_place);
    std::optional<Application> hosts;
    withOurs ? OpenAndCancel(*loaded) : static_cast<void>(hosts.emplace());
    const pid_t child = fork();
    if (child == 0) {
        alarm(10);
        ExpectRefused(*loaded, "forked");
        loaded.reset();
        _exit(Status());
    }
    int status = 0;
    waitpid(child, &status, 0);
    EXPECT_TRUE(ExitedWithCode(kFine)(status)) << status;
    OpenAndCancel(*loaded);
    loaded.reset();
    hosts.reset();
    std::exit(Status());
}

TEST(InAProcessOfItsOwn, TheHostComesThrough) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(ShowNoWindow(), ExitedWithCode(kFine), "");
    EXPECT_EXIT(ExitInside(), ExitedWithCode(kFine), "");
    EXPECT_EXIT(LoseTheXServer({Edit}), ExitedWithCode(kFine), "");
    EXPECT_EXIT(LoseTheXServer({Edit, Configure}), ExitedWithCode(kFine), "");
    EXPECT_EXIT(LoseTheXServer({Edit, Start}), ExitedWithCode(kFine), "");
    for (const bool alternative : {false, true}) {
        SCOPED_TRACE(alternative);
        EXPECT_EXIT(HaveAnotherBesideOurs(alternative), ExitedWithCode(kFine), "");
        EXPECT_EXIT(OpenInAForkedProcess(alternative), ExitedWithCode(kFine), "");
    }
}

} // namespace
