// Capture: what takes the trace, and what it tells of itself.

#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "host/support/refusal.h"
#include "host/target/SimulatedChip.h"
#include "host/target/trace_hardware.h"

namespace etmhost {

/// A capture. Amounts are in the words of the trace buffer.
struct Capture {
    bool running = false;
    bool ended = false; ///< turns over whenever a capture starts or stops by itself
    bool triggered = false;
    uint32_t steps = 0;     ///< of a simulated emulator: time since the start
    uint32_t captured = 0;  ///< words in the buffer
    uint32_t remaining = 0; ///< of a simulated emulator: words to go behind the trigger

    bool operator==(const Capture&) const = default;
};

/// Where trace goes. Operations that reach the chip throw BusError.
class TraceSink {
public:
    virtual ~TraceSink() = default;

    /// Refuses a control word whose stop modes the sink does not have.
    virtual Refusal CheckControl(uint32_t control) const = 0;

    /// Words to store behind the trigger.
    virtual uint32_t TriggerCount() = 0;
    virtual Refusal SetTriggerCount(uint32_t count) = 0;

    /// Starts a capture by the rules of `control`, and ends one. The ETM is on.
    virtual void Start(uint32_t control) = 0;
    virtual void Stop() = 0;
    virtual Refusal ForceTrigger() = 0;

    /// Forgets what was captured. Refused where that cannot be while it captures.
    virtual Refusal Clear() = 0;

    /// The registers that tell how a capture goes on. `etmControl` is ETMCR, which is read with
    /// them; `words` are theirs. Returns what they say.
    virtual std::vector<uint32_t> StateAddresses() const { return {}; }
    virtual Capture Look(uint32_t etmControl, const std::vector<uint32_t>& words,
                         const Capture& before) = 0;

    /// Lets a step of simulated time go by.
    virtual void Step(uint32_t) {}
};

/// An on-chip buffer. `count` keeps what was asked for, of which the buffer's register holds one
/// less.
std::unique_ptr<TraceSink> MakeBufferSink(RegisterBus& bus, const TraceHardware& hardware,
                                          uint32_t& count);

/// A trace port: whatever takes the trace is outside, and has no state that could be read here. It
/// counts as running while the ETM sends.
std::unique_ptr<TraceSink> MakePortSink(RegisterBus& bus, const TraceHardware& hardware);

/// The buffer of the simulated emulator at `chip`. It fills in 8 steps; an address trigger occurs
/// at the fourth. Its state is `capture` and `count`.
std::unique_ptr<TraceSink> MakeEmulatorSink(const SimulatedChip& chip,
                                            const TraceHardware& hardware, Capture& capture,
                                            uint32_t& count);

} // namespace etmhost
