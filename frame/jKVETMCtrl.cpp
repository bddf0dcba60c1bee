#include "frame/jKVETMCtrl.h"

#include <algorithm>
#include <cstring>
#include <new>
#include <utility>
#include <vector>

#include "frame/DeafHost.h"
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
#include "toolkit/CallDepth.h"

namespace {

/// An interface that the component requires: its name and its slot.
struct Required {
    const char* name;
    void (*attach)(IOrnInterface* object);
    IOrnInterface* (*attached)();
    // An attachment that waits for the calls on their way to end.
    bool waits = false;
    IOrnInterface* waiting = nullptr;
};

template <auto& Slot> Required Require(const char* name) {
    using Pointer = std::remove_reference_t<decltype(Slot)>;
    return {name, [](IOrnInterface* object) { Slot = static_cast<Pointer>(object); },
            []() -> IOrnInterface* { return Slot; }};
}

Required g_Required[] = {
    Require<g_API>(ORN_API),
    Require<g_VETMTrace>(ORN_VETM_TRACE),
    Require<g_TraceClient>(ORN_TRACE_CLIENT),
    Require<g_XTraceClient>(ORN_XTRACE_CLIENT),
    Require<g_XTrace>(ORN_XTRACE),
    Require<g_Emu>(ORN_EMU),
};

Required* FindRequired(const char* name) {
    if (name == nullptr) return nullptr;
    for (Required& row : g_Required)
        if (std::strcmp(row.name, name) == 0) return &row;
    return nullptr;
}

// The components that exist, the oldest first. Usually it is one.
std::vector<jKVETMCtrl*> g_Components;

} // namespace

/// A call of the host into a component.
class jKVETMCtrl::Entry {
public:
    explicit Entry(jKVETMCtrl& component)
        : m_TooDeep(calls::Stack() >= calls::kDeepest), m_Component(component) {
        ++m_Component.m_Calls;
    }
    /// Behind it, the component may be gone.
    ~Entry() { --m_Component.m_Calls; }
    Entry(const Entry&) = delete;
    Entry& operator=(const Entry&) = delete;

    /// Says why the call can't be made; null if it can.
    const char* Refusal() const {
        if (m_TooDeep) return "Calls are nested too deeply";
        return m_Component.m_DestroyLater ? "The component is being destroyed" : nullptr;
    }

private:
    const bool m_TooDeep;
    const calls::Counted m_Counted; // the last to go: what waited for its end is served
    jKVETMCtrl& m_Component;
};

jKVETMCtrl::jKVETMCtrl() {
    if (g_Components.empty()) {
        g_BoardQueryPending = 0;
        g_ConfigAccepted = 0;
    }
    g_Components.push_back(this);
    calls::WhenEnded(ServeWhatWaited);
    AfxGetApp()->AddClient();
}

jKVETMCtrl::~jKVETMCtrl() {
    std::erase(g_Components, this);
    if (g_Components.empty()) {
        delete g_Settings;
        delete g_Supp;
        // The library may stay mapped: the next component must not find what is gone.
        g_Settings = nullptr;
        g_Supp = nullptr;
    }
    if (g_Ctrl == this) g_Ctrl = g_Components.empty() ? nullptr : g_Components.back();
    AfxGetApp()->RemoveClient();
}

void jKVETMCtrl::Destroy(jKVETMCtrl* component) {
    if (component == nullptr || component->m_DestroyLater) return;
    const bool last = g_Components.size() == 1;
    if (calls::Stack() == 0 || (component->m_Calls == 0 && !last)) {
        delete component;
        return;
    }
    component->m_DestroyLater = true;
    if (std::ranges::all_of(g_Components, &jKVETMCtrl::m_DestroyLater)) DeafenHost();
    AfxGetApp()->CancelAll();
}

