// SilentTrace: a trace engine that answers and keeps no record.
//
// For benches and fuzzers, where a recording host would mostly be busy recording. It takes
// every command and value. What it answers stands in fields, which a derived class or its
// maker fills.

#pragma once

#include <ostream>
#include <string>

#include "IOrnVETMTrace.h"
#include "testkit/HostObject.h"

class SilentTrace : public HostObject<IOrnVETMTrace> {
public:
    SilentTrace() : HostObject(ORN_VETM_TRACE) {}

    const char* Command(const char*, std::ostream* stream) override {
        if (stream != nullptr) *stream << report << '\0';
        return nullptr;
    }
    const char* GetInfoText(uint32_t) override { return nullptr; }
    uint32_t GetTraceState(uint32_t*) override { return 0; }
    OrnBool HasFeature(uint32_t) override { return 0; }
    OrnBool SetValue(uint32_t, uint32_t) override { return 1; }
    OrnBool GetValue(uint32_t id, uint32_t* value) override {
        *value = id == ORN_VALUE_BUFFER_SIZE ? 2048 : id == ORN_VALUE_PORT_SIZES ? 0x8088 : 0;
        return 1;
    }
    const char* GetSettingsLine(uint32_t) override { return nullptr; }

    std::string report; // what "capability" writes, without its NUL
};
