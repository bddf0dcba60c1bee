// The whole road: the dialog of etmhost, a debug server, a chip. The server is the real OpenOCD or
// QEMU, the chip a served one; its registers are read by the test, through the server.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <sstream>

#include "tests/support/QemuMachine.h"
#include "tests/support/ScriptedServer.h"
#include "tests/support/ServedChip.h"
#include "tests/support/built.h"

using ::testing::AllOf;
using ::testing::HasSubstr;
using ::testing::Not;

namespace {

// An engineer at the dialog: trace on, with start and stop by comparators 2 and 3, four bits wide.
const char* const kSetUp = R"(
click 1000
choose 1065 3
ok
tab 2
click 1015
type 1018 "2"
type 1019 "3"
apply
step "applied"
ok
)";

const char* const kLook = R"(
expect checked 1000
tab 2
expect checked 1015
expect text 1018 "2"
expect text 1019 "3"
cancel
)";

class Road : public ::testing::Test {
protected:
    void SetUp() override {
        for (const char* program : {"openocd", "gdb-multiarch", "qemu-system-arm"})
            if (!Program::IsInstalled(program)) GTEST_SKIP() << "there is no " << program;
    }

    // Starts etmhost, off-screen. `target` is "--chip NAME" or "--remote SERVER".
    Program Etmhost(const std::string& target, std::vector<std::string> words) {
        std::vector<std::string> all = {"env", "QT_QPA_PLATFORM=offscreen",
                                        "QT_LOGGING_RULES=default.warning=false", built::kEtmhost};
        const size_t blank = target.find(' ');
        all.insert(all.end(), {target.substr(0, blank), target.substr(blank + 1)});
        all.insert(all.end(), words.begin(), words.end());
        return Program(all);
    }

    // Runs it to its end, and returns its output with the status behind it.
    std::string Run(const std::string& target, const std::vector<std::string>& words) {
        Program program = Etmhost(target, words);
        const int status = program.Wait();
        return program.Output() + "status " + std::to_string(status);
    }

    std::string Drive(const std::string& target, const char* script) {
        return Run(target, {"--journal", "drive", directory.Write("script", script)});
    }

    const TemporaryDirectory directory;
};

std::string TclServer(const ServedChip& chip) {
    return "--remote openocd:" + std::to_string(chip.tclPort);
}

std::string GdbServer(const ServedChip& chip) {
    return "--remote gdb:" + std::to_string(chip.gdbPort);
}

// ETMCR powered, enabled and out of programming mode; start 2, stop 3; always; 4 bits; an ID.
constexpr struct {
    uint32_t address;
    const char* value;
} kWanted[] = {{0xE0041000, "0x810"}, {0xE0041024, "0x2000000"}, {0xE00411F0, "0x80004"},
               {0xE0041020, "0x6f"},  {0xE0040004, "0x8"},       {0xE0041200, "0x1"}};

// Without what a target says of itself, and what is told about it.
std::string Comparable(const std::string& journal) {
    std::istringstream lines(journal);
    std::string line, kept;
    while (std::getline(lines, line))
        if (!line.starts_with("etmhost: "))
            kept += line.substr(0, line.find("GetInfoText 0 -> ")) + '\n';
    return kept;
}

TEST_F(Road, TheDialogSetsUpAChipBehindOpenOcd) {
    ServedChip chip;
    const std::string journal = Drive(TclServer(chip), kSetUp);
    EXPECT_THAT(journal, HasSubstr("status 0"));
    for (const auto& word : kWanted) EXPECT_EQ(chip.Word(word.address), word.value);
    EXPECT_EQ(Comparable(journal), Comparable(Drive("--chip cortex-m4", kSetUp)));
    EXPECT_THAT(Drive(TclServer(chip), kLook), HasSubstr("status 0"));
    EXPECT_EQ(chip.Ask("etmhost.cpu curstate"), "running");
    EXPECT_THAT(chip.openocd.Output(), AllOf(Not(HasSubstr("Error")), Not(HasSubstr("halted"))));
}

TEST_F(Road, TheSameOverGdb) {
    ServedChip chip;
    const std::string output = Drive(GdbServer(chip), kSetUp);
    EXPECT_THAT(output, AllOf(HasSubstr("status 0"), HasSubstr("stops the core")));
    for (const auto& word : kWanted) EXPECT_EQ(chip.Word(word.address), word.value);
    EXPECT_THAT(Drive(GdbServer(chip), kLook), HasSubstr("status 0"));
}

