#include "settings/control_word.h"

#include "frame/interfaces/IOrnVETMTrace.h"
#include "settings/jTraceSettings.h"

void DecodeControlWord(uint32_t word, jTraceState& state) {
    const auto has = [word](uint32_t bit) { return (word & bit) != 0 ? 1 : 0; };
    state.Enable = has(ORN_CONTROL_ENABLE);
    state.TriggerPin = has(ORN_CONTROL_TRIGGER_PIN);
    state.TriggerOnAddress = has(ORN_CONTROL_TRIGGER_ADDRESS);
    state.Accumulate = has(ORN_CONTROL_ACCUMULATE);
    state.ManualMode = has(ORN_CONTROL_MANUAL);
    state.ControlSpareBits = static_cast<int32_t>(word & ORN_CONTROL_KEPT);
    if (has(ORN_CONTROL_STOP_WHEN_FULL) != 0)
        state.StopMode = STOP_WHEN_FULL;
    else if (state.TriggerPin != 0 || state.TriggerOnAddress != 0)
        state.StopMode = STOP_AFTER_TRIGGER;
    else
        state.StopMode = STOP_WITH_PROCESSOR;
}

uint32_t EncodeControlWord(const jTraceState& state) {
    const bool afterTrigger = state.StopMode == STOP_AFTER_TRIGGER;
    auto word = static_cast<uint32_t>(state.ControlSpareBits);
    if (state.Enable != 0) word |= ORN_CONTROL_ENABLE;
    if (state.StopMode == STOP_WHEN_FULL) word |= ORN_CONTROL_STOP_WHEN_FULL;
    if (afterTrigger && state.TriggerPin != 0) word |= ORN_CONTROL_TRIGGER_PIN;
    if (afterTrigger && state.TriggerOnAddress != 0) word |= ORN_CONTROL_TRIGGER_ADDRESS;
    if (state.Accumulate != 0) word |= ORN_CONTROL_ACCUMULATE;
    if (state.ManualMode != 0) word |= ORN_CONTROL_MANUAL;
    return word;
}
