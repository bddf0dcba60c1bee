#include "host/module/faults.h"

#include <algorithm>
#include <optional>
#include <thread>

#include "host/record/operations.h"
#include "host/support/host_error.h"
#include "host/support/words.h"

namespace etmhost {

namespace {

using record::Operation;
using record::Part;
using record::Value;

constexpr const char* kReason = "Failed on request";

bool IsNamed(const Operation& operation, std::string_view object, std::string_view name) {
    return operation.direction == record::Event::Direction::ToHost && operation.name == name &&
           (object.empty() || record::FindOperation(operation.direction, object, name) != nullptr);
}

const Operation& FindNamed(std::string_view object, std::string_view name) {
    std::vector<std::string> names;
    for (const Operation& operation : record::Operations()) {
        if (IsNamed(operation, object, name)) return operation;
        if (operation.direction == record::Event::Direction::ToHost)
            names.emplace_back(operation.name);
    }
    const std::string whole = (object.empty() ? "" : std::string(object) + ".") + std::string(name);
    throw HostError("the host has no operation \"" + Escape(whole) + "\"" +
                    DidYouMean(name, names));
}

// The arguments by which a call can be named; behind an action stands more of the same.
size_t NameableCount(const Operation& operation) {
    if (operation.name == std::string_view("Action")) return 1;
    return static_cast<size_t>(std::ranges::count_if(operation.arguments, [](const Part& part) {
        return part.kind == Part::Kind::Text || part.kind == Part::Kind::Number;
    }));
}

// Each * stands for any characters.
bool TextIsLike(std::string_view text, std::string_view pattern) {
    size_t at = 0, from = 0, star = std::string_view::npos, resume = 0;
    while (at < text.size()) {
        if (from < pattern.size() && pattern[from] == '*') {
            star = from++;
            resume = at;
        } else if (from < pattern.size() && pattern[from] == text[at]) {
            ++at, ++from;
        } else if (star != std::string_view::npos) {
            from = star + 1;
            at = ++resume;
        } else {
            return false;
        }
    }
    return pattern.find_first_not_of('*', from) == std::string_view::npos;
}

bool IsLike(const Value& value, const std::string& pattern) {
    if (const auto* text = std::get_if<std::string>(&value)) return TextIsLike(*text, pattern);
    const int64_t* number = std::get_if<int64_t>(&value);
    if (number == nullptr) return pattern == "*";
    if (const std::optional<uint64_t> wanted = ParseNumber(pattern))
        return *wanted == static_cast<uint64_t>(*number);
    return TextIsLike(std::to_string(*number), pattern) ||
           TextIsLike(Hex(static_cast<uint32_t>(*number)), pattern);
}

// Takes "@3" off the end of `text`; 0 if there is none.
uint64_t TakeCount(std::string& text) {
    const size_t at = text.rfind('@');
    if (at == std::string::npos || at + 1 == text.size() ||
        !std::all_of(text.begin() + static_cast<std::ptrdiff_t>(at) + 1, text.end(), IsDigit))
        return 0;
    const std::optional<uint64_t> count = ParseNumber(std::string_view(text).substr(at + 1));
    if (!count || *count == 0)
        throw HostError("\"" + text.substr(at) + "\" is no count: the first call is @1");
    text.resize(at);
    return *count;
}

std::chrono::milliseconds ParseTime(const std::string& text) {
    const size_t digits = std::min(text.find_first_not_of("0123456789"), text.size());
    const std::string unit = text.substr(digits);
    const std::optional<uint64_t> number = ParseNumber(std::string_view(text).substr(0, digits));
    const uint64_t longest = static_cast<uint64_t>(kLongestDelay.count());
    const uint64_t factor = unit == "s" ? 1000 : 1;
    if (!number || (unit != "ms" && unit != "s") || *number == 0 || *number > longest / factor)
        throw HostError("\"" + Escape(text) +
                        "\" is no time from 1ms to 60s: a number with ms or s behind it");
    return std::chrono::milliseconds(*number * factor);
}

HostError Malformed(const char* option, const std::string& text, const HostError& error) {
    return HostError(std::string(option) + " \"" + Escape(text) + "\": " + error.what());
}

} // namespace

Faults::Calls Faults::ParseCalls(const std::string& text) {
    Calls calls;
    const size_t end = std::min(text.find_first_of(":@"), text.size());
    const std::string name = text.substr(0, end);
    const size_t point = name.find('.');
    if (point != std::string::npos) calls.object = name.substr(0, point);
    calls.operation = name.substr(point == std::string::npos ? 0 : point + 1);
    const Operation& operation = FindNamed(calls.object, calls.operation);
    std::string rest = text.substr(end);
    calls.count = TakeCount(rest);
    if (rest.empty()) return calls;
    if (rest[0] == '@') throw HostError("\"" + Escape(rest.substr(1)) + "\" is no count");
    const size_t most = NameableCount(operation);
    if (most == 0) throw HostError(calls.operation + " has no argument to tell calls apart by");
    for (size_t at = 1; at <= rest.size();) {
        const bool last = calls.arguments.size() + 1 == most;
        const size_t comma = last ? rest.size() : std::min(rest.find(',', at), rest.size());
        const std::string pattern = rest.substr(at, comma - at);
        at = comma + 1;
        const Part& part = operation.arguments[calls.arguments.size()];
        if (pattern.empty()) throw HostError("an argument is missing behind \":\"");
        if (part.kind == Part::Kind::Number && !ParseNumber(pattern) &&
            pattern.find('*') == std::string::npos)
            throw HostError("\"" + Escape(pattern) + "\" is no number, which " + calls.operation +
                            " takes as its \"" + std::string(part.name) + "\"");
        calls.arguments.push_back(pattern);
    }
    return calls;
}

void Faults::Fail(const std::string& text) {
    Fault fault{.option = "--fail \"" + Escape(text) + "\"", .readings = {}};
    std::optional<HostError> wrong; // by the first "=", which is the likeliest
    for (size_t end = text.size(); end != std::string::npos;
         end = end > 0 ? text.rfind('=', end - 1) : end) {
        if (end == 0) break;
        try {
            Calls calls = ParseCalls(text.substr(0, end));
            calls.reason = end < text.size() ? text.substr(end + 1) : kReason;
            fault.readings.push_back(std::move(calls));
        } catch (const HostError& error) {
            wrong = error;
        }
    }
    if (fault.readings.empty())
        throw Malformed("--fail", text, wrong ? *wrong : HostError("an operation is missing"));
    m_Failures.push_back(std::move(fault));
}

void Faults::Delay(const std::string& text) {
    try {
        const size_t end = text.rfind('=');
        if (end == std::string::npos) throw HostError("a time is missing, as in GetValue=500ms");
        m_Delays.push_back({.option = "--delay \"" + Escape(text) + "\"",
                            .readings = {ParseCalls(text.substr(0, end))},
                            .delay = ParseTime(text.substr(end + 1))});
    } catch (const HostError& error) {
        throw Malformed("--delay", text, error);
    }
}

bool Faults::Calls::Meet(const record::Event& call) {
    if (call.operation != operation || (!object.empty() && call.object != object)) return false;
    for (size_t index = 0; index < arguments.size(); ++index)
        if (!IsLike(call.arguments[index].second, arguments[index])) return false;
    ++seen;
    return count == 0 || seen == count;
}

// Returns the reason of the reading that `call` meets, or null. All of them count on.
const std::string* Faults::Met(Fault& fault, const record::Event& call) {
    const std::string* reason = nullptr;
    for (Calls& calls : fault.readings)
        if (calls.Meet(call) && reason == nullptr) reason = &calls.reason;
    fault.met |= reason != nullptr;
    return reason;
}

bool Faults::Answer(record::Event& call) {
    std::chrono::milliseconds delay(0);
    for (Fault& fault : m_Delays)
        if (Met(fault, call) != nullptr) delay += fault.delay;
    if (delay.count() > 0) std::this_thread::sleep_for(delay);
    const std::string* reason = nullptr;
    for (Fault& fault : m_Failures) {
        const std::string* own = Met(fault, call);
        if (reason == nullptr) reason = own;
    }
    if (reason == nullptr) return false;
    call.results = FailureOf(call, *reason);
    call.refusal = *reason;
    m_Events.Write(call);
    return true;
}

std::vector<std::string> Faults::Unmet() const {
    std::vector<std::string> sentences;
    for (const std::vector<Fault>* faults : {&m_Failures, &m_Delays})
        for (const Fault& fault : *faults) {
            if (fault.met) continue;
            uint64_t seen = 0;
            for (const Calls& calls : fault.readings) seen = std::max(seen, calls.seen);
            sentences.push_back(fault.option + " met no call: there were " +
                                (seen == 0 ? "none such" : "only " + std::to_string(seen)));
        }
    return sentences;
}

} // namespace etmhost