// Beside somebody's debugger session: neither notices the other.
TEST_F(Road, ARunningDebuggerIsNotDisturbed) {
    ServedChip chip;
    const Program gdb({"gdb-multiarch", "-nx", "-batch", "-ex", "set architecture armv7e-m", "-ex",
                       "target extended-remote localhost:" + std::to_string(chip.gdbPort), "-ex",
                       "echo attached\\n", "-ex", "continue"});
    ASSERT_TRUE(gdb.Prints("attached")) << gdb.Output();
    const auto runs = [&chip] { return chip.Ask("etmhost.cpu curstate") == "running"; };
    ASSERT_TRUE(Program::Within(runs)) << gdb.Output();
    const std::string counted = chip.Word(0x20000000);
    EXPECT_THAT(Drive(TclServer(chip), kSetUp), HasSubstr("status 0"));
    for (const auto& word : kWanted) EXPECT_EQ(chip.Word(word.address), word.value);
    EXPECT_TRUE(runs());
    EXPECT_NE(chip.Word(0x20000000), counted) << "the program goes on";
    EXPECT_THAT(gdb.Output(), AllOf(Not(HasSubstr("stopped")), Not(HasSubstr("SIG"))));
    EXPECT_THAT(chip.openocd.Output(), Not(HasSubstr("Error")));
}

TEST_F(Road, TheCommandLineTracesOneFunction) {
    ServedChip chip;
    const std::string server = TclServer(chip);
    EXPECT_THAT(Run(server, {"run", "dwt 0 0x100", "dwt 1 0x110", "etm pc=start 0", "etm pc=stop 1",
                             "enable", "etm pc=from 1", "etm halfrate=on"}),
                AllOf(HasSubstr("enable: ok"), HasSubstr("cannot limit PC trace by addresses"),
                      HasSubstr("no half-rate clocking"), HasSubstr("status 1")));
    EXPECT_THAT(Run(server, {"show"}), AllOf(HasSubstr("0: 0x100, tells the ETM"),
                                             HasSubstr("ETM PC = stop 1"), HasSubstr("status 0")));
    chip.Ask("mww 0xE0001048 5"); // a watchpoint of a debugger
    EXPECT_THAT(Run(server, {"run", "dwt 2 0"}), HasSubstr("in use: its function reads 0x5"));
    // What is kept here and cleared there is found out.
    const std::string state = "--state=" + directory.PathOf("state.json");
    EXPECT_THAT(Run(server, {state, "run", "dwt 0 0x100"}), HasSubstr("status 0"));
    chip.Ask("mww 0xE0001028 0");
    EXPECT_THAT(Run(server, {state, "run", "etm pc=start 0"}),
                HasSubstr("DWT comparator 0 no longer watches 0x100"));
    // The board: each write with its line, and the server's own preparation of the port.
    const std::string board = directory.Write("b.mac", ";x\nmem_write 0x20000100 0x12345678\n");
    EXPECT_THAT(Run(server, {"run", "macro " + board, "macro /startup"}),
                AllOf(HasSubstr("line 2: writing 0x12345678 to 0x20000100"),
                      HasSubstr("the debug server prepares its trace port of 1 bit;"),
                      HasSubstr("status 0")));
    EXPECT_EQ(chip.Word(0x20000100), "0x12345678");
    EXPECT_EQ(chip.Word(0xE0040004), "0x1") << "the width that it had";
    EXPECT_THAT(Run(server, {"apply"}), HasSubstr("status 0"));
}

// The server or the chip fails behind the step.
const char* const kFault = R"(
click 1000
ok
click 1030
wait until enabled 1031
step "fault now"
wait 1500
wait until enabled 1030
click 1002
click 1030
expect disabled 1031
cancel
)";

