/* orn.h: the contract for C, and for what calls C.
 *
 * What it is     The interfaces of the C++ headers beside it as tables of function
 *                pointers in the order of their slots, and the contract's numbers and
 *                names. What an operation means, who owns what and on which thread it is
 *                called stands there: IOrnVETMTrace.h tells of OrnVETMTrace, and so on.
 *                In C++ this header includes them, and their constants serve.
 *
 * An object is a pointer to its table, and whatever its owner keeps behind that pointer:
 *
 *     OrnKVETMCtrl* control = module->slots->CreateRowObject(module, 0);
 *     control->slots->AttachInterface(control, ORN_VETM_TRACE, &trace);
 *
 * Each operation takes its object first. Objects cross as `void*`, so that a host can
 * write the six root operations once for all its objects. A host fills every slot: none
 * may be null. A table outlives the objects that point to it.
 *
 * Truth is one byte, OrnBool, in both directions: only that byte of the register counts.
 * All else is a pointer, an int32_t or an uint32_t.
 *
 * The tables have no slot for a destructor and nothing in front of slot 0.
 */

#ifndef ORN_H
#define ORN_H

#include "IOrnVersion.h"

#ifdef __cplusplus
#include "IOrnAPI.h"
#include "IOrnAPIBase.h"
#include "IOrnEmu.h"
#include "IOrnKVETMCtrl.h"
#include "IOrnKVETMSupp.h"
#include "IOrnTraceClient.h"
#include "IOrnVETMTrace.h"
#include "IOrnXTrace.h"
#include "IOrnXTraceClient.h"
#else
#include <stdint.h>

/* --- Numbers and names: what the C++ headers say of them ------------------------------ */

typedef uint8_t OrnBool; /* 0 is no, all else is yes */

#define ORN_API "IOrnAPI"
#define ORN_API_BASE "IOrnAPIBase"
#define ORN_EMU "IOrnEmu"
#define ORN_KVETM_CTRL "IOrnKVETMCtrl"
#define ORN_KVETM_SUPP "IOrnKVETMSupp"
#define ORN_TRACE_CLIENT "IOrnTraceClient"
#define ORN_VETM_TRACE "IOrnVETMTrace"
#define ORN_XTRACE "IOrnXTrace"
#define ORN_XTRACE_CLIENT "IOrnXTraceClient"

#define ORN_API_BASE_VERSION 120
#define ORN_KVETM_CTRL_VERSION 100
#define ORN_KVETM_SUPP_VERSION 100
#define ORN_API_VERSION 100
#define ORN_EMU_VERSION 100
#define ORN_TRACE_CLIENT_VERSION 100
#define ORN_VETM_TRACE_VERSION 100
#define ORN_XTRACE_VERSION 100
#define ORN_VERSION_WITH_HAS_COMMAND 111
#define ORN_XTRACE_CLIENT_VERSION ORN_VERSION_WITH_HAS_COMMAND

/* IOrnKVETMSupp: modes */
#define ORN_MODE_NONE (-1)
#define ORN_MODE_NO_FILE 0
#define ORN_MODE_STARTUP 1
#define ORN_MODE_BOARD_FILE 2

/* IOrnVETMTrace: ids of values */
#define ORN_VALUE_CONTROL UINT32_C(0)
#define ORN_VALUE_BUFFER_SIZE UINT32_C(1)
#define ORN_VALUE_TRIGGER_COUNT UINT32_C(2)
#define ORN_VALUE_PORT_SIZES UINT32_C(5)
#define ORN_VALUE_REGISTER UINT32_C(0x1000000)
#define ORN_VALUE_ETMCCR (ORN_VALUE_REGISTER + 0x004)
#define ORN_VALUE_ETMSCR (ORN_VALUE_REGISTER + 0x014)
#define ORN_VALUE_ETMIDR (ORN_VALUE_REGISTER + 0x1E4)
#define ORN_ETMCCR_HAS_ID UINT32_C(0x80000000)

