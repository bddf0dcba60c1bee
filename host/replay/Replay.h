// A recorded session once more: the host's calls are made again in their order, and the module's
// are answered as they were.

#pragma once

#include <atomic>
#include <chrono>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "host/replay/ModuleObjects.h"
#include "host/replay/Recording.h"

namespace etmhost {

/// The first thing that goes another way than in a recording.
struct Difference {
    size_t line; ///< of the recording; one behind the last where that has ended
    std::string expected, got;
};

/// Looks at the capture are no calls like others: how many there are is a matter of time. They are
/// answered by the order of the states, each of which is given until the next one is asked for;
/// between two other calls there may be any number of them, none too.
///
/// Behind the first difference the host fails in each call, and nothing more is recorded.
class Replay final : public Answerer {
public:
    /// All must outlive the replay. The calls are told to `events`.
    Replay(const Recording& recording, IOrnAPIBase& module, record::EventStream& events);

    /// Called at the first difference, maybe from inside calls of host and module.
    void OnDifference(std::function<void()> act) { m_OnDifference = std::move(act); }

    /// Goes through the recording. Once only.
    void Run();

    const std::optional<Difference>& difference() const { return m_Difference; }

    /// Returns the number of calls that went as recorded, but for looks at the capture.
    size_t count() const { return m_Count; }

    /// Returns whether the module is about to see a state of the capture that it had seen, in the
    /// recording, ahead of what came next. May be called on any thread.
    bool IsNewsAhead() const;

    bool Answer(record::Event& call) override;

private:
    using Clock = std::chrono::steady_clock;

    const RecordedCall* Next() const;
    bool IsPollNext() const;
    void Advance();
    void LookAhead();
    void SkipPolls();
    bool IsCallToModuleNext() const;
    void Call();
    void CallFromInside(bool skipPolls);
    void AnswerPoll(record::Event& call);
    bool AnswerAsRecorded(record::Event& call);
    void Differ(const std::string& expected, const std::string& got);
    std::string Expected() const;

    const Recording& m_Recording;
    record::EventStream& m_Events;
    ModuleObjects m_Module;
    std::function<void()> m_OnDifference;
    size_t m_Next = 0, m_Count = 0;
    std::vector<std::string> m_Running;     // calls of the module
    const record::Event* m_State = nullptr; // the poll whose state was given last
    std::optional<Difference> m_Difference;
    std::atomic<bool> m_IsNewsAhead = false;
    std::atomic<Clock::rep> m_LastPoll = 0;
};

} // namespace etmhost
