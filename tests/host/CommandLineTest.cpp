// The program as a person runs it.

#include <gtest/gtest.h>

#include <cstdlib>
#include <sstream>

#include "tests/host/TemporaryDirectory.h"

namespace etmhost {
namespace {

struct Outcome {
    int status;
    std::string output;
    std::string errors;
};

Outcome RunHost(const TemporaryDirectory& directory, const std::string& arguments) {
    const auto quoted = [](const std::filesystem::path& path) {
        return "\"" + path.string() + "\"";
    };
    const int result =
        std::system((quoted(ETMHOST_PATH) + " " + arguments + " >" +
                     quoted(directory.path / "output") + " 2>" + quoted(directory.path / "errors"))
                        .c_str());
    // POSIX has the exit status in the second byte, Windows has it as it is.
    return {result > 255 ? result >> 8 : result, directory.Read("output"),
            directory.Read("errors")};
}

TEST(CommandLine, BadInputEndsWithStatus2AndAMessage) {
    const TemporaryDirectory directory;
    directory.Write("damaged.json", "{");
    directory.Write("text", "no library");
    const std::string here = directory.path.string() + "/";
    const struct {
        std::string arguments;
        const char* message;
    } rows[] = {
        {"", "subcommand is required"},
        {"dance", "there is no command \"dance\""},
        {"run", "COMMAND is required"},
        {"tour", "DIR is required"},
        {"show --colour", "--colour"},
        {"tour x --scale 9", "--scale"},
        {"show --chip z80", "there is no chip \"z80\""},
        {"show --state " + here + "damaged.json", "damaged.json\" is damaged: "},
        {"show --state " + here, "cannot read state file"},
        {"show --state " + here + "no/state.json", "there is no such directory"},
        {"show --symbols " + here + "text", "symbol"},
        {"show --symbols " + here + "missing", "symbol"},
        {"apply --module " + here + "missing.so", "there is no module"},
        {"apply --module " + here, "there is no module"},
        {"apply --module " + here + "text", "cannot load the module"},
        {"tour " + here + "text", "tour"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.arguments);
        const Outcome outcome = RunHost(directory, row.arguments);
        EXPECT_EQ(outcome.status, 2);
        EXPECT_EQ(outcome.output, "");
        EXPECT_NE(outcome.errors.find(row.message), std::string::npos) << outcome.errors;
    }
    EXPECT_EQ(directory.Read("damaged.json"), "{");
    EXPECT_EQ(directory.Read("text"), "no library");
}

TEST(CommandLine, HelpAndChips) {
    const TemporaryDirectory directory;
    const Outcome help = RunHost(directory, "--help");
    EXPECT_EQ(help.status, 0);
    for (const char* word : {"chips", "show", "run", "open", "apply", "init-board", "tour",
                             "--chip", "--state", "--module", "--journal", "--symbols"}) {
        EXPECT_NE(help.output.find(word), std::string::npos) << word;
    }
    const Outcome chips = RunHost(directory, "chips");
    EXPECT_EQ(chips.status, 0);
    for (const char* chip : {"arm7 ", "arm926 ", "arm9-etb ", "cortex-a8 ", "cortex-m3 "}) {
        EXPECT_NE(chips.output.find(chip), std::string::npos) << chip;
    }
}

TEST(CommandLine, StateSurvivesBetweenRuns) {
    const TemporaryDirectory directory;
    const std::string state = " --state \"" + (directory.path / "s.json").string() + "\"";
    const Outcome run =
        RunHost(directory, "run enable \"etm pc=start 0x10\" \"etm pc=fly\" --chip arm7" + state);
    EXPECT_EQ(run.status, 1) << "one was refused";
    EXPECT_EQ(run.output, "enable: ok\netm pc=start 0x10: ok\netm pc=fly: refused\n"
                          "  Unknown PC trace mode \"fly\"\n");
    const Outcome show = RunHost(directory, "--chip arm7" + state + " show");
    EXPECT_EQ(show.status, 0);
    EXPECT_NE(show.output.find("  ETM PC = start 0x10\n"), std::string::npos) << show.output;
    EXPECT_NE(show.output.find("Control word 0x1\n  trace is enabled\n"), std::string::npos);
}

TEST(CommandLine, SymbolsComeFromAnElfFile) {
    const std::string program = ETMHOST_PATH;
    if (program.ends_with(".exe")) {
        GTEST_SKIP() << "a Windows build reads no ELF files";
    }
    const TemporaryDirectory directory;
    const std::string command = "run \"etm trigger main+4\"";
    EXPECT_EQ(RunHost(directory, command).status, 1);
    const Outcome known = RunHost(directory, command + " --symbols \"" + program + "\"");
    EXPECT_EQ(known.output, "etm trigger main+4: ok\n") << known.errors;
}

TEST(CommandLine, TheModuleReadsTheTargetInOrder) {
    const TemporaryDirectory directory;
    const Outcome outcome = RunHost(directory, "apply --journal --chip cortex-m3");
    EXPECT_EQ(outcome.status, 0) << outcome.errors;
    EXPECT_EQ(outcome.output, R"(IOrnAPI.GetInterfaceName -> "IOrnAPI"
-- Init
GetValue 0x1000004 -> 0x8C802000
GetValue 0x1000014 -> 0x20D09
GetValue 0x10001E4 -> 0x4114F253
GetValue 0x5 -> 0xB
Command "capability" -> ok
GetValue 0x0 -> 0x0
GetValue 0x1 -> 0x10000
GetValue 0x2 -> 0x8000
GetSettingsLine 0 -> "ETM PC = all"
GetSettingsLine 1 -> "ETM DATA = none"
GetSettingsLine 2 -> "ETM PORTSIZE = 4"
GetSettingsLine 3 -> null
ReadSetting "KVETM" "BoardFile" 260 -> none
-- Apply
applied
)");
}

// The lines of a journal that tell what the tour did.
std::string Steps(const std::string& journal) {
    std::istringstream in(journal);
    std::string steps;
    for (std::string line; std::getline(in, line);) {
        steps += line.starts_with("-- ") ? line.substr(3) + "\n" : "";
    }
    return steps;
}

TEST(CommandLine, TourGoesThroughTheDialog) {
    if (std::string(ETMHOST_PATH).ends_with(".exe")) {
        GTEST_SKIP() << "a Windows build has no tour";
    }
    const TemporaryDirectory directory;
    const std::string arguments = "tour \"" + (directory.path / "pictures").string() + "\"";
    const Outcome outcome = RunHost(directory, arguments);
    EXPECT_EQ(outcome.status, 0) << outcome.errors;
    EXPECT_EQ(Steps(outcome.output), "Init\n"
                                     "Open\n"
                                     "click Enable ETM\n"
                                     "picture 4-etm-configuration.png\n"
                                     "click OK of ETM Configuration\n"
                                     "tab General Control\n"
                                     "picture 1-general-control.png\n"
                                     "tab ETM Trace Settings\n"
                                     "picture 2-etm-trace-settings.png\n"
                                     "tab Status\n"
                                     "picture 3-status.png\n"
                                     "click Start\n"
                                     "picture 5-capture.png\n"
                                     "click Stop\n"
                                     "click OK\n"
                                     "Open gave yes\n");
    for (const char* name : {"1-general-control", "2-etm-trace-settings", "3-status",
                             "4-etm-configuration", "5-capture"}) {
        const std::string file = std::string("pictures/") + name + ".png";
        EXPECT_EQ(directory.Read(file).substr(1, 3), "PNG") << name;
    }
    EXPECT_EQ(RunHost(directory, arguments).output, outcome.output) << "the same each time";
}

TEST(CommandLine, TourEndsAtABoxThatNobodyExpects) {
    if (std::string(ETMHOST_PATH).ends_with(".exe")) {
        GTEST_SKIP() << "a Windows build has no tour";
    }
    const TemporaryDirectory directory;
    const std::string state = " --state \"" + (directory.path / "s.json").string() + "\" ";
    RunHost(directory, "run enable" + state);
    std::string text = directory.Read("s.json");
    const std::string enabled = "\"control\": 1,";
    ASSERT_NE(text.find(enabled), std::string::npos);
    // An address trigger without an address: the page refuses to be left.
    text.replace(text.find(enabled), enabled.size(), "\"control\": 513,");
    directory.Write("s.json", text);
    const Outcome outcome = RunHost(directory, "tour \"" + directory.path.string() + "\"" + state);
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.errors, "etmhost: tour: a box \"Cannot validate address\" came up: "
                              "Address entry is empty\n");
}

} // namespace
} // namespace etmhost
