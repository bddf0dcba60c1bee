#include "host/commandline/drive.h"

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <iostream>
#include <sstream>

#include "host/drive/Watchdog.h"
#include "host/drive/windows.h"
#include "host/support/host_error.h"

namespace etmhost {

namespace {

constexpr struct {
    const char *name, *text;
} kScripts[] = {
#include "scripts.inc"
};

std::filesystem::path ToPath(const std::string& text) {
    if (const auto path = NativePath(text)) return *path;
    throw HostError("\"" + text + "\" is no file name");
}

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

std::optional<Script> ReadScript(const std::string& file, std::ostream& errors) {
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
    if (!TakesPictures())
        for (const Step& step : script.steps)
            if (step.verb == Step::Picture)
                script.errors.push_back({step.line, "this build of etmhost takes no pictures"});
    for (const ScriptError& error : script.errors) Report(errors, script, error.line, error.text);
    return script.errors.empty() ? std::optional(script) : std::nullopt;
}

Script OwnScript(const std::string& name) {
    const auto* const own =
        std::ranges::find_if(kScripts, [&](const auto& script) { return name == script.name; });
    return ParseScript(own->name, own->text);
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

Status Drive(const std::function<Status()>& open, record::EventStream& events, const Script& script,
             const std::string& pictures, std::ostream& errors) {
    const std::unique_ptr<User> user = MakeUser();
    Interpreter interpreter(script, *user, [&](const std::string& what) { events.Step(what); });
    if (!pictures.empty()) interpreter.SetPictures(ToPath(pictures));
    const auto give = [&](const std::string& up) {
        const std::string& failure = interpreter.failure();
        Report(errors, script, interpreter.failureLine(),
               failure + (failure.empty() ? "" : "\n") + up);
        errors.flush();
        std::_Exit(kFailed);
    };
    interpreter.OnStuck([&] { give("a window cannot be closed"); });
    Status status = kDone;
    {
        const Watchdog watchdog(
            interpreter, [&] { give("the windows do not answer"); });
        DriveWindows(interpreter, [&] { status = open(); });
    }
    if (status == kDone) interpreter.End();
    if (interpreter.failure().empty()) return status;
    Report(errors, script, interpreter.failureLine(), interpreter.failure());
    return kFailed;
}

} // namespace etmhost
