#include "host/command.h"

#include <gtest/gtest.h>

#include <random>
#include <sstream>

#include "tests/host/TemporaryDirectory.h"

namespace etmhost {
namespace {

const Symbols kSymbols = {{"main", 0x8000}};

std::string Join(const std::vector<std::string>& texts) {
    std::string joined;
    for (const std::string& text : texts) {
        joined += (joined.empty() ? "" : " | ") + text;
    }
    return joined;
}

// A target and its command language. Lines() leaves out the settings that a test does not touch.
struct Machine {
    explicit Machine(const char* chip) : target(*FindChip(chip)), language(target, kSymbols) {}

    std::string Run(const std::string& command) {
        return language.Execute(command, nullptr).value_or("ok");
    }
    std::string Lines() const { return Join(target.SettingsLines()); }

    Target target;
    CommandLanguage language;
};

TEST(Command, SettingsFollowTheCommands) {
    const struct {
        const char* chip;
        std::vector<std::string> commands;
        const char* lines;
    } rows[] = {
        {"arm926", {}, "ETM PC = all | ETM DATA = none | ETM PORTSIZE = 16 | ETM HALFRATE = off"},
        {"arm7", {}, "ETM PC = all | ETM DATA = none | ETM PORTSIZE = 8"},
        {"arm7", {"etm pc=none"}, "ETM PC = none | ETM DATA = none | ETM PORTSIZE = 8"},
        {"arm7", {"etm complex"}, "ETM COMPLEX | ETM DATA = none | ETM PORTSIZE = 8"},
        {"arm7",
         {"etm pc=start main+4"},
         "ETM PC = start main+4 | ETM DATA = none | ETM PORTSIZE = 8"},
        {"arm7",
         {"etm pc=start 0x10", "etm pc=stop 0x20"},
         "ETM PC = start 0x10 | ETM PC = stop 0x20 | ETM DATA = none | ETM PORTSIZE = 8"},
        {"arm7", // a new start without a stop takes the old stop back
         {"etm pc=start 1", "etm pc=stop 2", "etm pc=start 3"},
         "ETM PC = start 3 | ETM DATA = none | ETM PORTSIZE = 8"},
        {"arm7",
         {"etm pc=start 1", "etm pc=from 2", "etm pc=to 3"},
         "ETM PC = from 2 | ETM PC = to 3 | ETM DATA = none | ETM PORTSIZE = 8"},
        {"arm7",
         {"etm pc=from 1", "etm pc=to 2", "etm pc=all"},
         "ETM PC = all | ETM DATA = none | ETM PORTSIZE = 8"},
        {"arm7", // the kind comes ahead of the range, and takes an old range back
         {"etm data=addr", "etm data=from 1", "etm data=to 2"},
         "ETM PC = all | ETM DATA = addr | ETM DATA = from 1 | ETM DATA = to 2 | "
         "ETM PORTSIZE = 8"},
        {"arm7",
         {"etm data=all", "etm data=from 1", "etm data=to 2", "etm data=value"},
         "ETM PC = all | ETM DATA = value | ETM PORTSIZE = 8"},
        {"arm7",
         {"etm trigger 0x100 + 4", "etm portsize=4", "etm halfrate=off"},
         "ETM PC = all | ETM DATA = none | ETM TRIGGER 0x100 + 4 | ETM PORTSIZE = 4"},
        {"arm926",
         {"etm halfrate=on"},
         "ETM PC = all | ETM DATA = none | ETM PORTSIZE = 16 | ETM HALFRATE = on"},
        {"cortex-m3",
         {"etm pc=start 2", "etm pc=stop 3", "ETM PortSize = 2"},
         "ETM PC = start 2 | ETM PC = stop 3 | ETM DATA = none | ETM PORTSIZE = 2"},
        {"arm7",
         {"  ETM  Pc = START  main ", "Etm Trigger\t7"},
         "ETM PC = start main  | ETM DATA = none | ETM TRIGGER 7 | ETM PORTSIZE = 8"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(std::string(row.chip) + ": " + Join(row.commands));
        Machine machine(row.chip);
        for (const std::string& command : row.commands) {
            EXPECT_EQ(machine.Run(command), "ok") << command;
        }
        EXPECT_EQ(machine.Lines(), row.lines);
    }
}

TEST(Command, RefusalsLeaveTheTargetAlone) {
    const struct {
        const char* chip;
        const char* command;
        const char* text;
    } rows[] = {
        {"arm7", "", "Empty command"},
        {"arm7", "etm", "Unknown command: etm "},
        {"arm7", "etm pc", "Unknown command: etm pc"},
        {"arm7", "etm cycles=on", "Unknown command: etm cycles=on"},
        {"arm7", "startle", "Unknown command: startle"},
        {"arm7", "start now", "Unknown command: start now"},
        {"arm7", "trigger", "Unknown command: trigger"},
        {"arm7", "capability", "capability needs a stream to write to"},
        {"arm7", "etm pc=all 5", "Unexpected text: 5"},
        {"arm7", "etm pc=", "Unknown PC trace mode \"\""},
        {"arm7", "etm pc=start ", "Bad address: value expected at the end"},
        {"arm7", "etm pc=to 1.5", "Bad address: invalid number \"1.5\""},
        {"arm7", "etm data=some", "Unknown data trace mode \"some\""},
        {"arm7", "etm data=from nowhere", "Bad address: unknown symbol \"nowhere\""},
        {"arm7", "etm trigger", "Bad address: value expected at the end"},
        {"arm7", "etm portsize=16", "This chip has no trace port of 16 bits, but of 4, 8"},
        {"arm7", "etm portsize=0x8", "Port size expected, not \"0x8\""},
        {"arm7", "etm portsize=99999999999", "Port size expected, not \"99999999999\""},
        {"arm7", "etm halfrate=on", "This chip has no half-rate clocking"},
        {"arm7", "etm halfrate=1", "\"on\" or \"off\" expected, not \"1\""},
        {"arm7", "start", "Trace is not enabled"},
        {"arm7", "trigger force", "Capture is not running"},
        {"arm9-etb", "trigger force",
         "The trigger of an ETB comes from the ETM and cannot be forced"},
        {"cortex-m3", "trigger force", "A TPIU has no trigger that could be forced"},
        {"cortex-m3", "etm pc=from 1", "This chip cannot limit PC trace by addresses"},
        {"cortex-m3", "etm pc=start 4", "DWT comparator 0 to 3 expected, not \"4\""},
        {"cortex-m3", "etm pc=start main", "DWT comparator 0 to 3 expected, not \"main\""},
        {"cortex-m3", "etm data=addr", "This chip has no data trace"},
        {"cortex-m3", "etm data=to 1", "This chip has no address comparators for a data range"},
        {"cortex-m3", "etm trigger 1", "This chip has no address comparators for a trigger"},
        {"arm7", "macro /nowhere/x.mac", "Cannot open macro file \"/nowhere/x.mac\""},
        {"arm7", "macro /", "Cannot open macro file \"/\""},
    };
    for (const auto& row : rows) {
        Machine machine(row.chip);
        const TraceSettings before = machine.target.state.trace;
        EXPECT_EQ(machine.Run(row.command), row.text) << row.chip << ": " << row.command;
        EXPECT_EQ(machine.target.state.trace, before) << row.chip << ": " << row.command;
    }
}

// Whatever the settings are: the lines, given as commands to a fresh target, make the same
// settings.
TEST(Command, LinesMakeTheSettingsThatTheyDescribe) {
    const char* const kWords[] = {"pc=none",  "pc=all",    "pc=start ",  "pc=stop ",
                                  "pc=from ", "pc=to ",    "complex",    "data=none",
                                  "data=all", "data=addr", "data=value", "data=from ",
                                  "data=to ", "trigger ",  "portsize=4", "halfrate=on"};
    std::mt19937 random(7);
    Machine machine("arm926");
    for (int round = 0; round < 2000; ++round) {
        std::string command = std::string("etm ") + kWords[random() % std::size(kWords)];
        if (command.back() == ' ') {
            command += std::to_string(random() % 100);
        }
        ASSERT_EQ(machine.Run(command), "ok") << command;
        Machine fresh("arm926");
        for (const std::string& line : machine.target.SettingsLines()) {
            ASSERT_EQ(fresh.Run(line), "ok") << line;
        }
        ASSERT_EQ(fresh.Lines(), machine.Lines()) << "behind " << command;
    }
}

TEST(Command, CapabilityEndsWithNul) {
    Machine machine("arm7");
    std::ostringstream stream;
    EXPECT_EQ(machine.language.Execute("Capability", &stream), std::nullopt);
    EXPECT_TRUE(stream.str().starts_with("ETM protocol version: 2\n"));
    EXPECT_EQ(stream.str().back(), '\0');
}

TEST(Command, BoardFilesRunLineByLine) {
    const TemporaryDirectory directory;
    const struct {
        const char* content;
        const char* result;
        const char* lines; // null: as at the start
    } rows[] = {
        {";[OrnithalWorksTraceInitFile]\r\n;Title=My Board\r\n\r\ntrace clear\r\n"
         "trace enable\r\ntrace etm portsize=8\r\ntrace etm halfrate=on\r\ntrace update\r\n\r\n"
         "mem_init 1\r\n\r\n",
         "ok", "ETM PC = all | ETM DATA = none | ETM PORTSIZE = 8 | ETM HALFRATE = on"},
        {"", "ok", nullptr},
        {"\tTRACE  Enable\n mem_write main+4 0x10 ; not a comment\n",
         "line 2: Bad address: unexpected text \"; not a comment\"", nullptr},
        {"blink 3\ntrace etm portsize=4\nmem_init\ntrace fast",
         "line 1: Unknown command: blink 3\n"
         "line 3: Bad address: value expected at the end\n"
         "line 4: Unknown command: trace fast",
         "ETM PC = all | ETM DATA = none | ETM PORTSIZE = 4 | ETM HALFRATE = off"},
        {"macro /none\nstart\nenable\n",
         "line 1: Unknown command: macro /none\nline 2: Unknown command: start\n"
         "line 3: Unknown command: enable",
         nullptr},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.content);
        Machine machine("arm926");
        const std::string before = machine.Lines();
        const std::string path = directory.Write("a board.mac", row.content);
        EXPECT_EQ(machine.Run("macro " + path), row.result);
        EXPECT_EQ(machine.Lines(), row.lines != nullptr ? row.lines : before);
        EXPECT_EQ(machine.target.state.macro, path);
        EXPECT_EQ(machine.target.state.control, 0u);
    }
}

TEST(Command, ManyUnknownLinesMakeAShortText) {
    const TemporaryDirectory directory;
    std::string content;
    for (int line = 0; line < 1000; ++line) {
        content += "x\n";
    }
    Machine machine("arm926");
    const std::string text = machine.Run("macro " + directory.Write("x.mac", content));
    EXPECT_EQ(std::count(text.begin(), text.end(), '\n'), 20);
    EXPECT_TRUE(text.ends_with("line 20: Unknown command: x\nand 980 more")) << text;
}

TEST(Command, FixedMacrosAreRemembered) {
    Machine machine("arm926");
    EXPECT_EQ(machine.Run("macro /Startup"), "ok");
    EXPECT_EQ(machine.target.state.macro, "/Startup");
    EXPECT_TRUE(machine.target.state.pinsReady);
    EXPECT_EQ(machine.Run("macro "), "ok");
    EXPECT_EQ(machine.target.state.macro, "/none");
    EXPECT_FALSE(machine.target.state.pinsReady);
}

} // namespace
} // namespace etmhost
