#include "host/replay/Recording.h"

#include <algorithm>
#include <fstream>

#include "host/record/json_lines.h"
#include "host/record/operations.h"
#include "host/support/host_error.h"
#include "host/support/system.h"
#include "host/support/words.h"

namespace etmhost {

namespace {

using record::Event;
using Direction = Event::Direction;
using Phase = Event::Phase;

constexpr size_t kLongestReason = 300; // the parser's quotes what it has read

/// Looks whether each call ends inside the one during which it was made.
class Nesting {
public:
    /// Returns what is wrong with `event` at its place; empty if nothing is.
    std::string FaultOf(const Event& event) {
        const std::string call = event.object + "." + event.operation;
        if (event.phase == Phase::Return) {
            if (m_Running.empty() || m_Running.back() != call)
                return "the end of " + call + ", but " +
                       (m_Running.empty() ? "no call" : m_Running.back()) + " runs";
            m_Running.pop_back();
            return "";
        }
        if (event.direction == Direction::ToModule && event.phase == Phase::Whole)
            return "a call to the module takes two lines, \"call\" and \"return\"";
        if (event.phase == Phase::Call) m_Running.push_back(call);
        return "";
    }

    bool IsAtRest() const { return m_Running.empty(); }

private:
    std::vector<std::string> m_Running;
};

std::string ReasonOf(const std::exception& error) {
    std::string reason = error.what();
    // The parser counts lines of its own.
    if (const size_t at = reason.find("line 1, "); at != std::string::npos) reason.erase(at, 8);
    if (reason.size() > kLongestReason) reason.resize(kLongestReason);
    return Escape(reason);
}

} // namespace

std::string Recording::Place(size_t line) const {
    return Escape(name) + ":" + std::to_string(line);
}

Recording ParseRecording(std::string name, std::string_view text) {
    Recording recording{.name = std::move(name), .calls = {}, .altered = {}, .script = {}};
    const auto refuse = [&recording](const std::string& reason, size_t line = 0) {
        throw HostError(recording.Place(line > 0 ? line : recording.lines) + ": " + reason);
    };
    Nesting nesting;
    bool begun = false;
    size_t alone = 0; // the first call of the host that the module cannot have made
    while (!text.empty()) {
        ++recording.lines;
        const size_t end = text.find('\n');
        std::string_view line = text.substr(0, end);
        const bool cutOff = end == std::string_view::npos;
        text.remove_prefix(cutOff ? text.size() : end + 1);
        if (line.ends_with('\r')) line.remove_suffix(1);
        if (Trim(line).empty()) continue;
        Event event;
        bool altered = false;
        try {
            event = record::FromJsonLine(line, &altered);
        } catch (const std::exception& error) {
            refuse((cutOff ? "the last line is cut off: " : "this is no event: ") +
                   ReasonOf(error));
        }
        if (altered) recording.altered.push_back(recording.lines);
        const bool isBegin = event.direction == Direction::Host && event.operation == "begin";
        if (!begun && !isBegin) refuse("a recording begins with \"begin\", this file does not");
        if (begun && isBegin) refuse("another recording begins here");
        if (isBegin) {
            const record::Value* format = record::Find(event.arguments, "format");
            if (format == nullptr || *format != record::Value(record::kFormat))
                refuse("a recording of another form than " + std::to_string(record::kFormat) +
                       ", which this program reads");
            begun = true;
        }
        if (event.direction == Direction::Host) {
            if (event.operation == "script")
                recording.script = {record::TextOf(event.arguments, "name"),
                                    record::TextOf(event.arguments, "text")};
            continue;
        }
        if (event.direction == Direction::ToHost && nesting.IsAtRest() && alone == 0)
            alone = recording.lines;
        std::string fault = record::FaultOf(event);
        if (fault.empty()) fault = nesting.FaultOf(event);
        if (!fault.empty()) refuse(Escape(fault));
        recording.calls.push_back({recording.lines, std::move(event)});
    }
    const auto toModule = [](const RecordedCall& call) {
        return call.event.direction == Direction::ToModule;
    };
    if (std::ranges::none_of(recording.calls, toModule))
        throw HostError("\"" + Escape(recording.name) +
                        "\" holds no call of the module: there is nothing to replay");
    return recording;
}

Recording ReadRecording(const std::filesystem::path& file) {
    const std::string name = PathText(file);
    std::ifstream in(file, std::ios::binary);
    std::string text;
    std::string part(size_t{1} << 20, '\0');
    while (in.read(part.data(), static_cast<std::streamsize>(part.size())) || in.gcount() > 0) {
        text.append(part, 0, static_cast<size_t>(in.gcount()));
        if (text.size() > kLargestRecording)
            throw HostError("recording \"" + Escape(name) + "\" has more than " +
                            std::to_string(kLargestRecording >> 20) + " MB");
    }
    if (!in.eof() || in.bad()) throw HostError("cannot read recording \"" + Escape(name) + "\"");
    return ParseRecording(name, text);
}

} // namespace etmhost
