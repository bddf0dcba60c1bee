// What the pages ask of the host's trace engine, safe where none is attached.

#pragma once

#include <cstdint>

/// False, too, without a trace engine.
bool HasFeature(uint32_t feature);

/// The state word; 0 without a trace engine.
uint32_t GetTraceState();

/// Sends a command whose result nobody looks at.
void SendCommand(const char* text);
