// The trace engine of a host that seems to be built with another C++ library. It has no word of
// that: the name of what it is linked with is enough.

#include "testkit/HostObject.h"

#include "frame/interfaces/IOrnVETMTrace.h"

namespace {

struct Trace final : HostObject<IOrnVETMTrace> {
    Trace() : HostObject(ORN_VETM_TRACE) {}
    const char* Command(const char*, std::ostream*) override { return "no report"; }
    const char* GetInfoText(uint32_t) override { return nullptr; }
    uint32_t GetTraceState(uint32_t*) override { return 0; }
    OrnBool HasFeature(uint32_t) override { return 0; }
    OrnBool SetValue(uint32_t, uint32_t) override { return 1; }
    OrnBool GetValue(uint32_t, uint32_t* value) override {
        *value = 0;
        return 1;
    }
    const char* GetSettingsLine(uint32_t) override { return nullptr; }
};

Trace g_Trace;

} // namespace

extern "C" __attribute__((visibility("default"))) IOrnInterface* MakeTrace() {
    return &g_Trace;
}
