#include "toolkit/win32/OnScreen.h"

#include <algorithm>
#include <string>

#include "toolkit/win32/NativeLook.h"

namespace {

RECT WorkArea(HMONITOR screen) {
    MONITORINFO monitor{};
    monitor.cbSize = sizeof monitor;
    GetMonitorInfoA(screen, &monitor);
    return monitor.rcWork;
}

RECT PlaceOf(HWND window) {
    RECT place{};
    GetWindowRect(window, &place);
    return place;
}

/// The screen that a window comes up on.
HMONITOR ScreenOf(HWND window) {
    const HWND owner = GetWindow(window, GW_OWNER);
    return MonitorFromWindow(owner != nullptr ? owner : window, MONITOR_DEFAULTTOPRIMARY);
}

void MoveInto(const RECT& screen, HWND window, LONG x, LONG y) {
    const RECT own = PlaceOf(window);
    const LONG width = own.right - own.left;
    const LONG height = own.bottom - own.top;
    SetWindowPos(window, nullptr, std::max(screen.left, std::min(x, screen.right - width)),
                 std::max(screen.top, std::min(y, screen.bottom - height)), 0, 0,
                 SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE);
}

/// A place in memory that belongs to the process, found by its name. No variable would do: the
/// host may unload the module between two dialogs.
class KeptPlace {
public:
    explicit KeptPlace(bool make) {
        const std::string name =
            "Local\\KVETMControl.place." + std::to_string(GetCurrentProcessId());
        m_Memory = OpenFileMappingA(FILE_MAP_ALL_ACCESS, FALSE, name.c_str());
        if (m_Memory == nullptr && make) {
            m_Memory = CreateFileMappingA(INVALID_HANDLE_VALUE, nullptr, PAGE_READWRITE, 0,
                                          sizeof(RECT), name.c_str());
            m_First = true; // stays open, which keeps the memory
        }
        if (m_Memory != nullptr)
            m_Place = static_cast<RECT*>(MapViewOfFile(m_Memory, FILE_MAP_ALL_ACCESS, 0, 0, 0));
    }
    ~KeptPlace() {
        if (m_Place != nullptr) UnmapViewOfFile(m_Place);
        if (m_Memory != nullptr && !m_First) CloseHandle(m_Memory);
    }
    KeptPlace(const KeptPlace&) = delete;
    KeptPlace& operator=(const KeptPlace&) = delete;

    /// Null if there is none.
    RECT* Get() const { return m_Place; }

private:
    HANDLE m_Memory = nullptr;
    RECT* m_Place = nullptr;
    bool m_First = false;
};

} // namespace

bool FitsScreen(HWND window) {
    const RECT own = PlaceOf(window);
    const RECT screen = WorkArea(ScreenOf(window));
    return own.right - own.left <= screen.right - screen.left &&
           own.bottom - own.top <= screen.bottom - screen.top;
}

void PlaceOverOwner(HWND window) {
    const NativeLook look; // measures all windows alike
    const HWND owner = GetWindow(window, GW_OWNER);
    const RECT screen = WorkArea(ScreenOf(window));
    const bool shown = owner != nullptr && IsWindowVisible(owner) && !IsIconic(owner);
    const RECT around = shown ? PlaceOf(owner) : screen;
    const RECT own = PlaceOf(window);
    MoveInto(screen, window, (around.left + around.right - (own.right - own.left)) / 2,
             (around.top + around.bottom - (own.bottom - own.top)) / 2);
}

bool PutWhereItWas(HWND window) {
    const NativeLook look;
    const KeptPlace kept(false);
    if (kept.Get() == nullptr) return false;
    const HMONITOR screen = MonitorFromRect(kept.Get(), MONITOR_DEFAULTTONULL);
    if (screen == nullptr) return false;
    MoveInto(WorkArea(screen), window, kept.Get()->left, kept.Get()->top);
    return true;
}

void KeepPlace(HWND window) {
    const NativeLook look;
    const KeptPlace kept(true);
    if (kept.Get() != nullptr) *kept.Get() = PlaceOf(window);
}
