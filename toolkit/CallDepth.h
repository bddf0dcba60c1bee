// CallDepth: how deep the module is inside itself.
//
// The host calls the module; the module calls the host back; from there the host may
// call the module again. Whatever would pull something away from under a call that is
// on its way has to wait until that call has ended. Each entry of the module and each
// handler that the toolkit dispatches counts itself here.
//
// Two numbers. Stack() tells how many calls are on the way, whatever they wait for.
// Counting() leaves out those that only wait for a sheet's modal loop, which need
// nothing of the host meanwhile: in that loop, while no handler runs, it is 0 unless
// the sheet was itself opened from inside another call.
//
// Which thread: the one that runs the dialogs.

#pragma once

namespace calls {

/// One call on its way, as long as the object lives.
class Counted {
public:
    Counted();
    ~Counted();
    Counted(const Counted&) = delete;
    Counted& operator=(const Counted&) = delete;
};

/// While it lives, the call around it does not count: it waits for a modal loop.
class Waiting {
public:
    Waiting();
    ~Waiting();
    Waiting(const Waiting&) = delete;
    Waiting& operator=(const Waiting&) = delete;

private:
    bool m_Waits; // false: there is no call around it
};

/// The calls on their way that may touch the host or the module's state at their end.
int Counting();
/// All calls on their way.
int Stack();

/// Deeper than this no call makes sense: somebody calls himself for ever.
constexpr int kDeepest = 8;

/// `action` runs each time that Counting or Stack falls to 0; it must not throw. There
/// is one; null: none.
void WhenEnded(void (*action)());

} // namespace calls
