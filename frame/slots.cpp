#include "frame/slots.h"

IOrnAPI* g_API = nullptr;
IOrnVETMTrace* g_VETMTrace = nullptr;
IOrnTraceClient* g_TraceClient = nullptr;
IOrnXTraceClient* g_XTraceClient = nullptr;
IOrnXTrace* g_XTrace = nullptr;
IOrnEmu* g_Emu = nullptr;

IOrnAPI* g_HostAPI = nullptr;

jTraceSettings* g_Settings = nullptr;
jKVETMSupp* g_Supp = nullptr;
jKVETMCtrl* g_Ctrl = nullptr;

jMainPropSheet* g_MainSheet = nullptr;
jControlPage* g_ControlPage = nullptr;
int32_t g_SheetOpen = 0;
int32_t g_BoardQueryPending = 0;
int32_t g_ConfigAccepted = 0;
