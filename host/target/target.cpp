#include "host/target/target.h"

#include <algorithm>

namespace etmhost {

namespace {

/// All bits of the control word that the target has.
constexpr uint32_t kControlBits = ORN_CONTROL_ENABLE | ORN_CONTROL_STOP_WHEN_FULL |
                                  ORN_CONTROL_ACCUMULATE | ORN_CONTROL_MANUAL | ORN_CONTROL_KEPT |
                                  ORN_CONTROL_TRIGGER_PIN | ORN_CONTROL_TRIGGER_ADDRESS;

constexpr uint32_t kStepsToFill = 8;
constexpr uint32_t kTriggerStep = 4;

} // namespace

Target::Target(const Chip& chip) : m_Chip(&chip), m_Etm(DecodeRegisters(chip)) {
    state.triggerCount = chip.bufferSize / 2;
    state.trace.portSize = PortSizes(chip).back();
}

std::vector<std::string> Target::SettingsLines() const {
    const TraceSettings& trace = state.trace;
    std::vector<std::string> lines;
    const auto line = [&lines](const char* what, const std::string& value) {
        lines.push_back(std::string("ETM ") + what + value);
    };
    const auto address = [&line](const char* what, const std::string& value) {
        if (!value.empty()) {
            line(what, value);
        }
    };
    switch (trace.pc) {
    case PcTrace::None:
        line("PC = ", "none");
        break;
    case PcTrace::All:
        line("PC = ", "all");
        break;
    case PcTrace::StartStop: // the reader takes the last line's mode: stop belongs behind start
        address("PC = start ", trace.pcBegin);
        address("PC = stop ", trace.pcEnd);
        break;
    case PcTrace::Range:
        address("PC = from ", trace.pcBegin);
        address("PC = to ", trace.pcEnd);
        break;
    case PcTrace::Complex:
        line("COMPLEX", "");
        break;
    }
    line("DATA = ", DataTraceName(trace.data)); // ahead of the range, which it would clear
    address("DATA = from ", trace.dataBegin);
    address("DATA = to ", trace.dataEnd);
    address("TRIGGER ", trace.trigger);
    line("PORTSIZE = ", std::to_string(trace.portSize));
    if (m_Etm.halfRate) // a chip without the choice has nothing to report
        line("HALFRATE = ", trace.halfRate ? "on" : "off");
    return lines;
}

Refusal Target::SetControl(uint32_t word) {
    if ((word & ~kControlBits) != 0) return "The control word has bits that the target lacks";
    state.control = word;
    if ((word & ORN_CONTROL_ENABLE) == 0) state.capture.running = false;
    return {};
}

Refusal Target::SetTriggerCount(uint32_t count) {
    if (count > m_Chip->bufferSize)
        return "The trace buffer has only " + std::to_string(m_Chip->bufferSize) + " words";
    if (m_Chip->path == TracePath::Etb && state.capture.running)
        return "The trigger count of an ETB cannot be changed while it captures";
    state.triggerCount = count;
    return {};
}

Refusal Target::Start() {
    if ((state.control & ORN_CONTROL_ENABLE) == 0) return "Trace is not enabled";
    if (!state.capture.running) {
        const uint32_t kept =
            (state.control & ORN_CONTROL_ACCUMULATE) != 0 ? state.capture.captured : 0;
        state.capture = {.running = true, .ended = state.capture.ended, .captured = kept};
    }
    return {};
}

Refusal Target::Stop() {
    state.capture.running = false;
    return {};
}

Refusal Target::ForceTrigger() {
    if (m_Chip->path == TracePath::Tpiu) return "A TPIU has no trigger that could be forced";
    if (m_Chip->path == TracePath::Etb)
        return "The trigger of an ETB comes from the ETM and cannot be forced";
    if (!state.capture.running) return "Capture is not running";
    Trigger();
    return {};
}

void Target::Trigger() {
    if (!state.capture.triggered) {
        state.capture.triggered = true;
        state.capture.remaining = state.triggerCount;
    }
}

void Target::Step() {
    Capture& capture = state.capture;
    if (!capture.running) return;
    const uint32_t size = m_Chip->bufferSize;
    const uint32_t amount = std::max<uint32_t>(size / kStepsToFill, 1);
    capture.steps += 1;
    capture.captured =
        static_cast<uint32_t>(std::min<uint64_t>(uint64_t{capture.captured} + amount, size));
    if (capture.triggered) capture.remaining -= std::min(capture.remaining, amount);
    if (capture.steps == kTriggerStep && m_Chip->path != TracePath::Tpiu &&
        (state.control & ORN_CONTROL_TRIGGER_ADDRESS) != 0 && !state.trace.trigger.empty())
        Trigger();
    const bool full = (state.control & ORN_CONTROL_STOP_WHEN_FULL) != 0 &&
                      capture.captured == size &&
                      m_Chip->path != TracePath::Etb; // an on-chip buffer goes round and round
    const bool behindTrigger =
        (state.control & (ORN_CONTROL_TRIGGER_PIN | ORN_CONTROL_TRIGGER_ADDRESS)) != 0 &&
        capture.triggered && capture.remaining == 0;
    if (full || behindTrigger) {
        capture.running = false;
        capture.ended = !capture.ended;
    }
}

uint32_t Target::StateWord() const {
    return (state.capture.ended ? ORN_STATE_LOOK_AGAIN : 0u) |
           (state.capture.running ? ORN_STATE_RUNNING : 0u);
}

const char* DataTraceName(DataTrace data) {
    constexpr const char* kNames[] = {"none", "addr", "value", "all"};
    return kNames[static_cast<int>(data)];
}

} // namespace etmhost
