// The module-wide state.
//
// Everything here is zero at load and lives as long as the library. Pages and
// dialogs reach the host, the settings record and the open sheet through these
// slots, because nobody hands them a reference. All pointers are borrowed unless
// a comment names the owner. This header only declares names, so that any room
// of the house can include it.

#pragma once

#include <cstdint>

class IOrnAPI;
class IOrnInterface;
class IOrnVETMTrace;
class IOrnTraceClient;
class IOrnXTraceClient;
class IOrnXTrace;
class IOrnEmu;
class jTraceSettings;
class jKVETMSupp;
class jKVETMCtrl;
class jMainPropSheet;
class jControlPage;

// The host's interfaces: set by AttachInterface, cleared by DetachInterface.
extern IOrnAPI* g_API;
extern IOrnVETMTrace* g_VETMTrace;
extern IOrnTraceClient* g_TraceClient;
extern IOrnXTraceClient* g_XTraceClient;
extern IOrnXTrace* g_XTrace;
extern IOrnEmu* g_Emu;

// What IOrnAPIBase::SetAPI accepted. It does not feed g_API.
extern IOrnAPI* g_HostAPI;

// Owned by the control component, which frees the record first.
extern jTraceSettings* g_Settings; // set by Init
extern jKVETMSupp* g_Supp;         // set by the first GetInterface("IOrnKVETMSupp")

// The control component, from the first successful read by Init or Open on, while it
// lives. An Init without IOrnVETMTrace has nothing to read and sets it too.
extern jKVETMCtrl* g_Ctrl;

// What the rooms above know and those below ask for.
/// Asks the control component for an interface of the module; null without one.
IOrnInterface* AskControl(const char* name);
/// The path of the module's file, as the host told it; null if it did not.
const char* ModulePath();

// Owned by Open: the sheet and its first page while the sheet exists.
extern jMainPropSheet* g_MainSheet;
extern jControlPage* g_ControlPage;

// 1 from just before the sheet runs until it is gone.
extern int32_t g_SheetOpen;

// 1: the General Control page runs the ETM Configuration dialog at its next tick.
extern int32_t g_BoardQueryPending;

// 1: the ETM Configuration dialog that ran last ended with OK.
extern int32_t g_ConfigAccepted;
