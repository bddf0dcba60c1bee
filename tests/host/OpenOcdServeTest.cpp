// A served chip in the hands of the real OpenOCD and the real GDB.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>

#include "tests/support/ServedChip.h"
#include "tests/support/built.h"

using ::testing::AllOf;
using ::testing::HasSubstr;
using ::testing::Not;

namespace {

constexpr uint32_t kEtmTrigger = 0xE0041008;
// Opens the lock and powers the ETM first.
constexpr const char* kSetTrigger = "mww 0xE0041FB0 0xC5ACCE55; mww 0xE0041000 0x410; "
                                    "mww 0xE0041008 0x6F";

class ServedToOpenOcd : public ::testing::Test {
protected:
    void SetUp() override {
        for (const char* program : {"openocd", "gdb-multiarch"})
            if (!Program::IsInstalled(program)) GTEST_SKIP() << "there is no " << program;
    }
};

TEST_F(ServedToOpenOcd, IsExaminedReadAndWritten) {
    ServedChip served;
    EXPECT_THAT(served.openocd.Output(),
                AllOf(HasSubstr("processor detected"), HasSubstr("6 breakpoints, 4 watchpoints"),
                      Not(HasSubstr("Warn")), Not(HasSubstr("Error"))));
    EXPECT_THAT(served.Ask("dap info"),
                AllOf(HasSubstr("SCS"), HasSubstr("DWT"), HasSubstr("FPB"), HasSubstr("TPIU"),
                      HasSubstr("ETM"), HasSubstr("End of ROM table")));
    EXPECT_EQ(served.Ask("etmhost.cpu curstate"), "running");
    EXPECT_EQ(served.Ask("read_memory 0xE0041FF0 32 4"), "0xd 0x90 0x5 0xb1");

    EXPECT_EQ(served.Word(kEtmTrigger), "0x406f");
    served.Ask(kSetTrigger);
    EXPECT_EQ(served.Word(kEtmTrigger), "0x6f");
    EXPECT_EQ(served.Ask("list [catch {read_memory 0x60000000 32 1} r] $r"),
              "1 {read_memory: failed to read memory}");
    EXPECT_EQ(served.Word(kEtmTrigger), "0x6f") << "behind an access that failed";
    EXPECT_EQ(served.Ask("etmhost.tpiu enable; read_memory 0xE0040004 32 1"), "0x8");
}

TEST_F(ServedToOpenOcd, TheCoreHaltsStepsAndRuns) {
    ServedChip served;
    served.Ask(kSetTrigger);
    const char* const rows[][2] = {
        {"halt; etmhost.cpu curstate", "halted"},
        {"reset halt; lindex [get_reg pc] 1", "0x00000100"},
        {"step; lindex [get_reg pc] 1", "0x00000102"},
        {"bp 0x10e 2 hw; resume; wait_halt 2000; rbp all; lindex [get_reg pc] 1", "0x0000010e"},
        {"wp 0x20000000 4 w; resume; wait_halt 2000; rwp 0x20000000; lindex [get_reg pc] 1",
         "0x00000110"},
        {"set_reg {r0 0x1234}; resume; halt; expr {[lindex [get_reg r0] 1] >= 0x1234}", "1"},
        {"reset run; sleep 50; etmhost.cpu curstate", "running"},
        {"read_memory 0xE0041008 32 1", "0x6f"}, // of which the trace takes no notice
    };
    for (const auto& [command, answer] : rows) EXPECT_EQ(served.Ask(command), answer) << command;
    EXPECT_THAT(served.openocd.Output(), Not(HasSubstr("Error")));
}

TEST_F(ServedToOpenOcd, GdbAttachesGoesOnAndLeaves) {
    ServedChip served;
    const auto gdb = [&served](const std::vector<std::string>& commands) {
        std::vector<std::string> words = {"gdb-multiarch", "-nx", "-batch"};
        const auto execute = [&words](const std::string& command) {
            words.insert(words.end(), {"-ex", command});
        };
        execute("set architecture armv7e-m");
        execute("target extended-remote localhost:" + std::to_string(served.gdbPort));
        std::for_each(commands.begin(), commands.end(), execute);
        Program program(words);
        program.Wait();
        return program.Output();
    };
    EXPECT_THAT(gdb({"hbreak *0x10c", "continue", "x/i $pc", "delete", "watch *(int*)0x20000000",
                     "continue", "delete", "x/wx 0xe0041ff0", "monitor resume", "detach"}),
                AllOf(HasSubstr("Breakpoint 1, 0x0000010c"), HasSubstr("adds\tr0, #1"),
                      HasSubstr("New value = "), HasSubstr("0xe0041ff0:\t0x0000000d"),
                      HasSubstr("detached]")));
    EXPECT_EQ(served.Ask("etmhost.cpu curstate"), "running");
}

TEST_F(ServedToOpenOcd, TheServerEndsWhenAskedTo) {
    Program once({built::kEtmhost, "serve", "--chip", "cortex-m4", "--port", "0", "--once"});
    const uint16_t port = ServedChip::PortOf(once, "listening on port ", "\n");
    const etmhost::Deadline soon = ServedChip::Soon();
    auto caller = etmhost::Connection::To("", port, soon);
    caller.Send("0R4RQ", soon);
    EXPECT_EQ(once.Wait(), 0);

    ServedChip served;
    served.openocd.Kill();
    auto next = etmhost::Connection::To("", served.probePort, soon);
    next.Send("bR", soon);
    EXPECT_EQ(next.Receive(soon).size(), 1u);
    served.probe.Terminate();
    EXPECT_EQ(served.probe.Wait(), 0);
    EXPECT_EQ(served.probe.Output(),
              "listening on port " + std::to_string(served.probePort) + "\n");
}

} // namespace
