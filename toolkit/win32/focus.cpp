#include "toolkit/win32/focus.h"

#include <utility>

#include "toolkit/win32/WindowTable.h"

namespace {

HWND g_Lender = nullptr; // had the focus until it was disabled or hidden

WindowPeer* PeerOfFrame(HWND control) {
    const CWnd* frame = ModelOf(GetAncestor(control, GA_ROOT));
    return frame != nullptr ? PeerOf(*frame) : nullptr;
}

} // namespace

void Focus(HWND control) {
    const HWND frame = GetAncestor(control, GA_ROOT);
    g_Lender = nullptr;
    WindowPeer* peer = PeerOfFrame(control);
    if (GetActiveWindow() == frame || peer == nullptr)
        SendMessageA(frame, WM_NEXTDLGCTL, reinterpret_cast<WPARAM>(control), TRUE);
    else
        peer->m_FocusToCome = control; // the focus would make the dialog active
}

void FocusFirst(const CDialog& dialog) {
    const CDialog* place = &dialog;
    if (const auto* sheet = dynamic_cast<const CPropertySheet*>(&dialog))
        if (sheet->GetActivePage() != nullptr) place = sheet->GetActivePage();
    const HWND first = GetNextDlgTabItem(WindowOf(*place), nullptr, FALSE);
    if (first != nullptr) Focus(first);
}

bool HasFocus(HWND window) {
    const HWND focus = GetFocus();
    return focus != nullptr && (focus == window || IsChild(window, focus));
}

bool OwnsFocus(HWND control) {
    const WindowPeer* peer = PeerOfFrame(control);
    const bool active = GetActiveWindow() == GetAncestor(control, GA_ROOT);
    if (active || peer == nullptr) return HasFocus(control);
    return (peer->m_FocusToCome != nullptr ? peer->m_FocusToCome : peer->m_LastFocus) == control;
}

void LeavePage(HWND page) {
    if (!HasFocus(page)) return;
    if (const HWND tabs = GetDlgItem(GetAncestor(page, GA_ROOT), IDC_TAB_CONTROL)) Focus(tabs);
}

void LendFocus(HWND control) {
    if (HasFocus(control)) g_Lender = control;
}

void TakeFocusBack(HWND control) {
    if (g_Lender == control && IsWindowVisible(control) && IsWindowEnabled(control)) Focus(control);
}

bool OnActivate(HWND dialog, bool active) {
    WindowPeer* peer = PeerOfFrame(dialog);
    if (peer == nullptr) return false;
    const HWND toCome = std::exchange(peer->m_FocusToCome, nullptr);
    if (!active)
        peer->m_LastFocus = IsChild(dialog, GetFocus()) ? GetFocus() : nullptr;
    else if (toCome != nullptr)
        SetFocus(toCome);
    return active && toCome != nullptr;
}
