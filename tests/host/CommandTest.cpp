// The command language, and the expressions in it.

#include "host/target/command.h"

#include <gtest/gtest.h>

#include <sstream>

#include "host/support/words.h"
#include "testkit/TemporaryDirectory.h"
#include "tests/support/built.h"

namespace etmhost {
namespace {

const Symbols kSymbols = {{"main", 0x8000}, {"_start", 0x20}, {"table.1", 4}};

// The value in hexadecimal, or the error text.
std::string Result(const std::string& text) {
    const Evaluation result = Evaluate(text, kSymbols);
    return result.error.empty() ? Hex(result.value) : result.ErrorText();
}

TEST(Expression, IsAValueOrAnError) {
    std::istringstream values("4096=0x1000 0X1f=0x1F $1F=0x1F 0fh=0xF 1e5h=0x1E5 0b1h=0xB1 "
                              "0b1_01=0x5 12k=0x3000 1M=0x100000 0x1k=0x400 0-1=0xFFFFFFFF "
                              "0x123456789=0x23456789 'AB'=0x4142 ''=0x0 '\\n'=0xA 'a''b'=0x6162 "
                              "'\xFF'=0xFFFFFFFF table.1=0x4 main-_start+1=0x7FE1 "
                              "main-(_start+1)=0x7FDF --4=0x4");
    for (std::string row; values >> row;) {
        const std::string text = row.substr(0, row.find('='));
        EXPECT_EQ(text + "=" + Result(text), row);
    }
    for (const char* number : {"12abc", "1_000", "12kb", "0x", "0b102", "12hz"})
        EXPECT_EQ(Result(number), "invalid number \"" + std::string(number) + "\"");
    const struct {
        const char *text, *result;
    } rows[] = {{" main + 4 // why", "0x8004"},
                {"", "value expected at the end"},
                {"1 // a\n2", "unexpected text \"\\n2\""},
                {"(main", "\")\" expected"},
                {"'abcde'", "too long \"'abcde'\""},
                {"'a\\", "quote not closed \"'a\\\""}};
    for (const auto& row : rows) EXPECT_EQ(Result(row.text), row.result) << row.text;

    const size_t depth = 1000000;
    EXPECT_EQ(Result(std::string(depth, '(') + "1" + std::string(depth, ')')),
              "too many parentheses");
    EXPECT_EQ(Result(std::string(depth, '-') + "1"), "0x1");
}

// A target and its command language.
struct Machine {
    explicit Machine(const char* chip)
        : target(*FindChip(chip), kSymbols), language(target, kSymbols) {}

    std::string Run(const std::string& text) {
        return language.Execute(text, nullptr).value_or("ok");
    }

    Target target;
    CommandLanguage language;
};

TEST(Command, SettingsFollowTheCommands) {
    Machine machine("arm926");
    for (const char* command : {"etm pc=start 1", "etm pc=stop 2", "  ETM  Pc = START  main ",
                                "etm data=value", "Etm Trigger\t0x1 + 4", "etm halfrate=on"})
        EXPECT_EQ(machine.Run(command), "ok") << command;
    const std::vector<std::string> lines = {"ETM PC = start main ", "ETM DATA = value",
                                            "ETM TRIGGER 0x1 + 4", "ETM PORTSIZE = 16",
                                            "ETM HALFRATE = on"};
    EXPECT_EQ(machine.target.SettingsLines(), lines) << "start took the stop back";
    EXPECT_EQ(machine.Run("etm complex"), "ok");
    EXPECT_EQ(machine.target.SettingsLines()[0], "ETM COMPLEX");
    for (const bool startup : {true, false}) {
        EXPECT_EQ(machine.Run(startup ? "macro /Startup" : "macro "), "ok");
        EXPECT_EQ(machine.target.state.pinsReady, startup);
    }
    EXPECT_EQ(machine.target.state.macro, "/none");
}

TEST(Command, RefusalsLeaveTheTargetAlone) {
    const struct {
        const char *chip, *command, *text;
    } rows[] = {
        {"arm7", "etm pc", "Unknown command: etm pc"},
        {"arm7", "capability", "capability needs a stream to write to"},
        {"arm7", "etm pc=all 5", "Unexpected text: 5"},
        {"arm7", "stat", "Unknown command: stat; did you mean \"start\"?"},
        {"arm7", "etm halfrate=of", "\"on\" or \"off\" expected, not \"of\""},
        {"arm7", "etm pc=to 1.5", "Bad address: invalid number \"1.5\""},
        {"arm7", "etm portsize=16", "This chip has no trace port of 16 bits"},
        {"arm7", "etm portsize=99999999999", "Port size expected, not \"99999999999\""},
        {"arm7", "etm halfrate=on", "This chip has no half-rate clocking"},
        {"arm7", "start", "Trace is not enabled"},
        {"arm9-etb", "trigger force",
         "The trigger of an ETB comes from the ETM and cannot be forced"},
        {"cortex-m3", "etm pc=from 1", "This chip cannot limit PC trace by addresses"},
        {"cortex-m3", "etm pc=start 4", "DWT comparator 0 to 3 expected, not \"4\""},
        {"arm7", "dwt 4 0", "This chip has no DWT comparators that its ETM listens to"},
        {"cortex-m3", "etm data=addr", "This chip has no data trace"},
        {"arm7", "macro /no/x.mac", "Cannot open macro file \"/no/x.mac\""},
    };
    for (const auto& row : rows) {
        Machine machine(row.chip);
        const TraceSettings before = machine.target.state.trace;
        EXPECT_EQ(machine.Run(row.command), row.text) << row.chip << ": " << row.command;
        EXPECT_EQ(machine.target.state.trace, before) << row.chip << ": " << row.command;
    }
}

TEST(Command, BoardFilesRunLineByLine) {
    const TemporaryDirectory directory;
    std::string bad, reports;
    for (int line = 1; line <= 1000; ++line) {
        bad += "x\n";
        if (line <= 20) reports += "line " + std::to_string(line) + ": Unknown command: x\n";
    }
    const struct {
        std::string content, result;
        uint32_t portSize;
    } rows[] = {
        {";[OrnithalWorksTraceInitFile]\r\n;Title=My Board\r\n\r\ntrace clear\r\ntrace enable\r\n"
         "trace etm portsize=8\r\ntrace etm halfrate=on\r\ntrace update\r\n\r\nmem_init 1\r\n",
         "ok", 8},
        {"\tTRACE  Enable\n mem_write main+4 0x10 ; not a comment",
         "line 2: Bad address: unexpected text \"; not a comment\"", 16},
        {"blink 3\ntrace etm portsize=4\nmem_init\ntrace fast\nmacro /none\nenable",
         "line 1: Unknown command: blink 3\nline 3: Bad address: value expected at the end\n"
         "line 4: Unknown command: trace fast\nline 5: Unknown command: macro /none\n"
         "line 6: Unknown command: enable",
         4},
        {bad, reports + "and 980 more", 16},
#ifndef _WIN32
        {directory.Read(std::string(built::kBoardExamples) + "stm32f4-trace-port.mac"), "ok", 4},
#endif
    };
    for (const auto& row : rows) {
        Machine machine("arm926");
        const std::string path = directory.Write("a board.mac", row.content);
        EXPECT_EQ(machine.Run("macro " + path), row.result);
        EXPECT_EQ(machine.target.state.macro, path);
        EXPECT_EQ(machine.target.state.control, 0u);
        EXPECT_EQ(machine.target.state.trace.portSize, row.portSize) << row.content;
        EXPECT_EQ(machine.target.state.trace.halfRate, row.portSize == 8);
    }
}

} // namespace
} // namespace etmhost
