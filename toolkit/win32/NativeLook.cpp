#include "toolkit/win32/NativeLook.h"

namespace {

constexpr int kManifestId = 2; // of the manifest of a library

class ActivationContext {
public:
    ActivationContext() {
        ACTCTXA request{};
        request.cbSize = sizeof request;
        request.dwFlags = ACTCTX_FLAG_HMODULE_VALID | ACTCTX_FLAG_RESOURCE_NAME_VALID;
        request.hModule = ModuleInstance();
        request.lpResourceName = MAKEINTRESOURCEA(kManifestId);
        m_Handle = CreateActCtxA(&request);
    }
    ~ActivationContext() {
        if (IsValid()) ReleaseActCtx(m_Handle);
    }
    ActivationContext(const ActivationContext&) = delete;
    ActivationContext& operator=(const ActivationContext&) = delete;

    bool IsValid() const { return m_Handle != INVALID_HANDLE_VALUE; }
    HANDLE Get() const { return m_Handle; }

private:
    HANDLE m_Handle;
};

/// Sets the thread's awareness of resolutions and returns the one before; null where
/// the system can't do that for a thread.
void* SetAwareness(void* awareness) {
    using Function = void*(WINAPI*)(void*);
    static const auto function = reinterpret_cast<Function>(reinterpret_cast<void (*)()>(
        GetProcAddress(GetModuleHandleA("user32.dll"), "SetThreadDpiAwarenessContext")));
    return function != nullptr ? function(awareness) : nullptr;
}

// DPI_AWARENESS_CONTEXT_PER_MONITOR_AWARE_V2, the one in which dialogs scale themselves.
void* PerMonitor() {
    return reinterpret_cast<void*>(static_cast<INT_PTR>(-4));
}

} // namespace

HINSTANCE ModuleInstance() {
    HMODULE module = nullptr;
    GetModuleHandleExA(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS |
                           GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
                       reinterpret_cast<LPCSTR>(&ModuleInstance), &module);
    return module;
}

NativeLook::NativeLook() : m_AwarenessBefore(SetAwareness(PerMonitor())) {
    static const ActivationContext context;
    if (context.IsValid()) m_Activated = ActivateActCtx(context.Get(), &m_Cookie) != 0;
}

NativeLook::~NativeLook() {
    if (m_Activated) DeactivateActCtx(0, m_Cookie);
    if (m_AwarenessBefore != nullptr) SetAwareness(m_AwarenessBefore);
}
