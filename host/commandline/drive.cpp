#include "host/commandline/drive.h"

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <iostream>
#include <sstream>

#include "host/drive/Watchdog.h"
#include "host/drive/windows.h"
#include "host/replay/Replay.h"
#include "host/support/host_error.h"
#include "host/support/system.h"

namespace etmhost {

namespace {

constexpr struct {
    const char *name, *text;
} kScripts[] = {
#include "scripts.inc"
};

std::string ReadText(std::istream& in, const std::string& name) {
    std::string text(kLongestScript + 1, '\0');
    in.read(text.data(), static_cast<std::streamsize>(text.size()));
    if (in.bad() || (in.fail() && !in.eof()))
        throw HostError("cannot read script \"" + name + "\"");
    text.resize(static_cast<size_t>(in.gcount()));
    return text;
}

void Report(std::ostream& errors, const Script& script, int line, const std::string& text) {
    if (std::ranges::any_of(kScripts, [&](const auto& own) { return script.name == own.name; }))
        PrintRefusal(errors, std::string(kProgram) + ": " + script.name, text);
    else
        PrintRefusal(errors, script.name + ":" + std::to_string(line), text);
}

} // namespace

std::optional<ReadyScript> ReadScript(const std::string& file, std::ostream& errors,
                                      bool pictures) {
    std::string text;
    if (file == "-") {
        text = ReadText(std::cin, file);
    } else {
        std::ifstream in(ToPath(file), std::ios::binary);
        if (!in) throw HostError("cannot read script \"" + file + "\"");
        text = ReadText(in, file);
    }
    Script script = ParseScript(file, text);
    if (script.steps.empty() && script.errors.empty())
        script.errors.push_back({1, "there is no step in this script"});
    if (pictures && !TakesPictures())
        for (const Step& step : script.steps)
            if (step.verb == Step::Picture)
                script.errors.push_back({step.line, "this build of etmhost takes no pictures"});
    for (const ScriptError& error : script.errors) Report(errors, script, error.line, error.text);
    if (!script.errors.empty()) return std::nullopt;
    return ReadyScript{std::move(script), std::move(text)};
}

ReadyScript OwnScript(const std::string& name) {
    const auto* const own =
        std::ranges::find_if(kScripts, [&](const auto& script) { return name == script.name; });
    return {ParseScript(own->name, own->text), own->text};
}

void PreparePictures(const std::string& command, const std::string& directory) {
    const std::filesystem::path path = ToPath(directory);
    const std::filesystem::path probe = path / ".etmhost-probe";
    std::error_code ignored;
    std::filesystem::create_directories(path, ignored);
    const bool writable = std::ofstream(probe).good();
    std::filesystem::remove(probe, ignored);
    if (!writable) throw HostError(command + ": cannot write into directory \"" + directory + "\"");
}

namespace {

/// Has the interpreter work while `open` runs. Where windows cannot be closed, the program ends.
void DriveThrough(Interpreter& interpreter, const Script& script, std::ostream& errors,
                  const std::function<void()>& open) {
    const auto give = [&](const std::string& up) {
        const std::string& failure = interpreter.failure();
        Report(errors, script, interpreter.failureLine(),
               failure + (failure.empty() ? "" : "\n") + up);
        errors.flush();
        std::_Exit(kFailed);
    };
    interpreter.OnStuck([&] { give("a window cannot be closed"); });
    const Watchdog watchdog(interpreter, [&] { give("the windows do not answer"); });
    DriveWindows(interpreter, open);
}

constexpr size_t kMostAltered = 20; // that are told one by one

bool ShowsWindows(const Recording& recording) {
    return std::ranges::any_of(
        recording.calls,
        [](const RecordedCall& call) {
            return call.event.operation == "Open" && record::IsTrue(call.event.results, "return");
        });
}

} // namespace

Status Drive(const std::function<Status()>& open, record::EventStream& events,
             const ReadyScript& ready, const std::string& pictures, std::ostream& errors) {
    const Script& script = ready.script;
    events.Tell("script", {{"name", script.name}, {"text", ready.text}});
    const std::unique_ptr<User> user = MakeUser();
    Interpreter interpreter(script, *user, [&](const std::string& what) { events.Step(what); });
    if (!pictures.empty()) interpreter.SetPictures(ToPath(pictures));
    Status status = kDone;
    DriveThrough(interpreter, script, errors, [&] { status = open(); });
    if (status == kDone) interpreter.End();
    if (interpreter.failure().empty()) return status;
    Report(errors, script, interpreter.failureLine(), interpreter.failure());
    return kFailed;
}

Status ReplayWith(const Script* script, const Recording& recording, IOrnAPIBase& module,
                  record::EventStream& events, const std::string& pictures, std::ostream& out,
                  std::ostream& errors) {
    static constexpr const char* kGoneAnotherWay = "the replay has gone another way";
    for (size_t index = 0; index < std::min(recording.altered.size(), kMostAltered); ++index)
        PrintRefusal(errors, recording.Place(recording.altered[index]),
                     "this line is not as it was recorded");
    if (recording.altered.size() > kMostAltered)
        PrintRefusal(errors, Escape(recording.name),
                     "nor are " + std::to_string(recording.altered.size() - kMostAltered) +
                         " others");
    Replay replay(recording, module, events);
    bool failed = false;
    const auto tell = [&] {
        const Difference& difference = *replay.difference();
        PrintRefusal(errors, recording.Place(difference.line),
                     "expected " + difference.expected + ", got " + difference.got);
        errors.flush(); // a person may be at the windows still
    };
    replay.OnDifference(tell);
    if (script == nullptr) {
        replay.Run();
    } else {
        const std::unique_ptr<User> user = MakeUser();
        Interpreter interpreter(*script, *user,
                                [&](const std::string& what) { events.Step(what); });
        if (pictures.empty())
            interpreter.TakeNoPictures();
        else
            interpreter.SetPictures(ToPath(pictures));
        interpreter.SetWait([&replay] { return replay.IsNewsAhead(); });
        replay.OnDifference([&] { interpreter.GiveUp(kGoneAnotherWay); });
        DriveThrough(interpreter, *script, errors, [&replay] { replay.Run(); });
        if (!replay.difference() && ShowsWindows(recording)) interpreter.End();
        failed = !interpreter.failure().empty();
        if (failed && interpreter.failure() != kGoneAnotherWay) // which it went for that
            Report(errors, *script, interpreter.failureLine(), interpreter.failure());
        if (replay.difference()) tell();
    }
    if (replay.difference() || failed || !recording.altered.empty()) return kFailed;
    out << replay.count() << " calls, no difference\n";
    return kDone;
}

} // namespace etmhost
