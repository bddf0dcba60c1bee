#include "host/module/journal.h"

#include <algorithm>

#include "host/support/refusal.h"
#include "host/support/words.h"

namespace etmhost {

namespace {

using record::Event;
using record::Value;
using Direction = Event::Direction;
using Phase = Event::Phase;

constexpr const char* kPoll = "GetTraceState";

template <size_t Count>
bool IsOneOf(const std::string& operation, const char* const (&names)[Count]) {
    return std::ranges::find(names, operation) != std::end(names);
}

// Their numbers are words, ids and masks.
constexpr const char* kOfWords[] = {kPoll, "HasFeature", "SetValue", "GetValue"};

// Every object has these.
constexpr const char* kOfIdentity[] = {"GetInterfaceName", "GetInterfaceVersion",
                                       "GetComponentName", "GetComponentVersion",
                                       "GetInterface",     "ReleaseInterface"};

// The calls of the module that a person knows of.
constexpr const char* kSteps[] = {"Init", "Open", "Apply", "InitBoardFile"};

std::string Shown(const Event& event, const Value* value) {
    if (value == nullptr) return "done";
    if (const bool* flag = std::get_if<bool>(value)) return YesNo(*flag);
    if (const auto* text = std::get_if<std::string>(value)) return Quote(*text);
    const int64_t* number = std::get_if<int64_t>(value);
    if (number == nullptr) return "null";
    return IsOneOf(event.operation, kOfWords) ? Hex(static_cast<uint32_t>(*number))
                                              : std::to_string(*number);
}

std::string AnswerOf(const Event& event) {
    const std::string& operation = event.operation;
    const bool done = record::IsTrue(event.results, "return");
    const Value* answer = record::Find(event.results, "return");
    if (operation == "Command") // which returns its refusal itself
        return answer == nullptr || *answer == Value(nullptr) ? "ok" : Shown(event, answer);
    std::string text;
    if (operation == "SetValue" || operation == "WriteSetting")
        text = done ? "ok" : "refused";
    else if (operation == "GetValue")
        text = done ? Shown(event, record::Find(event.results, "value")) : "refused";
    else if (operation == "ReadSetting")
        text = done ? Shown(event, record::Find(event.results, "buffer")) : "none";
    else
        text = Shown(event, answer);
    return text + (event.refusal ? ": " + Escape(*event.refusal) : "");
}

std::string StepOf(const Event& event) {
    if (event.operation == "GetLastError") {
        const std::string text = record::TextOf(event.results, "buffer");
        return text.empty() ? "" : "GetLastError gave " + Quote(text);
    }
    if (!IsOneOf(event.operation, kSteps)) return "";
    if (event.phase == Phase::Call) {
        const Value* directory = record::Find(event.arguments, "directory");
        return event.operation + (directory != nullptr ? " " + Shown(event, directory) : "");
    }
    const bool done = record::IsTrue(event.results, "return");
    return done && event.operation != "Open" ? "" : event.operation + " gave " + YesNo(done);
}

} // namespace

std::string ValueWords(const Event& event, const Value& value) {
    return Shown(event, &value);
}

std::string CallWords(const Event& event) {
    std::string call = IsOneOf(event.operation, kOfIdentity) ? event.object + "." : "";
    call += event.operation;
    for (const auto& argument : event.arguments)
        if (!std::holds_alternative<bool>(argument.second)) // else it is for a result
            call += " " + Shown(event, &argument.second);
    return call;
}

std::string JournalLine(const Event& event) {
    if (event.direction == Direction::ToHost) return CallWords(event) + " -> " + AnswerOf(event);
    const std::string step = event.direction == Direction::ToModule ? StepOf(event)
                             : event.operation == "step" ? record::TextOf(event.arguments, "text")
                                                         : "";
    return step.empty() ? "" : "-- " + step;
}

std::string RefusedPart(const Event& event) {
    if (event.operation == "Command") return record::TextOf(event.arguments, "text");
    if (event.operation != "Action") return CallWords(event);
    const std::string action = record::TextOf(event.arguments, "action");
    std::string_view expression = action;
    TakeWord(expression);
    const std::string_view rest = Trim(expression);
    return rest.empty() ? action : std::string(rest);
}

bool PollNews::Has(const Event& event) {
    if (event.direction != Direction::ToHost || event.operation != kPoll) return true;
    const auto* answer = record::Find(event.results, "return");
    const auto* before = m_Last ? record::Find(m_Last->results, "return") : nullptr;
    const bool known = answer != nullptr && before != nullptr && *answer == *before &&
                       event.refusal == m_Last->refusal;
    m_Last = event;
    return !known;
}

void TextJournal::Write(const Event& event) {
    const std::string line = m_News.Has(event) ? JournalLine(event) : "";
    if (!line.empty()) m_Out << m_Prefix + line + '\n' << std::flush; // whole lines
}

void RefusalPrinter::Write(const Event& event) {
    if (event.direction == Direction::Host && event.operation == "note")
        PrintRefusal(m_Out, "etmhost", record::TextOf(event.arguments, "text"));
    else if (m_News.Has(event) && event.refusal)
        PrintRefusal(m_Out, RefusedPart(event), *event.refusal);
}

} // namespace etmhost