/* IOrnVETMTrace: the general control word, the state word, features */
#define ORN_CONTROL_ENABLE UINT32_C(0x1)
#define ORN_CONTROL_STOP_WHEN_FULL UINT32_C(0x2)
#define ORN_CONTROL_ACCUMULATE UINT32_C(0x4)
#define ORN_CONTROL_MANUAL UINT32_C(0x8)
#define ORN_CONTROL_KEPT UINT32_C(0x30)
#define ORN_CONTROL_TRIGGER_PIN UINT32_C(0x100)
#define ORN_CONTROL_TRIGGER_ADDRESS UINT32_C(0x200)
#define ORN_STATE_LOOK_AGAIN UINT32_C(0x2)
#define ORN_STATE_RUNNING UINT32_C(0x4)
#define ORN_FEATURE_ETB UINT32_C(0x2000000)
#define ORN_FEATURE_TPIU UINT32_C(0x3000000)
#define ORN_FEATURE_CORTEX_M3 UINT32_C(0x4000000)

/* IOrnXTraceClient: the one named setting */
#define ORN_SETTING_SECTION "KVETM"
#define ORN_SETTING_BOARD_FILE "BoardFile"
#define ORN_SETTING_LENGTH 259
#define ORN_BOARD_UNKNOWN "---"
#define ORN_BOARD_NONE "/none"
#define ORN_BOARD_STARTUP "/startup"
#endif
#include "orn_stream.h"

/* --- Tables --------------------------------------------------------------------------- */

/* The convention of every operation. Of interest on 32-bit Windows alone: the object comes
 * in the register ECX, the rest on the stack, which the operation clears. A compiler that
 * defines no such functions outside of a class defines them as __fastcall, with an unused
 * argument behind the object, and casts. */
#if defined(_WIN32) && (defined(__i386__) || defined(_M_IX86))
#if defined(__GNUC__)
#define ORN_CALL __attribute__((__thiscall__))
#if !defined(__clang__) /* which calls that a fault outside of a class, if it is pedantic */
#pragma GCC diagnostic ignored "-Wattributes"
#endif
#else
#define ORN_CALL __thiscall
#endif
#else
#define ORN_CALL
#endif

/* Slots 0 to 5, which are those of every object. */
#define ORN_INTERFACE_SLOTS                                                                        \
    const char*(ORN_CALL * GetInterfaceName)(void* self);                                          \
    int32_t(ORN_CALL* GetInterfaceVersion)(void* self);                                            \
    const char*(ORN_CALL * GetComponentName)(void* self);                                          \
    int32_t(ORN_CALL* GetComponentVersion)(void* self);                                            \
    void*(ORN_CALL * GetInterface)(void* self, const char* name);                                  \
    void(ORN_CALL * ReleaseInterface)(void* self, void* object);

/* Slots 0 to 9 */
#define ORN_IPARAM_SLOTS                                                                           \
    ORN_INTERFACE_SLOTS                                                                            \
    int32_t(ORN_CALL* GetParamCount)(void* self);                                                  \
    int32_t(ORN_CALL* GetParam)(void* self, uint32_t id, uint32_t argument);                       \
    int32_t(ORN_CALL* SetParam)(void* self, uint32_t id, uint32_t value);                          \
    int32_t(ORN_CALL* CheckParam)(void* self, uint32_t id, uint32_t value);

/* Slots 0 to 17 */
#define ORN_OBJECT_SLOTS                                                                           \
    ORN_IPARAM_SLOTS                                                                               \
    int32_t(ORN_CALL* AttachInterface)(void* self, const char* name, void* object);                \
    int32_t(ORN_CALL* DetachInterface)(void* self, const char* name);                              \
    int32_t(ORN_CALL* GetImplementedCount)(void* self);                                            \
    const char*(ORN_CALL * GetImplementedName)(void* self, int32_t index);                         \
    int32_t(ORN_CALL* GetRequiredCount)(void* self);                                               \
    const char*(ORN_CALL * GetRequiredName)(void* self, int32_t index);                            \
    int32_t(ORN_CALL* GetRequiredOption)(void* self, int32_t index);                               \
    void*(ORN_CALL * GetAttachedInterface)(void* self, const char* name);

/* Any object; IOrnAPI, IOrnXTrace and IOrnEmu have no operations beyond these. */
typedef struct OrnInterfaceSlots {
    ORN_INTERFACE_SLOTS
} OrnInterfaceSlots, OrnAPISlots, OrnXTraceSlots, OrnEmuSlots;

/* --- What the module implements ------------------------------------------------------- */

