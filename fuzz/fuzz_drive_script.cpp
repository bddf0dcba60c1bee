// Any text as a script for the dialog.

#include <algorithm>

#include "fuzz/target.h"
#include "host/drive/Script.h"
#include "host/drive/describe.h"

using namespace etmhost;

static void RequireOneLine(const std::string& text) {
    for (const char c : text) Require((c & 0xE0) != 0);
}

static void DriveScript(const uint8_t* data, size_t size) {
    const std::string text(reinterpret_cast<const char*>(data), size);
    const Script script = ParseScript("s", text);
    const auto lines = std::ranges::count(text, '\n') + 1;
    int last = 1;
    for (const ScriptError& error : script.errors) {
        Require(error.line >= last && error.line <= lines);
        last = error.line;
        RequireOneLine(Located(script, error.line, error.text));
    }
    if (!script.errors.empty()) return;
    for (size_t i = 0; i < script.steps.size(); ++i) {
        const Step& step = script.steps[i];
        Require(step.line >= last && step.line <= lines);
        last = step.line;
        // Branches lead onward, so that each script comes to an end.
        if (step.verb == Step::Unless || step.verb == Step::GoOn)
            Require(step.target > i && step.target <= script.steps.size());
        RequireOneLine(Described(step.condition));
        RequireOneLine(Described(step.control) + Described(step.entry));
    }
    // Remarks and blanks say nothing.
    std::string remarked;
    for (const char c : text) remarked += c == '\n' ? std::string(" # why\n") : std::string(1, c);
    Require(ParseScript("s", remarked).steps.size() == script.steps.size() ||
            remarked.size() > kLongestScript || text.find('\r') != text.npos);
}

static const FuzzTarget kDriveScript("fuzz_drive_script", DriveScript);
