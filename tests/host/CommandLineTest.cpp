// The program as a person runs it.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <nlohmann/json.hpp>
#include <sstream>

#include "host/commandline/check.h"
#include "host/support/host_error.h"
#include "tests/host/CommandLine.h"
#include "tests/support/built.h"

using ::testing::HasSubstr;
using ::testing::StartsWith;

namespace etmhost {
namespace {

TEST_F(CommandLine, BadInputEndsWithStatus2AndAMessage) {
    const std::string text = directory.Write("text", "no library"), here = directory.Path();
    const struct {
        std::string arguments;
        const char* message;
    } rows[] = {
        {"", "a command is missing; \"etmhost open\" shows"},
        {"dance", "there is no command \"dance\"; \"etmhost --help\" lists"},
        {"opne", "there is no command \"opne\"; did you mean \"open\"?"},
        {"help rnu", "there is no command \"rnu\"; did you mean \"run\"?"},
        {"run --josn --", "there is no option \"--josn\"; "},
        {"show --josn=1", "there is no option \"--josn\"; did you mean \"--json\"?"},
        {"--echo open", "--echo stands behind the command that it is for"},
        {"--ver", "there is no option \"--ver\"; did you mean \"--version\"?"},
        {"show -- --json", "show: \"--json\" is too much; "},
        {"help \"\"", "help: a COMMAND is expected, not \"\""},
        {"show all", "show: \"all\" is too much; \"etmhost show --help\" tells"},
        {"tour", "tour needs a DIR; \"etmhost tour --help\" tells more"},
        {"show --chip", "--chip: a CHIP is missing behind it"},
        {"show --chip arm7 --chip arm7", "--chip is given 2 times; it takes one CHIP"},
        {"show --dark=5", "--dark takes no value"},
        {"show --base etm=1", "--base needs --remote"},
        {"show --remote gdb:1 --base etm=zz", "--base etm=zz: the address of a page of 4 KB"},
        {"show --remote gdb:1 --base etm=0 --base etm=0", "--base etm=0: \"etm\" is given twice"},
        {"drive - --pictures \"\"", "--pictures: a DIR is expected, not \"\""},
        {"run x --fail Comand:x", "--fail \"Comand:x\": the host has no operation \"Comand\"; did"},
        {"show --remote gdb:1 --chip arm7", "--chip cannot stand beside --remote"},
        {"show --chip-file " + text, "text\": parse error at line 1, column 2: "},
        {"show --chip-file " + here, "cannot read chip file"},
        {"show --variant etb", "--variant needs --chip-file"},
        {"show --chip arm7 --chip-file x", "--chip cannot stand beside --chip-file"},
        {"replay " + text, "text:1: the last line is cut off: parse error at column 2: "},
        {"serve --port 65536", "--port: a PORT is expected, not \"65536\""},
        {"show --state \"\"", "--state: a FILE is expected, not \"\""},
        {"show --chip z80", "there is no chip \"z80\"; \"etmhost chips\" lists"},
        {"show --chip cortex-m33", "there is no chip \"cortex-m33\"; did you mean \"cortex-m3\"?"},
        {"show --state " + text, "text\" is damaged: it is no JSON at byte 2\n"},
        {"show --state " + here + "/no/state.json", "there is no such directory"},
        {"init-board --directory " + here + "/no", "no\"\n"},
        {"show --symbols " + text, "symbol"},
        {"apply --module " + text, "cannot load the module"},
        {"check --module " + text, "cannot load the module"},
        {"check --remote gdb:1", "is not changed for a check"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.arguments);
        const Outcome outcome = Run(row.arguments);
        EXPECT_EQ(std::pair(outcome.status, outcome.output), std::pair(2, std::string()));
        EXPECT_THAT(outcome.errors, AllOf(StartsWith("etmhost: "), HasSubstr(row.message)));
        EXPECT_EQ(outcome.errors.find('\n'), outcome.errors.size() - 1) << "one line";
    }
    EXPECT_EQ(directory.Read("text"), "no library");
    if (onWindows) return; // a line end would be the end of the command there
    EXPECT_THAT(Run("'a\nb'").errors, StartsWith("etmhost: there is no command \"a\\nb\"; "));
}

TEST_F(CommandLine, HelpIsOneAndFitsTheScreen) {
    const std::string whole = Run("--help").output;
    EXPECT_EQ(Run("help").output, whole);
    EXPECT_THAT(whole, AllOf(HasSubstr("\n  run  "), HasSubstr("\n  2  There was nothing")));
    EXPECT_THAT(Run("--version").output, StartsWith("etmhost 1."));
    for (const std::string command : {"chips", "show", "run", "open", "serve", "apply",
                                      "init-board", "tour", "drive", "check", "help"}) {
        SCOPED_TRACE(command);
        const std::string help = Run(command + " --help").output;
        EXPECT_THAT(whole, HasSubstr("\n  " + command + " "));
        EXPECT_EQ(Run("help " + command).output, help);
        for (const CommandForm& form : command == "run" ? CommandForms() : BoardForms())
            EXPECT_EQ(help.find("\n  " + form.text) != std::string::npos, command == "run");
        std::istringstream lines(help + whole);
        for (std::string line; std::getline(lines, line);) EXPECT_LE(line.size(), 80u) << line;
    }
}

TEST_F(CommandLine, JsonHoldsWhateverTheTargetHolds) {
    SimulatedHost host(*FindChip("cortex-m3"));
    host.settings["a \"b\""]["\n\xFF"] = "\xC3\xA4\x01\xFF";
    host.trace.Command("etm pc=start 0", nullptr);
    host.trace.Command("macro \xFF\\\"", nullptr);
    std::ostringstream shown, chips;
    ShowTargetJson(host, shown);
    const auto json = nlohmann::json::parse(shown.str());
    EXPECT_EQ(json["settings"]["a \"b\""].items().begin().value(), "\xC3\xA4\x01\xEF\xBF\xBD");
    EXPECT_EQ(json["board"]["macro"], "\xEF\xBF\xBD\\\"");
    EXPECT_EQ(json["trace"].dump(),
              "{\"data\":\"none\",\"dataBegin\":null,\"dataEnd\":null,\"dataPending\":false,"
              "\"halfRate\":false,\"pc\":\"startStop\",\"pcBegin\":\"0\",\"pcEnd\":null,"
              "\"pcPending\":false,\"portSize\":4,\"trigger\":null}");
    ShowChipsJson(Chips(), chips);
    EXPECT_EQ(nlohmann::json::parse(chips.str())[4], json["target"]);
    EXPECT_EQ(Run("chips --json").output, chips.str());
    const std::string file = "show --chip-file \"" +
                             directory.Write("chip", R"({"name": "x", "description": "", "info": "",
            "components": [{"kind": "etm"}], "portSizes": [4], "sink": {"kind": "port"},
            "options": {"wide": {"description": "16 bits"}}})") +
                             "\"";
    EXPECT_THAT(Run(file).output, AllOf(StartsWith("x: "), HasSubstr("PORTSIZE = 4\n")));
    EXPECT_THAT(Run(file + " --variant wide").output, StartsWith("x-wide: 16 bits\n"));
    EXPECT_THAT(Run(file + " --variant wade").errors,
                HasSubstr("\"wade\"; did you mean \"wide\"?"));
    EXPECT_EQ(nlohmann::json::parse(Run("show --json").output)["target"]["name"], "arm926");
}

// Each row is typed so far, as bash takes it apart; what it may be then stands behind what bash has
// to do with it.
TEST_F(CommandLine, BashCompletesIt) {
    if (onWindows) GTEST_SKIP() << "there is no bash";
    const std::string script = directory.Write(
        "complete", "source <(\"$1\" describe bash); shift\n"
                    "compopt() { echo \"$2\"; }; fc-list() { echo 'A Sans,A Sans Bold'; }\n"
                    "COMP_WORDS=(etmhost \"$@\"); COMP_CWORD=$#; _etmhost\n"
                    "for reply in \"${COMPREPLY[@]}\"; do echo \"$reply.\"; done\n");
    const struct {
        const char *typed, *replies;
    } rows[] = {
        {"op", "open.\n"},
        {"--chip arm7 --dark sh", "show.\n"},
        {"--chip cortex-m", "cortex-m3.\ncortex-m4.\ncortex-m4-etb.\n"},
        {"show --chip = cortex-a", "cortex-a8.\n"},
        {"run --chip = ARM", ""},
        {"show --js", "--json.\n"},
        {"open --js", ""},
        {"help dr", "drive.\n"},
        {"--remote g", "nospace\ngdb:.\n"},
        {"--state ''", "default\n"},
        {"drive --off-screen x", "default\n"},
        {"init-board --directory ''", "dirnames\n"},
        {"tour --scale 2 d", "dirnames\n"},
        {"tour --font A", "filenames\nA Sans.\n"},
        {"run start \"'etm pc=st\"", "filenames\netm pc=start .\netm pc=stop .\n"},
        {"run 'etm\\ pc' = no", "none.\n"},
        {"run 'etm\\ portsize' =", "nospace\n.\n"},
    };
    for (const auto& [typed, replies] : rows) {
        const Outcome outcome = Run(typed, "bash \"" + script + "\" ");
        EXPECT_EQ(outcome.output + outcome.errors, replies) << typed;
    }
}

TEST_F(CommandLine, PagesAndPipes) {
    if (onWindows) GTEST_SKIP() << "there is no shell";
    const std::string script = directory.Write(
        "script", "\"$1\" describe man | groff -man -ww -z -Tutf8 && \"$1\" describe man |"
                  "grep -c '^.SS etmhost .*OPTIONS'\n"
                  "\"$1\" chips >/dev/full; echo $?\n"
                  "{ sleep 0.2; \"$1\" chips; echo $? >&2; } | true\n");
    const Outcome outcome = Run("", "bash \"" + script + "\" ");
    EXPECT_EQ(outcome.output, "12\n2\n") << "all commands; nothing could be written";
    EXPECT_EQ(outcome.errors, "etmhost: cannot write to the standard output\n0\n");
}

TEST_F(CommandLine, StateSurvivesBetweenRuns) {
    EXPECT_THAT(Run("chips").output, HasSubstr("cortex-m3      Cortex-M3, ETM v3.5"));
    const Outcome run = Run("run enable \"etm pc=start 0x10\" \"etm pc=fly\"" + state);
    EXPECT_EQ(run.status, 1) << "one was refused";
    EXPECT_EQ(run.output, "enable: ok\netm pc=start 0x10: ok\n");
    EXPECT_EQ(run.errors, "etm pc=fly: Unknown PC trace mode \"fly\"\n");
    EXPECT_EQ(Run("apply" + state).output, "applied\n");
    std::string text = directory.Read("s.json");
    const size_t place = text.find("\"control\": 1,");
    ASSERT_NE(place, std::string::npos);
    directory.Write("s.json", text.replace(place + 11, 1, "829"));
    const Outcome show = Run(state + "show");
    EXPECT_THAT(show.output, HasSubstr("\nTrace settings\n  ETM PC = start 0x10\n"));
    EXPECT_THAT(show.output, HasSubstr("0x33D\n  trace is enabled\n  trace accumulates"));

    Run("run start" + state);
    const std::string running = directory.Read("s.json");
    EXPECT_EQ(Run(state + "show").output, Run(state + "show").output) << "no time goes by";
    EXPECT_EQ(directory.Read("s.json"), running);

    if (onWindows) GTEST_SKIP() << "a Windows build reads no ELF files and has no tour";
    const std::string symbols = std::string(" --symbols \"") + built::kEtmhost + "\"";
    EXPECT_EQ(Run("run \"etm trigger main+4\"" + symbols).output, "etm trigger main+4: ok\n");
    const Outcome tour = Run("tour \"" + directory.Path() + "\"" + state);
    EXPECT_EQ(tour.status, 1) << "the page wants the address of the trigger";
    EXPECT_EQ(tour.errors, "etmhost: tour: a box \"Cannot validate address\" came up: "
                           "Address entry is empty\n");
}

TEST_F(CommandLine, RefusalsAreLinesOnStandardError) {
    if (onWindows) GTEST_SKIP() << "the dialog opens there, and waits for an answer";
    const std::string board = directory.Write("x.mac", "trace enable\ntrace etm portsize=3\nfly\n");
    for (const char* journal : {"", " --journal"}) {
        const Outcome outcome = Run("run \"trigger force\" \"macro " + board + "\"" + journal);
        EXPECT_EQ(outcome.status, 1);
        EXPECT_EQ(outcome.errors, "trigger force: Capture is not running\nmacro " + board +
                                      ": line 2: This chip has no trace port of 3 bits\nmacro " +
                                      board + ": line 3: Unknown command: fly\n");
    }
    const Outcome unseen =
        Run("init-board", "env -u DISPLAY -u WAYLAND_DISPLAY -u QT_QPA_PLATFORM ");
    EXPECT_EQ(unseen.status, 1);
    for (const std::string& text : {unseen.output, unseen.errors})
        EXPECT_THAT(text, HasSubstr("There is no screen to show windows on"));
}

TEST_F(CommandLine, AnInterruptedDialogKeepsTheState) {
    if (onWindows) GTEST_SKIP() << "Windows has no signals";
    Run("run enable start" + state);
    const std::string before = directory.Read("s.json");
    directory.Write("before", before);
    const std::string script = directory.Write(
        "interrupt", "QT_QPA_PLATFORM=offscreen \"$@\" & cd \"$(dirname \"$0\")\"\n"
                     "for time in $(seq 300); do cmp -s before s.json || break; sleep 0.1; done\n"
                     "kill -TERM $!; wait $!\n");
    const std::string record = directory.PathOf("record");
    EXPECT_EQ(
        Run("open --journal-file \"" + record + "\"" + state, "sh \"" + script + "\" ").status,
        128 + 15)
        << "killed";
    EXPECT_NE(directory.Read("s.json"), before) << "the capture went on";
    const auto isOpen = [](const record::Event& event) { return event.operation == "Open"; };
    EXPECT_EQ(std::ranges::count_if(ReadRecord("record"), isOpen), 1) << "all lines are whole";
    EXPECT_EQ(Run("show" + state).status, 0);
}

TEST_F(CommandLine, AScriptDrivesTheDialog) {
    const std::string file = directory.PathOf("script");
    const struct {
        const char* text;
        int status;
        const char* errors; // "@" stands for the file
    } rows[] = {
        {"tab 2\nclick 1017\ntype 1018 \"0x10\"\ntype 1019 \"0x20\"\nkey Shift+Tab\n"
         "expect focus 1018\nkey Ctrl+Tab\nexpect tab 3\nok # now",
         0, ""},
        {"tab 2\nexpect disabled apply\nexpect checked \"Disable PC Trace\"\ncancel", 1,
         "@:3: expected \"Disable PC Trace\" checked, is unchecked\n"},
        {"\n if checked 1000\nclick Start\nfly\nelse\nelse\nkey Ctrl+Foo\nanswer maybe\nok now\n"
         "expect enable ok\ntype 9 \"\\q\"\nstep \"x\nstep \"x\"y\nwait 60001\npicture a.bmp\nend\n"
         "end\nchoose 3 0\nstep \"a\tb\"\nif box\ntype 9 \"\1\"",
         2,
         "@:3: a control is a number from 1 to 65535, not Start\n@:4: there is no step fly\n"
         "@:6: this if has an else already\n@:7: there is no key Foo\n"
         "@:8: an answer is yes, no, ok, cancel or escape\n@:9: now is too much here\n"
         "@:10: there is no condition enable\n@:11: a backslash stands ahead of n, t, \" or \\\n"
         "@:12: a quote is not closed\n@:13: a blank is missing behind a quote\n"
         "@:14: a time in ms is a number from 1 to 60000, not 60001\n"
         "@:15: the name of a picture ends with .png\n@:17: there is no if to this end\n"
         "@:18: an entry is a number from 1 to 65535, not 0\n@:20: this if has no end\n"
         "@:21: a control character\n"},
        {"# nothing\n", 2, "@:1: there is no step in this script\n"},
        {"quietly quietly ok", 2, "@:1: there is no step quietly\n"},
    };
    const Outcome enabled = Run("run enable" + state);
    EXPECT_EQ(enabled.status, 0) << enabled.errors;
    if (!onWindows) {
        directory.Write("script", "cancel");
        EXPECT_EQ(Run("drive --off-screen --font \"Deja Sans\" \"" + file + "\"").errors,
                  "etmhost: there is no font \"Deja Sans\"; did you mean \"DejaVu Sans\"?\n");
    }
    for (const auto& [text, status, errors] : rows) {
        SCOPED_TRACE(text);
        directory.Write("script", text);
        const Outcome outcome =
            Run("drive \"" + file + "\"" + state + (onWindows ? "" : "--off-screen"));
        EXPECT_EQ(outcome.status, status);
        std::string expected = errors;
        for (size_t at; (at = expected.find('@')) != std::string::npos;)
            expected.replace(at, 1, file);
        EXPECT_EQ(outcome.errors, expected);
    }
    EXPECT_THAT(Run("show" + state).output, HasSubstr("ETM PC = from 0x10\n  ETM PC = to 0x20\n"));
    EXPECT_EQ(Run("drive \"" + file + ".no\"").errors,
              "etmhost: cannot read script \"" + file + ".no\"\n");
}

TEST_F(CommandLine, ADryRunWritesNothingButABoardFile) {
    if (onWindows) GTEST_SKIP() << "its save dialog takes no path of this system";
    for (const std::string name : {"KVETMControl.so", "KVETMControlQt.so"}) // board files lie there
        std::filesystem::copy_file(std::filesystem::path(built::kEtmhost).replace_filename(name),
                                   directory.PathOf(name));
    const std::string board = directory.PathOf("my board.mac");
    const std::string script = directory.Write(
        "script", "click 1000\nchoose 1078 1\ntype 1080 \"Title=My Board\\nmem_init 1\\n\"\n"
                  "click \"Create New Board File\"\nsave \"" +
                      board + "\"\nok\nok\n");
    Run("run 'setting a/b=c'" + state);
    const std::string before = directory.Read("s.json");
    const Outcome outcome =
        Run("drive --dry-run --off-screen --module \"" + directory.PathOf("KVETMControl.so") +
            "\" \"" + script + "\"" + state);
    EXPECT_EQ(outcome.errors, "");
    EXPECT_THAT(outcome.output,
                AllOf(HasSubstr("\nmacro " + board + "\n"),
                      HasSubstr("\n# the board file \"" + board + "\" has been written\n")));
    EXPECT_THAT(directory.Read("my board.mac"), HasSubstr("mem_init 1"));
    EXPECT_EQ(directory.Read("s.json"), before);
}

// On a terminal of 60 columns: one line that overwrites itself, and nothing that a terminal would
// have to interpret. Elsewhere lines.
TEST_F(CommandLine, WatchKeepsOneLine) {
    if (onWindows) GTEST_SKIP() << "there is no pseudo terminal";
    const std::string script = directory.Write(
        "script", "click 1000\nif box\nok\nend\nif window \"ETM Configuration\"\nok\nend\n"
                  "click 1030\nwait until enabled 1031\ntab 3\nwait 1500\ntab 2\nclick 1017\n"
                  "type 1018 \"0x10\"\ntype 1019 \"nowhere\"\nok\nanswer ok\n"
                  "type 1019 \"0x20\"\nok\n");
    const std::string terminal = directory.Write(
        "terminal", "stty -echo -opost cols 60; exec \"$@\" drive --off-screen --watch --echo \"" +
                        script + "\"\n");
    const std::string outside = directory.Write("outside", "script -qefc \"sh '" + terminal +
                                                               "' '$1'\" /dev/null </dev/null\n");
    const Outcome outcome = Run("", "sh \"" + outside + "\" ");
    EXPECT_EQ(outcome.status, 0) << outcome.errors;
    const std::string& text = outcome.output;
    EXPECT_EQ(text.find('\x1B'), std::string::npos);
    EXPECT_THAT(text, AllOf(HasSubstr("\retm pc=from 0x10\n"),
                            HasSubstr("\rrunning, 12 % of 524288 words, trigger off | sent: start"),
                            HasSubstr("\rrunning, 12 %, trigger off | sent: start | refused: no")));
    std::istringstream lines(text);
    for (std::string line, part; std::getline(lines, line);)
        for (std::istringstream parts(line); std::getline(parts, part, '\r');)
            EXPECT_LT(part.size(), line.starts_with('#') ? 80 : 60) << part;
}

TEST_F(CommandLine, ACheckTellsBreachesByItsStatus) {
    for (const std::string chip : {"arm926", "cortex-m3"}) {
        const Outcome outcome = Run("check --chip " + chip);
        EXPECT_EQ(std::pair(outcome.status, outcome.output),
                  std::pair(0, std::string("KVETMHostCheck: 0 breaches, 0 remarks\n")));
    }
    const CheckReport report("module");
    std::ostringstream out;
    EXPECT_THROW(report.Print(out), HostError);
    for (const auto& [summary, status] : {std::pair("0 breaches, 2 remarks", kDone),
                                          std::pair("10 breaches, 0 remarks", kFailed)}) {
        std::ofstream(std::getenv("KVETM_CHECK_REPORT"))
            << "KVETMHostCheck: breach other-thread\nKVETMHostCheck: " << summary << '\n';
        EXPECT_EQ(report.Print(out), status) << summary;
    }
}

TEST_F(CommandLine, TourGoesThroughTheDialog) {
    if (onWindows) GTEST_SKIP() << "a Windows build has no tour";
    const std::string arguments = "tour \"" + directory.PathOf("pictures") + "\"";
    const Outcome outcome = Run(arguments);
    EXPECT_EQ(outcome.status, 0) << outcome.errors;
    std::istringstream journal(outcome.output);
    std::string steps;
    for (std::string line; std::getline(journal, line);) {
        if (line.starts_with("-- ")) steps += line.substr(3) + "\n";
        if (!line.starts_with("-- picture ")) continue;
        EXPECT_EQ(directory.Read("pictures/" + line.substr(11)).substr(1, 3), "PNG") << line;
    }
    EXPECT_EQ(steps, "Init\nOpen\nclick Enable ETM\npicture 4-etm-configuration.png\n"
                     "click OK of ETM Configuration\ntab General Control\n"
                     "picture 1-general-control.png\ntab ETM Trace Settings\n"
                     "picture 2-etm-trace-settings.png\ntab Status\npicture 3-status.png\n"
                     "click Start\npicture 5-capture.png\nclick Stop\nclick OK\nOpen gave yes\n");
    EXPECT_EQ(Run(arguments).output, outcome.output) << "the same each time";
}

} // namespace
} // namespace etmhost
