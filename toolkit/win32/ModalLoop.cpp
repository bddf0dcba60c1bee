#include "toolkit/win32/ModalLoop.h"

#include "toolkit/win32/DialogWindow.h"
#include "toolkit/win32/help.h"
#include "toolkit/win32/keyboard.h"

namespace {

struct Search {
    HWND except;
    std::vector<HWND>& found;
};

BOOL CALLBACK CollectUsable(HWND window, LPARAM parameter) {
    auto& search = *reinterpret_cast<Search*>(parameter);
    if (window == search.except || !IsWindowVisible(window) || !IsWindowEnabled(window))
        return TRUE;
    Guarded([&] { search.found.push_back(window); });
    return TRUE;
}

/// How far a key goes among the tabs; 0: another key.
int TabStep(const MSG& message) {
    if (message.message != WM_KEYDOWN || GetKeyState(VK_CONTROL) >= 0) return 0;
    switch (message.wParam) {
    case VK_TAB:
        return GetKeyState(VK_SHIFT) < 0 ? -1 : 1;
    case VK_NEXT:
        return 1;
    case VK_PRIOR:
        return -1;
    default:
        return 0;
    }
}

bool SwitchesTab(CDialog& dialog, HWND window, const MSG& message) {
    auto* sheet = dynamic_cast<CPropertySheet*>(&dialog);
    if (sheet == nullptr || (message.hwnd != window && !IsChild(window, message.hwnd)))
        return false;
    const int step = TabStep(message);
    auto* tab = dynamic_cast<CTabCtrl*>(sheet->GetDlgItem(IDC_TAB_CONTROL));
    if (step == 0 || tab == nullptr || tab->GetTitles().empty()) return false;
    const int count = static_cast<int>(tab->GetTitles().size());
    ChooseTab(*sheet, *tab, (tab->GetCurSel() + step + count) % count);
    return true;
}

} // namespace

OthersDisabled::OthersDisabled(HWND window) : m_Window(window), m_ActiveBefore(GetActiveWindow()) {
    Search search{window, m_Disabled};
    EnumThreadWindows(GetCurrentThreadId(), CollectUsable, reinterpret_cast<LPARAM>(&search));
    for (const HWND other : m_Disabled) EnableWindow(other, FALSE);
}

OthersDisabled::~OthersDisabled() {
    for (const HWND other : m_Disabled)
        if (IsWindow(other)) EnableWindow(other, TRUE);
    if (GetActiveWindow() == m_Window && IsWindow(m_ActiveBefore)) SetActiveWindow(m_ActiveBefore);
}

void RunLoop(CDialog& dialog, HWND window) {
    bool quits = false;
    MSG message{};
    // The wide calls suit the host's windows of both kinds.
    while (!dialog.HasEnded() && IsWindow(window)) {
        const BOOL got = GetMessageW(&message, nullptr, 0, 0);
        quits = got == 0;
        if (got == 0 || got == -1) break;
        if (IsHeldKey(message) && (message.hwnd == window || IsChild(window, message.hwnd)))
            continue;
        if (IsForHelp(dialog, window, message)) continue;
        if (SwitchesTab(dialog, window, message) || IsDialogMessageW(window, &message)) continue;
        TranslateMessage(&message);
        DispatchMessageW(&message);
    }
    if (!dialog.HasEnded()) input::Close(dialog);
    if (!dialog.HasEnded()) dialog.EndDialog(IDCANCEL); // a handler threw on the way
    if (quits) PostQuitMessage(static_cast<int>(message.wParam));
}