typedef struct OrnAPIBaseSlots {
    ORN_INTERFACE_SLOTS
    int32_t(ORN_CALL* GetRowCount)(void* self);
    const char*(ORN_CALL* GetRowComponentName)(void* self, int32_t row);
    const char*(ORN_CALL* GetRowInterfaceName)(void* self, int32_t row);
    void*(ORN_CALL* CreateRowObject)(void* self, int32_t row);
    void(ORN_CALL* DestroyRowObject)(void* self, int32_t row, void* object);
    void(ORN_CALL* SetModulePath)(void* self, const char* path);
    const char*(ORN_CALL* GetModulePath)(void* self);
    void(ORN_CALL* SetAPI)(void* self, void* api);
} OrnAPIBaseSlots;

typedef struct OrnIParamSlots {
    ORN_IPARAM_SLOTS
} OrnIParamSlots;

typedef struct OrnObjectSlots {
    ORN_OBJECT_SLOTS
} OrnObjectSlots;

typedef struct OrnKVETMCtrlSlots {
    ORN_OBJECT_SLOTS
    OrnBool(ORN_CALL* Init)(void* self, uint32_t option);
    OrnBool(ORN_CALL* Open)(void* self);
    OrnBool(ORN_CALL* Apply)(void* self);
    void(ORN_CALL* GetLastError)(void* self, char* buffer, int32_t size);
} OrnKVETMCtrlSlots;

typedef struct OrnKVETMSuppSlots {
    ORN_INTERFACE_SLOTS
    OrnBool(ORN_CALL* InitBoardFile)(void* self, const char* directory, char* value, uint32_t size,
                                     int32_t* mode);
    OrnBool(ORN_CALL* CanInitBoardFile)(void* self);
    void(ORN_CALL* GetLastError)(void* self, char* buffer, int32_t size);
} OrnKVETMSuppSlots;

/* --- What the host implements --------------------------------------------------------- */

typedef struct OrnVETMTraceSlots {
    ORN_INTERFACE_SLOTS
    /* `stream` is an object of the module's C++ library, or null: see orn_stream.h. */
    const char*(ORN_CALL* Command)(void* self, const char* text, void* stream);
    const char*(ORN_CALL* GetInfoText)(void* self, uint32_t which);
    uint32_t(ORN_CALL* GetTraceState)(void* self, uint32_t* detail);
    OrnBool(ORN_CALL* HasFeature)(void* self, uint32_t feature);
    OrnBool(ORN_CALL* SetValue)(void* self, uint32_t id, uint32_t value);
    OrnBool(ORN_CALL* GetValue)(void* self, uint32_t id, uint32_t* value);
    const char*(ORN_CALL* GetSettingsLine)(void* self, uint32_t index);
} OrnVETMTraceSlots;

typedef struct OrnTraceClientSlots {
    ORN_INTERFACE_SLOTS
    OrnBool(ORN_CALL* Action)(void* self, const char* action, const char* argument);
} OrnTraceClientSlots;

typedef struct OrnXTraceClientSlots {
    ORN_INTERFACE_SLOTS
    OrnBool(ORN_CALL* HasCommand)(void* self, const char* name);
    OrnBool(ORN_CALL* WriteSetting)(void* self, const char* section, const char* key,
                                    const char* value);
    OrnBool(ORN_CALL* ReadSetting)(void* self, const char* section, const char* key, int32_t size,
                                   char* buffer);
} OrnXTraceClientSlots;

/* --- Objects -------------------------------------------------------------------------- */

typedef struct OrnInterface {
    const OrnInterfaceSlots* slots;
} OrnInterface, OrnAPI, OrnXTrace, OrnEmu;

typedef struct OrnAPIBase {
    const OrnAPIBaseSlots* slots;
} OrnAPIBase;

typedef struct OrnKVETMCtrl {
    const OrnKVETMCtrlSlots* slots;
} OrnKVETMCtrl;

typedef struct OrnKVETMSupp {
    const OrnKVETMSuppSlots* slots;
} OrnKVETMSupp;

typedef struct OrnVETMTrace {
    const OrnVETMTraceSlots* slots;
} OrnVETMTrace;

typedef struct OrnTraceClient {
    const OrnTraceClientSlots* slots;
} OrnTraceClient;

typedef struct OrnXTraceClient {
    const OrnXTraceClientSlots* slots;
} OrnXTraceClient;

/* The module's one export, "OrnDLL", as the loader finds it. Of the plain convention. */
typedef OrnAPIBase* (*OrnDLLFunction)(void);

#endif
