// The recording host behind the module-wide slots; apart from the rest, because a
// test of the built library has no slots.

#include "frame/slots.h"
#include "tests/support/RecordingHost.h"

void RecordingHost::AttachSlots() {
    g_API = &api;
    g_VETMTrace = &trace;
    g_TraceClient = &traceClient;
    g_XTraceClient = &xTraceClient;
    g_XTrace = &xTrace;
    g_Emu = &emu;
    m_Detach = [] {
        g_API = nullptr;
        g_VETMTrace = nullptr;
        g_TraceClient = nullptr;
        g_XTraceClient = nullptr;
        g_XTrace = nullptr;
        g_Emu = nullptr;
    };
}