// In the open dialog everything may go away. It stays usable, says why once, and closes.
TEST_F(Road, TheDialogOutlivesWhatItIsConnectedWith) {
    const struct {
        const char* what;
        void (*fault)(ServedChip&);
        const char* told;
        int status;
    } rows[] = {
        {"server killed", [](ServedChip& chip) { chip.openocd.Kill(); }, "is lost", 1},
        {"server frozen", [](ServedChip& chip) { chip.openocd.Freeze(); }, "is lost", 1},
        {"probe gone", [](ServedChip& chip) { chip.probe.Kill(); }, "Cannot read", 0},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.what);
        ServedChip chip;
        Program etmhost =
            Etmhost(TclServer(chip), {"--journal", "drive", directory.Write("script", kFault)});
        ASSERT_TRUE(etmhost.Prints("fault now")) << etmhost.Output();
        row.fault(chip);
        EXPECT_EQ(etmhost.Wait(), row.status) << etmhost.Output();
        const std::string output = etmhost.Output();
        EXPECT_THAT(output, HasSubstr(row.told));
        const size_t poll = output.find("GetTraceState: ");
        EXPECT_NE(poll, std::string::npos) << output;
        EXPECT_EQ(poll, output.rfind("GetTraceState: ")) << output;
    }
}

// Answers without sense, without end, broken off and none, between a real server and the dialog.
TEST_F(Road, TheDialogOutlivesWrongAnswers) {
    for (const std::string answer : {"0 {0x1 0x2}\x1A", "garbage\x05", "0 \x04", ""}) {
        SCOPED_TRACE(answer);
        ServedChip chip;
        std::atomic<bool> fault = false;
        const ScriptedServer between([&](const std::string& question) {
            return fault ? answer : chip.Ask(question) + '\x1A';
        });
        Program etmhost = Etmhost("--remote openocd:" + std::to_string(between.port()),
                                  {"--journal", "drive", directory.Write("script", kFault)});
        ASSERT_TRUE(etmhost.Prints("fault now")) << etmhost.Output();
        fault = true;
        EXPECT_EQ(etmhost.Wait(), 1) << etmhost.Output();
        EXPECT_THAT(etmhost.Output(), HasSubstr("GetTraceState: The connection to OpenOCD at"));
    }
}

// A chip that was reset has lost the power of its trace. Start gives it back.
TEST_F(Road, TheDialogSeesTracePowerGo) {
    ServedChip chip;
    Program etmhost = Etmhost(TclServer(chip), {"--journal", "drive", directory.Write("script", R"(
click 1000
ok
click 1030
wait until enabled 1031
step "fault now"
wait until enabled 1030
click 1030
wait until enabled 1031
ok
)")});
    ASSERT_TRUE(etmhost.Prints("fault now")) << etmhost.Output();
    chip.Ask("mww 0xE000EDFC 0");
    EXPECT_EQ(etmhost.Wait(), 0) << etmhost.Output();
    EXPECT_THAT(etmhost.Output(), HasSubstr("trace has lost its power"));
    EXPECT_EQ(chip.Word(0xE000EDFC), "0x1000000");
}

// What OK would send, on a copy: the chip keeps every word.
TEST_F(Road, ADryRunWritesNothing) {
    ServedChip chip;
    const std::string server = TclServer(chip), script = directory.Write("script", kSetUp);
    const std::string state = directory.PathOf("state.json");
    const std::vector<std::string> words = {"drive", "--dry-run", script, "--state", state};
    chip.Ask("mww 0xE000EDFC 0");
    EXPECT_THAT(Run(server, words), AllOf(HasSubstr("a dry run does not switch trace power on"),
                                          HasSubstr("status 2")));
    EXPECT_EQ(chip.Word(0xE000EDFC), "0x0");
    Run(server, {"show"});
    std::vector<std::string> before, after;
    for (const auto& word : kWanted) before.push_back(chip.Word(word.address));
    const std::string output = Run(server, words);
    EXPECT_THAT(output, AllOf(HasSubstr("\netm pc=stop 3\n"), HasSubstr("status 0"),
                              HasSubstr("dry run: the debug server prepares"),
                              HasSubstr("#   after:  ETM PC = stop 3\n")));
    for (const auto& word : kWanted) after.push_back(chip.Word(word.address));
    EXPECT_EQ(after, before);
    EXPECT_FALSE(std::filesystem::exists(state));
}

TEST_F(Road, AMachineWithoutTraceIsRefusedAndGoesOn) {
    QemuMachine machine;
    for (const char* command : {"show", "open"}) {
        EXPECT_THAT(Run("--remote gdb:" + std::to_string(machine.gdbPort), {command}),
                    AllOf(HasSubstr("there is no ROM table at 0xE00FF000"), HasSubstr("status 2")));
    }
    EXPECT_TRUE(machine.Runs());
}

} // namespace
