// What the pages ask of the host's trace engine, safe where none is attached.

#pragma once

#include <cstdint>

// Features of a target.
constexpr uint32_t FEATURE_ETB = 0x2000000;
constexpr uint32_t FEATURE_TPIU = 0x3000000;
constexpr uint32_t FEATURE_CORTEX_M3 = 0x4000000;

// Bits of the state word.
constexpr uint32_t STATE_LOOK_AGAIN = 0x2; // a change calls for a new look at everything
constexpr uint32_t STATE_RUNNING = 0x4;    // capture is running

/// False, too, without a trace engine.
bool HasFeature(uint32_t feature);

/// The state word; 0 without a trace engine.
uint32_t GetTraceState();

/// Sends a command whose result nobody looks at.
void SendCommand(const char* text);
