#include "frame/jKVETMCtrl.h"

#include <cstring>
#include <new>

#include "frame/guard.h"
#include "frame/interfaces/IOrnAPI.h"
#include "frame/interfaces/IOrnEmu.h"
#include "frame/interfaces/IOrnTraceClient.h"
#include "frame/interfaces/IOrnVETMTrace.h"
#include "frame/interfaces/IOrnXTrace.h"
#include "frame/interfaces/IOrnXTraceClient.h"
#include "frame/jKVETMSupp.h"
#include "frame/slots.h"
#include "settings/jTraceSettings.h"
#include "text/text_tools.h"
#include "toolkit/CWinApp.h"

namespace {

/// An interface that the component requires: its name and its slot.
struct Required {
    const char* name;
    void (*attach)(IOrnInterface* object);
    IOrnInterface* (*attached)();
};

template <auto& Slot> constexpr Required Require(const char* name) {
    using Pointer = std::remove_reference_t<decltype(Slot)>;
    return {name, [](IOrnInterface* object) { Slot = static_cast<Pointer>(object); },
            []() -> IOrnInterface* { return Slot; }};
}

constexpr Required kRequired[] = {
    Require<g_API>("IOrnAPI"),
    Require<g_VETMTrace>("IOrnVETMTrace"),
    Require<g_TraceClient>("IOrnTraceClient"),
    Require<g_XTraceClient>("IOrnXTraceClient"),
    Require<g_XTrace>("IOrnXTrace"),
    Require<g_Emu>("IOrnEmu"),
};

const Required* FindRequired(const char* name) {
    if (name == nullptr) return nullptr;
    for (const Required& row : kRequired)
        if (std::strcmp(row.name, name) == 0) return &row;
    return nullptr;
}

} // namespace

jKVETMCtrl::jKVETMCtrl() {
    g_BoardQueryPending = 0;
    g_ConfigAccepted = 0;
    AfxGetApp()->AddClient();
}

jKVETMCtrl::~jKVETMCtrl() {
    delete g_Settings;
    delete g_Supp;
    // The library may stay mapped: the next component must not find what is gone.
    g_Settings = nullptr;
    g_Supp = nullptr;
    if (g_Ctrl == this) g_Ctrl = nullptr;
    AfxGetApp()->RemoveClient();
}

const char* jKVETMCtrl::GetInterfaceName() {
    return "IOrnKVETMCtrl";
}
int32_t jKVETMCtrl::GetInterfaceVersion() {
    return 100;
}
const char* jKVETMCtrl::GetComponentName() {
    return "KVETMControl";
}
int32_t jKVETMCtrl::GetComponentVersion() {
    return 107;
}

IOrnInterface* jKVETMCtrl::GetInterface(const char* name) {
    if (name == nullptr || std::strcmp(name, "IOrnKVETMSupp") != 0) return nullptr;
    if (g_Supp == nullptr) g_Supp = new (std::nothrow) jKVETMSupp;
    return g_Supp;
}

void jKVETMCtrl::ReleaseInterface(IOrnInterface*) {}

int32_t jKVETMCtrl::GetParamCount() {
    return 0;
}
int32_t jKVETMCtrl::GetParam(uint32_t, uint32_t) {
    return 0;
}
int32_t jKVETMCtrl::SetParam(uint32_t, uint32_t) {
    return 0;
}
int32_t jKVETMCtrl::CheckParam(uint32_t, uint32_t) {
    return 0;
}

int32_t jKVETMCtrl::AttachInterface(const char* name, IOrnInterface* object) {
    const Required* row = FindRequired(name);
    if (row == nullptr) return -1;
    row->attach(object);
    return 0;
}

int32_t jKVETMCtrl::DetachInterface(const char* name) {
    return AttachInterface(name, nullptr);
}

int32_t jKVETMCtrl::GetImplementedCount() {
    return 1;
}

const char* jKVETMCtrl::GetImplementedName(int32_t index) {
    return index == 0 ? GetInterfaceName() : nullptr;
}

int32_t jKVETMCtrl::GetRequiredCount() {
    return static_cast<int32_t>(std::size(kRequired));
}

const char* jKVETMCtrl::GetRequiredName(int32_t index) {
    return index >= 0 && index < GetRequiredCount() ? kRequired[index].name : nullptr;
}

int32_t jKVETMCtrl::GetRequiredOption(int32_t) {
    return 0;
}

IOrnInterface* jKVETMCtrl::GetAttachedInterface(const char* name) {
    const Required* row = FindRequired(name);
    return row != nullptr ? row->attached() : nullptr;
}

bool jKVETMCtrl::Fail(std::string reason) {
    LastError = std::move(reason);
    return false;
}

bool jKVETMCtrl::Init(uint32_t) {
    return GuardedEntry(false, LastError, [this] {
        LastError.clear();
        auto* record = new (std::nothrow) jTraceSettings;
        delete g_Settings; // of an earlier Init
        g_Settings = record;
        if (record == nullptr) return Fail("No memory");
        if (g_VETMTrace != nullptr && !record->ReadFromTarget())
            return Fail("Cannot read ETM/Trace settings from target");
        g_Ctrl = this;
        return true;
    });
}

bool jKVETMCtrl::Apply() {
    return GuardedEntry(false, LastError, [this] {
        LastError.clear();
        if (g_VETMTrace == nullptr || g_Settings == nullptr)
            return Fail("Module is not initialized properly");
        return g_Settings->ApplyToTarget();
    });
}

void jKVETMCtrl::GetLastError(char* buffer, int32_t size) {
    if (buffer == nullptr || size <= 0) return;
    CopyBounded(buffer, static_cast<size_t>(size), LastError.c_str());
}