/// A call has ended: what could not be done meanwhile is done now, if none is left that
/// it would harm.
void jKVETMCtrl::ServeWhatWaited() {
    if (calls::Stack() == 0) {
        const auto next = [] {
            return std::ranges::find_if(g_Components, &jKVETMCtrl::m_DestroyLater);
        };
        for (auto found = next(); found != g_Components.end(); found = next()) {
            delete *found;
            // The host that was deafened has gone with the last component that used it.
            if (g_Components.empty())
                for (const Required& row : g_Required) row.attach(nullptr);
        }
    }
    if (calls::Counting() > 0) return;
    for (Required& row : g_Required)
        if (std::exchange(row.waits, false)) row.attach(row.waiting);
}

const char* jKVETMCtrl::GetInterfaceName() {
    return ORN_KVETM_CTRL;
}
int32_t jKVETMCtrl::GetInterfaceVersion() {
    return ORN_KVETM_CTRL_VERSION;
}
const char* jKVETMCtrl::GetComponentName() {
    return "KVETMControl";
}
int32_t jKVETMCtrl::GetComponentVersion() {
    return KVETM_COMPONENT_VERSION;
}

IOrnInterface* jKVETMCtrl::GetInterface(const char* name) {
    if (name == nullptr || std::strcmp(name, ORN_KVETM_SUPP) != 0) return nullptr;
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
    Required* row = FindRequired(name);
    if (row == nullptr) return -1;
    row->waits = calls::Counting() > 0;
    row->waiting = object;
    if (!row->waits) row->attach(object);
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
    return static_cast<int32_t>(std::size(g_Required));
}

const char* jKVETMCtrl::GetRequiredName(int32_t index) {
    return index >= 0 && index < GetRequiredCount() ? g_Required[index].name : nullptr;
}

int32_t jKVETMCtrl::GetRequiredOption(int32_t) {
    return 0;
}

IOrnInterface* jKVETMCtrl::GetAttachedInterface(const char* name) {
    const Required* row = FindRequired(name);
    return row != nullptr ? row->attached() : nullptr;
}

bool jKVETMCtrl::Open() {
    const Entry entry(*this);
    return GuardedEntry(false, LastError, [&] {
        if (const char* refusal = entry.Refusal()) return Fail(refusal);
        return g_SheetOpen != 0 ? OpenInsideSheet() : OpenSheet();
    });
}

IOrnInterface* AskControl(const char* name) {
    return g_Ctrl != nullptr ? g_Ctrl->GetInterface(name) : nullptr;
}

bool jKVETMCtrl::Fail(std::string reason) {
    LastError = std::move(reason);
    return false;
}

bool jKVETMCtrl::Init(uint32_t) {
    const bool alone = calls::Stack() == 0;
    const Entry entry(*this);
    return GuardedEntry(false, LastError, [&] {
        LastError.clear();
        // The record would go from under whoever uses it.
        if (!alone) return Fail("Another operation of the module is running");
        auto* record = new (std::nothrow) jTraceSettings;
        delete g_Settings; // of an earlier Init
        g_Settings = record;
        if (record == nullptr) return Fail("No memory");
        // Behind a failed read nothing differs, so that no apply sends what nobody asked for.
        struct SettledOnFailure {
            jTraceSettings& record;
            bool read;
            ~SettledOnFailure() {
                if (!read) record.DiscardChanges();
            }
        } settled{*record, false};
        settled.read = g_VETMTrace == nullptr || record->ReadFromTarget();
        if (!settled.read) return Fail("Cannot read ETM/Trace settings from target");
        g_Ctrl = this;
        return true;
    });
}

bool jKVETMCtrl::Apply() {
    const Entry entry(*this);
    return GuardedEntry(false, LastError, [&] {
        LastError.clear();
        if (const char* refusal = entry.Refusal()) return Fail(refusal);
        if (g_VETMTrace == nullptr || g_Settings == nullptr)
            return Fail("Module is not initialized properly");
        return g_Settings->ApplyToTarget();
    });
}

void jKVETMCtrl::GetLastError(char* buffer, int32_t size) {
    if (buffer == nullptr || size <= 0) return;
    CopyBounded(buffer, static_cast<size_t>(size), LastError.c_str());
}
