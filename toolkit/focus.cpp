#include "toolkit/focus.h"

#include <algorithm>

#include "toolkit/CWinApp.h"

namespace {

FocusKept* g_Innermost = nullptr;

/// The dialog or sheet that a window belongs to; null for none.
const CDialog* TopLevel(const CWnd& window) {
    const auto* dialog = dynamic_cast<const CDialog*>(&window);
    if (dialog != nullptr && dynamic_cast<const CPropertyPage*>(dialog) == nullptr) return dialog;
    return window.GetParent() != nullptr ? TopLevel(*window.GetParent()) : nullptr;
}

bool IsUsable(const CWnd& control) {
    const ControlKind kind = control.GetKind();
    return kind != ControlKind::Static && kind != ControlKind::GroupBox &&
           control.IsWindowEnabled() && control.IsWindowVisible() && IsInSight(control);
}

bool ClosesDialog(const CWnd& control) {
    return control.GetDlgCtrlID() == IDOK || control.GetDlgCtrlID() == IDCANCEL;
}

/// What the Tab key can reach, with `control` or its group at index `here`.
struct Stops {
    std::vector<CWnd*> order;
    size_t here = 0;
};

Stops FindStops(const CDialog& dialog, const CWnd& control) {
    Stops stops;
    bool inGroup = false; // behind a usable radio button of the same group
    for (const auto& next : dialog.GetControls()) {
        if ((next->GetStyle() & style::Group) != 0) inGroup = false;
        if (next.get() == &control) stops.here = stops.order.size() - (inGroup ? 1 : 0);
        if (!IsUsable(*next)) continue;
        const bool radio = next->GetKind() == ControlKind::RadioButton;
        if (!radio || !inGroup)
            stops.order.push_back(next.get());
        else if (static_cast<const CButton&>(*next).GetCheck())
            stops.order.back() = next.get();
        inGroup = radio;
    }
    return stops;
}

} // namespace

bool IsInSight(const CWnd& control) {
    const ControlTemplate* row = control.GetTemplate();
    const auto* dialog = dynamic_cast<const CDialog*>(control.GetParent());
    if (row == nullptr || dialog == nullptr || dialog->GetDialogTemplate() == nullptr) return true;
    const DialogTemplate& area = *dialog->GetDialogTemplate();
    return row->x < area.width && row->y < area.height && row->x + row->width > 0 &&
           row->y + row->height > 0;
}

CWnd* NextUsable(const CWnd& control) {
    const auto* dialog = dynamic_cast<const CDialog*>(control.GetParent());
    if (dialog == nullptr) return nullptr;
    auto [order, here] = FindStops(*dialog, control);
    std::reverse(order.begin(), order.begin() + static_cast<std::ptrdiff_t>(here));
    std::rotate(order.begin(), order.begin() + static_cast<std::ptrdiff_t>(here), order.end());
    std::erase(order, &control);
    const auto stays =
        std::ranges::find_if_not(order, [](CWnd* stop) { return ClosesDialog(*stop); });
    if (stays != order.end()) return *stays;
    if (!order.empty()) return order.front();
    const auto* sheet = dynamic_cast<const CPropertySheet*>(dialog->GetParent());
    return sheet != nullptr ? sheet->GetDlgItem(IDC_TAB_CONTROL) : nullptr;
}

FocusKept::FocusKept(const CWnd& window)
    : m_Top(window.IsCreated() ? TopLevel(window) : nullptr), m_Outer(g_Innermost) {
    for (const FocusKept* outer = m_Outer; outer != nullptr; outer = outer->m_Outer)
        if (outer->m_Top == m_Top) m_Top = nullptr;
    g_Innermost = this;
    if (m_Top == nullptr) return;
    Look(*m_Top);
    const auto* sheet = dynamic_cast<const CPropertySheet*>(m_Top);
    if (sheet != nullptr && sheet->GetActivePage() != nullptr) Look(*sheet->GetActivePage());
}

void FocusKept::Look(const CDialog& dialog) {
    for (const auto& control : dialog.GetControls())
        if (control->IsCreated() && IsUsable(*control) &&
            AfxGetApp()->GetDisplay().HasFocus(*control))
            m_Focus = control.get();
}

FocusKept::~FocusKept() {
    g_Innermost = m_Outer;
    if (m_Focus == nullptr || !m_Focus->IsCreated() || m_Top->HasEnded()) return;
    // A page that went to the back has left the keyboard to the one in front.
    if (IsUsable(*m_Focus) || !m_Focus->GetParent()->IsWindowVisible()) return;
    if (CWnd* next = NextUsable(*m_Focus)) AfxGetApp()->GetDisplay().Focus(*next);
}
