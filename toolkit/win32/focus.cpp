#include "toolkit/win32/focus.h"

#include "toolkit/win32/WindowTable.h"

namespace {

void Focus(HWND control) {
    const HWND frame = GetAncestor(control, GA_ROOT);
    SendMessageA(frame, WM_NEXTDLGCTL, reinterpret_cast<WPARAM>(control), TRUE);
}

} // namespace

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

void LeaveFocus(HWND window) {
    if (!HasFocus(window)) return;
    const HWND frame = GetAncestor(window, GA_ROOT);
    HWND next = GetDlgItem(frame, IDC_TAB_CONTROL); // the way out of a page
    if (dynamic_cast<CDialog*>(ModelOf(window)) == nullptr)
        next = GetNextDlgTabItem(frame, window, FALSE);
    if (next != nullptr && next != window) Focus(next);
}
