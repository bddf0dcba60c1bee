// The recording host behind the module-wide slots; apart from the rest, because a
// test of the built library has no slots.

#include "frame/slots.h"
#include "tests/support/RecordingHost.h"

static void SetSlots(RecordingHost* host) {
    g_API = host != nullptr ? &host->api : nullptr;
    g_VETMTrace = host != nullptr ? &host->trace : nullptr;
    g_TraceClient = host != nullptr ? &host->traceClient : nullptr;
    g_XTraceClient = host != nullptr ? &host->xTraceClient : nullptr;
    g_XTrace = host != nullptr ? &host->xTrace : nullptr;
    g_Emu = host != nullptr ? &host->emu : nullptr;
}

void RecordingHost::AttachSlots() {
    SetSlots(this);
    m_Detach = [] { SetSlots(nullptr); };
}
