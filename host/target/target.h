// The simulated target: settings, control word and a capture that goes on in steps of time.

#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "frame/interfaces/IOrnVETMTrace.h"
#include "host/support/refusal.h"
#include "host/target/chips.h"

namespace etmhost {

enum class PcTrace { None, All, StartStop, Range, Complex };
enum class DataTrace { None, Addresses, Values, All };

/// What the ETM traces, as the "etm ..." commands left it. An address that is not in use is empty.
struct TraceSettings {
    PcTrace pc = PcTrace::All;
    std::string pcBegin, pcEnd; ///< start and stop, or from and to
    DataTrace data = DataTrace::None;
    std::string dataBegin, dataEnd;
    std::string trigger;
    uint32_t portSize = 0; ///< bits
    bool halfRate = false;

    bool operator==(const TraceSettings&) const = default;
};

/// A capture. Amounts are in the words of the trace buffer.
struct Capture {
    bool running = false;
    bool ended = false; ///< turns over whenever a capture stops by itself
    bool triggered = false;
    uint32_t steps = 0;     ///< time since the start
    uint32_t captured = 0;  ///< words in the buffer
    uint32_t remaining = 0; ///< words to go behind the trigger

    bool operator==(const Capture&) const = default;
};

/// All that a target keeps.
struct TargetState {
    uint32_t control = 0;
    uint32_t triggerCount = 0;
    std::string macro;      ///< value of the last "macro" command
    bool pinsReady = false; ///< a board file has switched the trace pins on
    TraceSettings trace;
    Capture capture;

    bool operator==(const TargetState&) const = default;
};

class Target {
public:
    /// A target fresh from reset. `chip` must outlive it.
    explicit Target(const Chip& chip);

    const Chip& chip() const { return *m_Chip; }
    const EtmResources& etm() const { return m_Etm; }

    TargetState state;

    /// Returns the trace settings as lines of text, the way GetSettingsLine hands them out.
    std::vector<std::string> SettingsLines() const;

    /// Takes a new control word; refused if it has a bit that the target lacks.
    Refusal SetControl(uint32_t word);

    /// Takes a new number of words to capture behind the trigger. Refused if the buffer is smaller,
    /// and while an on-chip buffer captures: it ignores the write then.
    Refusal SetTriggerCount(uint32_t count);

    /// Starts and ends a capture.
    Refusal Start();
    Refusal Stop();
    Refusal ForceTrigger();

    /// One step of simulated time: a running capture fills an eighth of the buffer, and stops if a
    /// stop mode tells it to. An address trigger occurs at the fourth step.
    void Step();

    /// Returns the state word of GetTraceState.
    uint32_t StateWord() const;

private:
    void Trigger();

    const Chip* m_Chip;
    EtmResources m_Etm;
};

/// Returns the word that commands and settings lines use for `data`.
const char* DataTraceName(DataTrace data);

} // namespace etmhost
