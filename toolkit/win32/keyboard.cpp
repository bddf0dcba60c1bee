#include "toolkit/win32/keyboard.h"

#include <utility>

#include "toolkit/win32/ShowModel.h"
#include "toolkit/win32/WindowTable.h"

// --- The focus ----------------------------------------------------------------------------

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

// --- Manners ------------------------------------------------------------------------------

namespace {

bool IsForDialog(HWND edit, const MSG* message) {
    if (message == nullptr || message->message != WM_KEYDOWN) return false;
    const bool newLine = (GetWindowLongA(edit, GWL_STYLE) & ES_WANTRETURN) != 0;
    return message->wParam == VK_TAB || message->wParam == VK_ESCAPE ||
           (message->wParam == VK_RETURN && !newLine);
}

LRESULT CALLBACK EditProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam, UINT_PTR,
                               DWORD_PTR) {
    LRESULT result = DefSubclassProc(window, message, wParam, lParam);
    if (message == WM_GETDLGCODE) {
        result &= ~DLGC_HASSETSEL;
        if (IsForDialog(window, reinterpret_cast<const MSG*>(lParam)))
            result &= ~(DLGC_WANTALLKEYS | DLGC_WANTTAB);
    } else if (message == WM_SETTEXT && !Showing::IsNow()) {
        // Such an edit does not report a text that is set.
        Guarded([&] {
            if (CWnd* edit = ModelOf(window)) TakeTypedText(*edit, window);
        });
    } else if (message == WM_NCDESTROY) {
        RemoveWindowSubclass(window, EditProcedure, 0);
    }
    return result;
}

bool IsArrowDown() {
    return GetKeyState(VK_UP) < 0 || GetKeyState(VK_DOWN) < 0 || GetKeyState(VK_LEFT) < 0 ||
           GetKeyState(VK_RIGHT) < 0;
}

LRESULT CALLBACK RadioProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam, UINT_PTR,
                                DWORD_PTR) {
    if (message == WM_SETFOCUS) {
        {
            // Some systems report each focus as a click: on the way of the tab key, behind
            // a message box, when the person comes back from another program.
            const Showing unheard;
            DefSubclassProc(window, message, wParam, lParam);
        }
        if (IsArrowDown())
            PostMessageW(GetParent(window), WM_COMMAND,
                         MAKEWPARAM(GetDlgCtrlID(window), BN_CLICKED),
                         reinterpret_cast<LPARAM>(window));
        return 0;
    }
    if (message == WM_NCDESTROY) RemoveWindowSubclass(window, RadioProcedure, 0);
    return DefSubclassProc(window, message, wParam, lParam);
}

} // namespace

void TeachMultiLineEdit(HWND window) {
    SetWindowSubclass(window, EditProcedure, 0, 0);
}

void TeachRadioButton(HWND window) {
    SetWindowSubclass(window, RadioProcedure, 0, 0);
}

bool IsHeldKey(const MSG& message) {
    constexpr LPARAM kWasDown = LPARAM{1} << 30;
    if (message.message != WM_KEYDOWN || (message.lParam & kWasDown) == 0) return false;
    if (message.wParam == VK_ESCAPE) return true;
    const CWnd* model = ModelOf(message.hwnd);
    return message.wParam == VK_RETURN &&
           (model == nullptr || (model->GetStyle() & style::WantReturn) == 0);
}

void TakeTypedText(CWnd& edit, HWND window) {
    input::Type(edit, TextOf(window));
}
