#include "host/commandline/echo.h"

#include <algorithm>
#include <sstream>
#include <vector>

#include "frame/interfaces/IOrnVETMTrace.h"
#include "host/support/words.h"

namespace etmhost {

namespace {

struct Section {
    std::string title;
    std::vector<std::string> lines;
};

std::vector<Section> SectionsOf(const std::string& shown) {
    std::vector<Section> sections(1);
    std::istringstream in(shown);
    for (std::string line; std::getline(in, line);) {
        if (line.empty()) continue;
        if (line.front() == ' ') {
            sections.back().lines.push_back(line.substr(2));
            continue;
        }
        const size_t value = line.find(" 0x"); // a title that holds something itself
        sections.push_back({line.substr(0, value), {}});
        if (value != std::string::npos) sections.back().lines.push_back(line.substr(value + 1));
    }
    return sections;
}

// What `lines` has and `others` has not.
std::vector<std::string> Without(const std::vector<std::string>& lines,
                                 std::vector<std::string> others) {
    std::vector<std::string> left;
    for (const std::string& line : lines) {
        const auto same = std::ranges::find(others, line);
        if (same == others.end())
            left.push_back(line);
        else
            others.erase(same);
    }
    return left;
}

/// A command as a line for `run`; one that no line can hold as a remark.
std::string ForRun(const std::string& command) {
    const std::string line = Escape(command);
    return line == command ? line : "# no line for run: " + line;
}

} // namespace

std::string EchoLine(const record::Event& event) {
    if (event.direction != record::Event::Direction::ToHost) return "";
    const record::Fields& given = event.arguments;
    if (event.operation == "Command") // one with a stream asks
        return record::IsTrue(given, "stream") ? "" : ForRun(record::TextOf(given, "text"));
    if (event.operation == "WriteSetting") {
        return ForRun("setting " + record::TextOf(given, "section") + "/" +
                      record::TextOf(given, "key") + "=" + record::TextOf(given, "value"));
    }
    if (event.operation != "SetValue") return "";
    const auto number = [&given](const char* name) {
        const record::Value* value = record::Find(given, name);
        const auto* held = value != nullptr ? std::get_if<int64_t>(value) : nullptr;
        return held != nullptr ? static_cast<uint32_t>(*held) : 0;
    };
    const uint32_t value = number("value");
    switch (number("id")) {
    case ORN_VALUE_CONTROL:
        return "set control=" + Hex(value);
    case ORN_VALUE_TRIGGER_COUNT:
        return "set triggercount=" + std::to_string(value);
    default:
        return "# SetValue " + Hex(number("id")) + " " + Hex(value);
    }
}

void Echo::Write(const record::Event& event) {
    const std::string line = EchoLine(event);
    if (line.empty()) return;
    m_Out << line + "\n" + (event.refusal ? Remarks("refused: " + *event.refusal) : "")
          << std::flush;
}

std::string Remarks(const std::string& text) {
    std::istringstream in(text);
    std::string remarks;
    for (std::string line; std::getline(in, line);) remarks += "# " + Escape(line) + "\n";
    return remarks;
}

std::string Differences(const std::string& before, const std::string& after) {
    std::vector<Section> earlier = SectionsOf(before), later = SectionsOf(after);
    for (const Section& section : earlier) // one that is there once only is empty elsewhere
        if (std::ranges::find(later, section.title, &Section::title) == later.end())
            later.push_back({section.title, {}});
    std::string text;
    for (const Section& section : later) {
        const auto same = std::ranges::find(earlier, section.title, &Section::title);
        const std::vector<std::string> none;
        const std::vector<std::string>& was = same != earlier.end() ? same->lines : none;
        const auto gone = Without(was, section.lines), come = Without(section.lines, was);
        if (gone.empty() && come.empty()) continue;
        text += section.title + "\n";
        for (const std::string& line : gone) text += "  before: " + line + "\n";
        for (const std::string& line : come) text += "  after:  " + line + "\n";
    }
    return text;
}

} // namespace etmhost
