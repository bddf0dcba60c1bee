// The general control word: what its bits mean for the settings, in both directions.

#pragma once

#include <cstdint>

struct jTraceState;

/// Takes Enable, StopMode, TriggerPin, TriggerOnAddress, Accumulate, ManualMode and
/// ControlSpareBits from the word of IOrnVETMTrace::GetValue(ORN_VALUE_CONTROL).
void DecodeControlWord(uint32_t word, jTraceState& state);

/// Returns the word for IOrnVETMTrace::SetValue(ORN_VALUE_CONTROL). The triggers count in
/// StopMode STOP_AFTER_TRIGGER alone, so the word does not tell all that `state` holds.
uint32_t EncodeControlWord(const jTraceState& state);
