#include "pages/trace_engine.h"

#include "frame/interfaces/IOrnVETMTrace.h"
#include "frame/slots.h"

bool HasFeature(uint32_t feature) {
    return g_VETMTrace != nullptr && g_VETMTrace->HasFeature(feature) != 0;
}

uint32_t GetTraceState() {
    if (g_VETMTrace == nullptr) return 0;
    uint32_t detail = 0;
    return g_VETMTrace->GetTraceState(&detail);
}

void SendCommand(const char* text) {
    if (g_VETMTrace != nullptr) g_VETMTrace->Command(text, nullptr);
}
