// Interpreter: carries out a script as a person at the dialogs.

#pragma once

#include <atomic>
#include <functional>
#include <set>

#include "host/drive/Script.h"
#include "host/drive/User.h"

namespace etmhost {

/// How long a step waits for what it needs, and a window may take to close, in ms.
inline constexpr uint64_t kStepPatience = 10'000;

/// Makes one step after the other. Somebody has to call Tick again and again while windows are
/// open, from inside whatever loop runs: a step may open a modal window, and the next one is then
/// made from inside that window's loop, while the first has not returned.
///
/// A failure, and a box that no step expects, end the script: the windows are closed then, one with
/// each Tick.
class Interpreter {
public:
    /// What is told of each step, ahead of it.
    using Told = std::function<void(const std::string& what)>;

    /// `script`, without errors, and `user` must outlive the interpreter.
    Interpreter(const Script& script, User& user, Told told);

    /// Where pictures are written.
    void SetPictures(std::filesystem::path directory) { m_Pictures = std::move(directory); }
    /// Has the steps that take pictures take none, and counts them as taken.
    void TakeNoPictures() { m_TakesPictures = false; }
    /// Has each step wait as long as `wait` returns true. It is called on the thread of Tick.
    void SetWait(std::function<bool()> wait) { m_Wait = std::move(wait); }
    /// Called where a window cannot be closed after a failure; may end the process.
    void OnStuck(std::function<void()> stuck) { m_Stuck = std::move(stuck); }

    /// Makes the next step, or looks whether it can be made. `now` is a steady clock in ms. Returns
    /// whether something was done.
    bool Tick(uint64_t now);

    /// Has the script end as behind a failure, which is `reason` unless there is one already. May
    /// be called on any thread, before and during a Tick; `reason` is static.
    void GiveUp(const char* reason) { m_GivenUp = reason; }

    /// Call it when the last window has closed: steps that are left are a failure.
    void End();

    /// Why the script ended early, and at which line; empty if it went well so far.
    const std::string& failure() const { return m_Failure; }
    int failureLine() const { return m_FailureLine; }

    /// The number of calls of Tick so far; may be read on any thread.
    unsigned ticks() const { return m_Ticks; }

private:
    /// What a condition finds.
    struct Finding {
        bool holds = false;
        std::string is; ///< what is seen
    };

    bool TryStep(const Step& step, const FrontWindow& front, uint64_t now);
    bool TryAct(const Step& step, const FrontWindow& front, uint64_t now);
    bool TryControl(const Step& step, const FrontWindow& front, uint64_t now);
    bool Judge(const Step& step, const FrontWindow& front, uint64_t now);
    void Make(const Step& step, const std::string& what, const std::function<void()>& act);
    bool WaitFor(int line, const std::string& expected, const std::string& is, uint64_t now);
    bool CloseOne(const FrontWindow& front, uint64_t now);
    void Fail(int line, const std::string& reason);
    void SkipJumps();

    int Resolve(const ControlName& name);
    int IndexOf(int id, const EntryName& entry);
    std::string CaptionOf(int id);
    Finding Look(const Condition& condition, const FrontWindow& front);
    Finding LookAtControl(const Condition& condition);

    const Script& m_Script;
    User& m_User;
    const Told m_Told;
    std::filesystem::path m_Pictures;
    std::function<void()> m_Stuck;
    std::function<bool()> m_Wait;
    bool m_TakesPictures = true;
    std::atomic<const char*> m_GivenUp = nullptr;
    size_t m_Next = 0;
    bool m_BoxExpected = false; // the box in front, by the step before
    size_t m_Seen;              // the step that was next at the last Tick
    uint64_t m_Since = 0;       // when it became that
    std::string m_Failure;
    int m_FailureLine = 0;
    std::set<std::string> m_Taken; // pictures
    std::atomic<unsigned> m_Ticks = 0;
};

} // namespace etmhost
