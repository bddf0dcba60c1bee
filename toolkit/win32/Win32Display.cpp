#include "toolkit/win32/windows_api.h"

#include "toolkit/win32/Win32Display.h"

#include "toolkit/win32/DialogWindow.h"
#include "toolkit/win32/ModalLoop.h"
#include "toolkit/win32/NativeLook.h"
#include "toolkit/win32/OnScreen.h"
#include "toolkit/win32/ShowModel.h"
#include "toolkit/win32/WindowTable.h"
#include "toolkit/win32/boxes.h"
#include "toolkit/win32/help.h"
#include "toolkit/win32/keyboard.h"

namespace {

/// The window over which the next one comes up: the dialog in front, or what the host
/// has there; null if neither is.
HWND OwnerOfNext(const std::vector<CDialog*>& running) {
    return running.empty() ? GetActiveWindow() : WindowOf(*running.back());
}

void CALLBACK OnTimer(HWND window, UINT, UINT_PTR id, DWORD) {
    if (CWnd* model = ModelOf(window)) input::Tick(*model, static_cast<unsigned>(id));
}

} // namespace

bool Win32Display::Prepare(std::string& reason) {
    if (!m_Running.empty() && m_Thread != GetCurrentThreadId()) {
        reason = "the dialog is open on another thread";
        return false;
    }
    const NativeLook look;
    INITCOMMONCONTROLSEX request{};
    request.dwSize = sizeof request;
    request.dwICC = ICC_STANDARD_CLASSES | ICC_TAB_CLASSES | ICC_BAR_CLASSES;
    InitCommonControlsEx(&request);
    return true;
}

bool Win32Display::Create(CDialog& dialog) {
    return MakeDialogWindow(dialog, OwnerOfNext(m_Running));
}

void Win32Display::Destroy(CDialog& dialog) {
    const HWND window = WindowOf(dialog);
    if (IsWindow(window)) DestroyWindow(window);
}

void Win32Display::Refresh(CWnd& window, Change what) {
    ShowChange(window, what);
}

bool Win32Display::HasFocus(const CWnd& control) {
    const HWND window = WindowOf(control);
    return window != nullptr && OwnsFocus(window);
}

void Win32Display::Focus(CWnd& control) {
    if (WindowOf(control) != nullptr) ::Focus(WindowOf(control));
}

void Win32Display::RunModal(CDialog& dialog) {
    if (dialog.HasEnded()) return;
    struct Run {
        std::vector<CDialog*>& running;
        ~Run() { running.pop_back(); }
    };
    const HWND window = WindowOf(dialog);
    m_Running.push_back(&dialog);
    const Run run{m_Running};
    m_Thread = GetCurrentThreadId();
    const bool sheet = dialog.AsSheet() != nullptr;
    if (!sheet || !PutWhereItWas(window)) PlaceOverOwner(window);
    const OthersDisabled others(window);
    SetWindowPos(window, HWND_TOP, 0, 0, 0, 0, SWP_NOMOVE | SWP_NOSIZE | SWP_SHOWWINDOW);
    if (GetWindow(window, GW_OWNER) == nullptr) SetForegroundWindow(window); // of a console
    FocusFirst(dialog);
    RunLoop(dialog, window);
    if (sheet && IsWindow(window)) KeepPlace(window);
}

void Win32Display::EndModal(CDialog& dialog) {
    // The loop looks whether its dialog has ended; this wakes it up.
    PostMessageW(WindowOf(dialog), WM_NULL, 0, 0);
}

int Win32Display::ShowMessage(CWnd*, const char* text, const char* title, unsigned flags) {
    // Whoever asks: the box lies over what is in front, and that waits for it.
    return ShowMessageBox(m_Running.empty() ? nullptr : OwnerOfNext(m_Running), text, title, flags);
}

bool Win32Display::AskSaveFile(SaveFileRecord& record) {
    return ShowSaveDialog(OwnerOfNext(m_Running), record);
}

void Win32Display::CancelBoxes() {
    CancelRunningBoxes();
}

void Win32Display::StartTimer(CWnd& window, unsigned id, unsigned milliseconds) {
    if (WindowOf(window) != nullptr) SetTimer(WindowOf(window), id, milliseconds, OnTimer);
}

void Win32Display::StopTimer(CWnd& window, unsigned id) {
    if (WindowOf(window) != nullptr) KillTimer(WindowOf(window), id);
}

bool Win32Display::MeasureTabbedText(const CWnd& control, std::string_view text, int& width) {
    return MeasureText(WindowOf(control), text, width);
}

void Win32Display::SetToolTip(CWnd& control, const char* text, int maxWidth) {
    AddToolTip(control, text, maxWidth);
}

void Win32Display::Beep(unsigned flags) {
    ::MessageBeep(flags);
}

std::unique_ptr<Display> MakeDisplay() {
    return std::make_unique<Win32Display>();
}
