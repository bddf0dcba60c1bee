// What is told of a session, and that it is the same one when it comes again.

#include <gmock/gmock.h>

#include <algorithm>

#include "host/module/journal.h"
#include "host/record/operations.h"
#include "tests/host/CommandLine.h"
#include "tests/support/built.h"

using ::testing::HasSubstr;
using ::testing::StartsWith;

namespace etmhost {
namespace {

// A person who sets trace up, with a board file and an address that is refused.
const char* const kSession = R"(
if unchecked 1000
    click 1000
    if window "ETM Configuration"
        ok
    end
end
tab 2
if enabled 1017
    click 1017
    type 1018 "0x10"
    type 1019 "0x20"
end
ok
)";

// What was echoed does on a fresh target what was done in the dialog.
TEST_F(CommandLine, EchoedLinesDoTheSame) {
    const std::string offScreen = onWindows ? "" : " --off-screen";
    const std::string script = "\"" + directory.Write("script", kSession) + "\"" + offScreen;
    for (const std::string name : {"arm926", "cortex-m4-etb"}) {
        SCOPED_TRACE(name);
        const auto with = [&](const char* file) {
            return " --chip " + name + " --state \"" + directory.PathOf(name + file) + "\" ";
        };
        const Outcome dry = Run("drive --dry-run " + script + with("1"));
        EXPECT_EQ(directory.Read(name + "1"), "") << "no state of a dry run";
        const Outcome echoed = Run("drive --echo " + script + with("1"));
        EXPECT_EQ(dry.status + echoed.status, 0) << dry.errors << echoed.errors;
        const size_t end = echoed.output.find("# What has changed on the target:\n");
        ASSERT_NE(end, std::string::npos) << echoed.output;
        const size_t begin = dry.output.find("macro");
        EXPECT_EQ(dry.output.substr(begin, end), echoed.output.substr(0, end));
        EXPECT_THAT(echoed.output, AllOf(StartsWith("macro"), HasSubstr("\nset control=0x1\n"),
                                         HasSubstr("\n#   after:  trace is enabled\n")));
        directory.Write("lines", echoed.output);
        const Outcome again = Run("run -" + with("2") + "<\"" + directory.PathOf("lines") + "\" ");
        EXPECT_EQ(again.status, 0) << again.errors;
        const auto shown = [&](const char* file) { // but for what the clock makes of it
            const Outcome show = Run("show" + with(file));
            EXPECT_EQ(show.status, 0) << show.errors;
            const size_t board = std::min(show.output.find("\nBoard"), show.output.size());
            return show.output.substr(0, show.output.find("\nCapture")) + show.output.substr(board);
        };
        EXPECT_EQ(shown("2"), shown("1"));
        EXPECT_THAT(Run("drive --echo " + script + with("2")).output,
                    StartsWith("# Nothing has changed on the target.\n"));
    }
}

// The journal for programs holds all that the one for people does, and whatever else goes to and
// fro: each call of the module ends inside the one from which it was made.
TEST_F(CommandLine, TheJournalFileHoldsTheJournal) {
    const std::string offScreen = onWindows ? "" : " --off-screen";
    const std::string script = " drive \"" + directory.Write("script", kSession) + "\"" + offScreen;
    const auto file = [](const std::string& path) { return "--journal-file \"" + path + "\""; };
    const Outcome outcome = Run(file(directory.PathOf("record")) + " --journal" + script);
    EXPECT_EQ(outcome.status, 0) << outcome.errors;
    std::ostringstream journal;
    TextJournal rebuilt(journal);
    std::vector<std::string> running, calls;
    for (const record::Event& event : ReadRecord("record")) {
        rebuilt.Write(event);
        const std::string call = event.object + "." + event.operation;
        if (event.phase == record::Event::Phase::Call) {
            running.push_back(call);
            calls.push_back(event.operation);
        } else if (event.phase == record::Event::Phase::Return) {
            ASSERT_EQ(running.back(), call);
            running.pop_back();
        }
    }
    EXPECT_EQ(journal.str(), outcome.output);
    EXPECT_THAT(running, testing::IsEmpty());
    for (const char* name : {"SetModulePath", "SetAPI", "GetRowCount", "GetRowInterfaceName",
                             "CreateRowObject", "GetRequiredName", "AttachInterface", "Init",
                             "Open", "DetachInterface", "DestroyRowObject"})
        EXPECT_THAT(calls, testing::Contains(name));
    EXPECT_EQ(Run(file(directory.Path()) + " show").status, 2);
    if (onWindows) return;
    const Outcome full = Run(file("/dev/full") + script);
    EXPECT_EQ(full.status, 2);
    EXPECT_EQ(full.errors,
              "etmhost: cannot write journal file \"/dev/full\"; it ends ahead of begin\n");
    EXPECT_EQ(Run(file("/dev/full") + " show").status, 2);
    // What is read is not emptied, nor what was kept for want of a chip.
    const std::string kept = directory.Write("kept", "click 1000\n");
    EXPECT_EQ(Run(file(kept) + " drive --off-screen \"" + kept + "\"").errors,
              "etmhost: --journal-file \"" + kept + "\": this file is read\n");
    EXPECT_EQ(Run(file(kept) + " --chip z80 show").status, 2);
    EXPECT_EQ(std::filesystem::file_size(kept), 11u);
}

// The person of a replay is the recorded script or another one. A capture that was looked at more
// often, or that went on between two clicks, is the same one.
TEST_F(CommandLine, ARecordingReplaysUntilSomethingDiffers) {
    const std::string offScreen = onWindows ? "" : " --off-screen";
    const std::string record = directory.PathOf("record"), again = directory.PathOf("again");
    const std::string file = " --journal-file \"" + record + "\"";
    const auto replay = [&](const std::string& options = "") {
        return Run("replay \"" + record + "\"" + offScreen + options);
    };
    const std::string script = directory.Write("script", kSession);
    Run("drive \"" + script + "\"" + offScreen + file + " --fail \"Command:etm pc*@2=no room\"");
    const Outcome same = replay(" --journal-file \"" + again + "\"");
    EXPECT_EQ(same.status, 0);
    EXPECT_THAT(same.output, testing::EndsWith(" calls, no difference\n"));
    EXPECT_EQ(same.errors, "etm pc=to 0x20: no room\n") << "as it was refused";
    directory.Write("script", "click 1000\nif window \"ETM Configuration\"\nok\nend\ncancel\n");
    const Outcome other = replay(" --drive \"" + script + "\"");
    EXPECT_EQ(other.status, 1);
    EXPECT_THAT(other.errors, HasSubstr("expected HasFeature 0x4000000, got Open -> yes\n"));
    directory.Write("script", "expect enabled 9\n");
    EXPECT_THAT(replay(" --drive \"" + script + "\"").errors,
                StartsWith(script + ":1: expected 9"));
    EXPECT_THAT(replay(" --chip arm7").errors, HasSubstr("--chip has no say beside it\n"));
    const std::string whole = directory.Read("record");
    for (const auto& [end, status, message] :
         {std::tuple(
              whole.rfind("{\"direction\":\"toModule\",\"phase\":\"return\",\"object\":\"IOrnKVETM"
                          "Ctrl\",\"operation\":\"Open\""),
              1, "expected nothing more: the recording ends here, while Open (line "),
          std::tuple(whole.size() - 5, 2, "the last line is cut off: ")}) {
        directory.Write("record", whole.substr(0, end));
        const Outcome early = replay();
        EXPECT_EQ(early.status, status);
        EXPECT_THAT(early.errors, HasSubstr(message));
    }
    if (onWindows) return; // which has no tour
    for (const std::string chip : {"arm926", "cortex-m3"}) {
        SCOPED_TRACE(chip);
        Run("tour \"" + directory.Path() + "\" --chip " + chip + file);
        EXPECT_EQ(replay().errors, "");
    }
    std::string text = directory.Read("record");
    const auto line = [&](const std::string& operation, const std::string& arguments,
                          const std::string& results = "") {
        return "{\"direction\":\"toHost\",\"object\":\"IOrnVETMTrace\",\"operation\":\"" +
               operation + "\",\"arguments\":{" + arguments + "}" + results;
    };
    const auto state = [&](const std::string& word) {
        return line("GetTraceState", "\"detail\":true",
                    ",\"results\":{\"return\":" + word + "}}\n");
    };
    const size_t asked = text.rfind(line("HasFeature", "\"feature\":33554432"));
    const size_t after = text.find(line("HasFeature", "\"feature\":67108864"), asked);
    const std::string questions = text.substr(asked, after - asked);
    text.insert(text.find(line("Command", "\"text\":\"stop\",\"stream\":false")),
                state("4") + state("4") + state("6") + questions + state("4") + questions);
    const size_t altered = text.find("ETM PORTSIZE");
    directory.Write("record", text.replace(altered, 3, "etm"));
    const auto lines = std::count(text.data(), text.data() + altered, '\n');
    EXPECT_EQ(replay().errors,
              record + ":" + std::to_string(lines + 1) + ": this line is not as it was recorded\n")
        << "the person has waited for what has news";
}

// The module's side of the conversation is that without the checker, and what the checker asks by
// itself stands in its recording as notes alone.
TEST_F(CommandLine, ATourBehindTheCheckerIsTheSame) {
    if (onWindows) GTEST_SKIP() << "a Windows build has no tour";
    const std::string checker =
        std::filesystem::path(built::kEtmhost).replace_filename("KVETMHostCheck.so").string();
    const std::string pictures = " tour \"" + directory.PathOf("pictures") + "\"";
    const Outcome plain = Run(pictures);
    const Outcome outcome = Run("--module \"" + checker + "\" --journal-file \"" +
                                    directory.PathOf("host") + "\"" + pictures,
                                "KVETM_CHECK_JOURNAL=\"" + directory.PathOf("checker") + "\" ");
    EXPECT_EQ(outcome.errors, "KVETMHostCheck: 0 breaches, 0 remarks\n");
    const auto isIdentity = [](const std::string& line) {
        return line.starts_with("IOrn") && line.find(".Get") != std::string::npos;
    };
    std::string told[2];
    for (const Outcome* run : {&plain, &outcome}) {
        std::istringstream lines(run->output);
        for (std::string line; std::getline(lines, line);)
            if (!isIdentity(line)) told[run == &outcome] += line + '\n';
    }
    EXPECT_EQ(told[1], told[0]);
    std::string faults;
    std::vector<record::Event> calls[2];
    for (const char* file : {"host", "checker"}) {
        const bool ofChecker = std::string(file) == "checker";
        bool attaching = false;
        for (record::Event& event : ReadRecord(file)) {
            event.refusal.reset(); // the host knows more of why
            if (ofChecker && event.direction != record::Event::Direction::Host)
                faults += record::FaultOf(event);
            if (event.operation == "SetModulePath") event.arguments.clear(); // each its own
            if (event.direction == record::Event::Direction::ToModule)
                attaching = event.operation == "AttachInterface" &&
                            event.phase == record::Event::Phase::Call;
            else if (event.direction == record::Event::Direction::Host || (attaching && !ofChecker))
                continue;
            calls[ofChecker].push_back(std::move(event));
        }
    }
    EXPECT_EQ(faults, "");
    EXPECT_GT(calls[1].size(), 100u);
    EXPECT_TRUE(calls[0] == calls[1]) << directory.Read("host") << directory.Read("checker");
}

} // namespace
} // namespace etmhost
