#include "host/replay/Replay.h"

#include <algorithm>

#include "host/module/journal.h"
#include "host/support/words.h"

namespace etmhost {

namespace {

using record::Event;
using record::Fields;
using record::Value;
using Direction = Event::Direction;
using Phase = Event::Phase;

constexpr const char* kTraceState = "GetTraceState";
constexpr const char* kLost = "The replay has gone another way than the recording";
constexpr size_t kLongestWords = 300;

// Two periods of the dialog's clock: as long, somebody polls.
constexpr std::chrono::milliseconds kPollPatience(1300);

std::string CutWords(std::string text) {
    if (text.size() > kLongestWords) text.replace(kLongestWords, text.size(), "...");
    return text;
}

bool AreSame(const Fields& a, const Fields& b) {
    return a.size() == b.size() && std::ranges::all_of(
                                       a,
                                       [&b](const auto& field) {
                                           const Value* other = record::Find(b, field.first);
                                           return other != nullptr && *other == field.second;
                                       });
}

bool IsSameCall(const Event& a, const Event& b) {
    return a.object == b.object && a.operation == b.operation && AreSame(a.arguments, b.arguments);
}

bool IsSameState(const Event& a, const Event& b) {
    const Value *one = record::Find(a.results, "return"),
                *other = record::Find(b.results, "return");
    return one != nullptr && other != nullptr && *one == *other && a.refusal == b.refusal;
}

std::string ShortWords(const Event& call) {
    return CutWords(CallWords(call));
}

// The end of a call, with all that came of it.
std::string EndWords(const Event& call) {
    std::string text = call.operation + " ->";
    for (const auto& [name, value] : call.results)
        text += (name == "return" ? " " : " " + name + " ") + ValueWords(call, value);
    return CutWords(text + (call.results.empty() ? " done" : ""));
}

// What words leave out: which pointers were null.
std::string PointerWords(const Event& call) {
    std::string text;
    for (const auto& [name, value] : call.arguments)
        if (const bool* there = std::get_if<bool>(&value))
            text += " " + name + (*there ? " not" : "") + " null";
    return text;
}

} // namespace

Replay::Replay(const Recording& recording, IOrnAPIBase& module, record::EventStream& events)
    : m_Recording(recording), m_Events(events), m_Module(module, *this) {
    LookAhead();
}

void Replay::Run() {
    while (!m_Difference && Next() != nullptr) {
        SkipPolls();
        if (IsCallToModuleNext())
            Call();
        else if (Next() != nullptr)
            Differ(Expected(), "no call of the module that runs");
    }
}

bool Replay::IsNewsAhead() const {
    const Clock::duration since = Clock::now().time_since_epoch() - Clock::duration(m_LastPoll);
    return m_IsNewsAhead && since < kPollPatience;
}

const RecordedCall* Replay::Next() const {
    return m_Next < m_Recording.calls.size() ? &m_Recording.calls[m_Next] : nullptr;
}

bool Replay::IsPollNext() const {
    const RecordedCall* next = Next();
    return next != nullptr && next->event.direction == Direction::ToHost &&
           next->event.phase == Phase::Whole && next->event.operation == kTraceState;
}

bool Replay::IsCallToModuleNext() const {
    const RecordedCall* next = Next();
    return next != nullptr && next->event.direction == Direction::ToModule &&
           next->event.phase == Phase::Call;
}

void Replay::Advance() {
    ++m_Next;
    LookAhead();
}

void Replay::LookAhead() {
    while (m_State != nullptr && IsPollNext() && IsSameState(*m_State, Next()->event)) ++m_Next;
    m_IsNewsAhead = !m_Difference && IsPollNext();
}

void Replay::SkipPolls() {
    if (m_Difference) return;
    for (; IsPollNext(); ++m_Next) m_State = &Next()->event;
    LookAhead();
}

// --- The host's calls ------------------------------------------------------------------

void Replay::Call() {
    const auto& [line, call] = *Next();
    if (!m_Module.Has(call.object)) return Differ(ShortWords(call), "no " + call.object + " there");
    Advance();
    m_Events.Write(call);
    m_Running.push_back(call.operation + " (line " + std::to_string(line) + ")");
    Event end{.direction = Direction::ToModule,
              .phase = Phase::Return,
              .object = call.object,
              .operation = call.operation,
              .results = m_Module.Make(call)};
    if (m_Difference) return;
    SkipPolls();
    const RecordedCall* next = Next();
    const bool ends = next != nullptr && next->event.direction == Direction::ToModule &&
                      next->event.phase == Phase::Return;
    if (!ends || !AreSame(next->event.results, end.results))
        return Differ(Expected(), EndWords(end));
    m_Running.pop_back();
    ++m_Count;
    Advance();
    m_Events.Write(end);
}

/// Makes the calls that the recorded host made from inside one of its operations. What it called
/// between them, from a clock of its own, is called from inside the next one.
void Replay::CallFromInside(bool skipPolls) {
    if (skipPolls) SkipPolls();
    while (!m_Difference && IsCallToModuleNext()) {
        Call();
        if (skipPolls) SkipPolls();
    }
}

// --- The module's calls ----------------------------------------------------------------

bool Replay::Answer(Event& call) {
    const bool poll = call.operation == kTraceState;
    if (poll) m_LastPoll = Clock::now().time_since_epoch().count();
    CallFromInside(!poll);
    const RecordedCall* next = Next();
    const bool isPollOfOthers = poll && next != nullptr && next->event.operation == kTraceState &&
                                next->event.phase == Phase::Call;
    if (!m_Difference && (!poll || isPollOfOthers)) {
        if (AnswerAsRecorded(call)) m_Events.Write(call);
    } else if (poll) {
        AnswerPoll(call);
        if (!m_Difference) m_Events.Write(call);
    }
    if (m_Difference && !poll) call.results = FailureOf(call, kLost);
    return true;
}

void Replay::AnswerPoll(Event& call) {
    const bool lost = m_Difference.has_value();
    if (!lost && IsPollNext()) {
        m_State = &Next()->event;
        Advance();
    }
    const Event* state = m_State;
    for (size_t index = m_Next; state == nullptr && index < m_Recording.calls.size(); ++index)
        if (m_Recording.calls[index].event.operation == kTraceState &&
            !m_Recording.calls[index].event.results.empty())
            state = &m_Recording.calls[index].event;
    call.results = state != nullptr ? state->results : FailureOf(call, kLost);
    call.refusal = state != nullptr ? state->refusal : std::nullopt;
}

// Returns false behind a difference.
bool Replay::AnswerAsRecorded(Event& call) {
    const RecordedCall* next = Next();
    if (next == nullptr || next->event.direction != Direction::ToHost ||
        next->event.phase == Phase::Return || !IsSameCall(next->event, call)) {
        const std::string expected = Expected(), got = ShortWords(call);
        Differ(expected, got + (got == expected ? PointerWords(call) : ""));
        return false;
    }
    Advance();
    const Event* answer = &next->event;
    if (answer->phase == Phase::Call) { // the host called the module before it answered
        CallFromInside(true);
        if (m_Difference) return false;
        if (Next() == nullptr || Next()->event.direction != Direction::ToHost ||
            Next()->event.phase != Phase::Return) {
            Differ(Expected(), ShortWords(call));
            return false;
        }
        answer = &Next()->event;
        Advance();
    }
    call.results = answer->results;
    call.refusal = answer->refusal;
    ++m_Count;
    return true;
}

// --- Differences -----------------------------------------------------------------------

std::string Replay::Expected() const {
    const RecordedCall* next = Next();
    if (next == nullptr)
        return "nothing more: the recording ends here" +
               (m_Running.empty() ? "" : ", while " + m_Running.front() + " runs");
    const Event& event = next->event;
    if (event.phase == Phase::Return) return EndWords(event);
    return event.direction == Direction::ToHost ? ShortWords(event)
                                                : "the host's call " + ShortWords(event);
}

void Replay::Differ(const std::string& expected, const std::string& got) {
    if (m_Difference) return;
    const RecordedCall* next = Next();
    m_Difference = {next != nullptr ? next->line : m_Recording.lines + 1, expected, got};
    m_IsNewsAhead = false;
    if (m_OnDifference) m_OnDifference();
}

} // namespace etmhost
