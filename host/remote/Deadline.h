// A point in time at which waiting ends.

#pragma once

#include <algorithm>
#include <chrono>

namespace etmhost {

/// When an operation has to be over, whatever it waits for.
class Deadline {
public:
    using Clock = std::chrono::steady_clock;

    /// `time` from now on.
    explicit Deadline(Clock::duration time) : m_End(Clock::now() + time) {}

    /// Returns what is left, 0 when it is over, rounded up to whole milliseconds: who waits for
    /// that long and looks again finds it over.
    std::chrono::milliseconds Left() const {
        return std::max(std::chrono::ceil<std::chrono::milliseconds>(m_End - Clock::now()),
                        std::chrono::milliseconds(0));
    }

    bool IsOver() const { return Left().count() == 0; }

private:
    Clock::time_point m_End;
};

} // namespace etmhost
