#include "toolkit/win32/DialogWindow.h"

#include <uxtheme.h>

#include <algorithm>
#include <string>

#include "toolkit/fit.h"
#include "toolkit/win32/DialogBytes.h"
#include "toolkit/win32/NativeLook.h"
#include "toolkit/win32/OnScreen.h"
#include "toolkit/win32/ShowModel.h"
#include "toolkit/win32/WindowTable.h"
#include "toolkit/win32/help.h"
#include "toolkit/win32/keyboard.h"

namespace {

// --- What the windows report ----------------------------------------------------------

void OnCommand(CWnd& control, HWND window, unsigned code) {
    if (Showing::IsNow()) return;
    switch (control.GetKind()) {
    case ControlKind::Edit:
        if (code == EN_CHANGE) TakeTypedText(control, window);
        break;
    case ControlKind::ComboBox:
        if (code == CBN_SELCHANGE)
            input::Select(control, static_cast<int>(SendMessageA(window, CB_GETCURSEL, 0, 0)));
        break;
    case ControlKind::PushButton:
    case ControlKind::CheckBox:
    case ControlKind::RadioButton:
        if (code == BN_CLICKED) input::Click(control);
        break;
    default:
        break;
    }
}

void OnNotify(CWnd& control, const NMHDR& header) {
    if (auto* slider = dynamic_cast<CSliderCtrl*>(&control)) {
        if (header.code == NM_RELEASEDCAPTURE) input::Release(*slider);
        if (header.code == NM_CUSTOMDRAW &&
            reinterpret_cast<const NMCUSTOMDRAW&>(header).dwDrawStage == CDDS_PREPAINT)
            input::Paint(*slider);
    } else if (auto* tab = dynamic_cast<CTabCtrl*>(&control)) {
        if (header.code != TCN_SELCHANGE) return;
        const LRESULT chosen = SendMessageA(header.hwndFrom, TCM_GETCURSEL, 0, 0);
        // The old tab stays in front until the page there has let go.
        ShowChange(*tab, Change::Selection);
        if (auto* sheet = dynamic_cast<CPropertySheet*>(tab->GetParent()))
            ChooseTab(*sheet, *tab, static_cast<int>(chosen));
    }
}

void OnScroll(HWND window) {
    auto* slider = dynamic_cast<CSliderCtrl*>(ModelOf(window));
    if (slider == nullptr || Showing::IsNow()) return;
    input::Slide(*slider, static_cast<int>(SendMessageA(window, TBM_GETPOS, 0, 0)));
}

/// Escape arrives as a press on Cancel, whether or not there is such a button.
void OnCommandMessage(HWND dialog, WPARAM wParam, LPARAM lParam) {
    HWND window = reinterpret_cast<HWND>(lParam);
    if (window == nullptr) window = GetDlgItem(dialog, LOWORD(wParam));
    if (CWnd* control = ModelOf(window)) return OnCommand(*control, window, HIWORD(wParam));
    auto* model = dynamic_cast<CDialog*>(ModelOf(dialog));
    if (LOWORD(wParam) == IDCANCEL && model != nullptr) input::Close(*model);
}

/// Returns true for a message that needs no more work.
bool OnMessage(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    switch (message) {
    case WM_COMMAND:
        OnCommandMessage(window, wParam, lParam);
        return true;
    case WM_NOTIFY: {
        const auto* header = reinterpret_cast<const NMHDR*>(lParam);
        if (header == nullptr || Showing::IsNow()) return false;
        CWnd* control = ModelOf(header->hwndFrom);
        if (control != nullptr) OnNotify(*control, *header);
        return false; // the control goes on by itself
    }
    case WM_HSCROLL:
        OnScroll(reinterpret_cast<HWND>(lParam));
        return true;
    case WM_CLOSE: {
        auto* model = dynamic_cast<CDialog*>(ModelOf(window));
        const bool page = dynamic_cast<CPropertyPage*>(model) != nullptr;
        if (model != nullptr && !page) input::Close(*model);
        return true;
    }
    case WM_HELP:
        return true; // the loop has seen F1; it is no question to the host
    case WM_ACTIVATE:
        return OnActivate(window, LOWORD(wParam) != WA_INACTIVE);
    case WM_DESTROY:
        // Whoever took the window down, its loop has to notice.
        PostThreadMessageA(GetCurrentThreadId(), WM_NULL, 0, 0);
        return false;
    default:
        return false;
    }
}

INT_PTR CALLBACK DialogProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    // The first message comes before the models know their windows; the focus is set later.
    return Guarded(false, [&] { return OnMessage(window, message, wParam, lParam); });
}

// --- How they are made ------------------------------------------------------------------

/// Lays a page over the tab control, behind the tabs.
void FitIntoTab(HWND page, HWND sheet) {
    const HWND tab = GetDlgItem(sheet, IDC_TAB_CONTROL);
    RECT area;
    GetWindowRect(tab, &area);
    MapWindowPoints(nullptr, sheet, reinterpret_cast<POINT*>(&area), 2);
    SendMessageA(tab, TCM_ADJUSTRECT, FALSE, reinterpret_cast<LPARAM>(&area));
    SetWindowPos(page, HWND_TOP, area.left, area.top, area.right - area.left,
                 area.bottom - area.top, SWP_NOACTIVATE);
    EnableThemeDialogTexture(page, ETDT_ENABLETAB);
}

/// What a control needs beside its template.
void Complete(const CWnd& control, HWND window) {
    ShowAll(control);
    switch (control.GetKind()) {
    case ControlKind::RadioButton:
        TeachRadioButton(window);
        break;
    case ControlKind::Edit:
        SendMessageA(window, EM_SETLIMITTEXT, 0, 0); // as much as there is
        if ((control.GetStyle() & style::MultiLine) != 0) TeachMultiLineEdit(window);
        if ((control.GetStyle() & style::ReadOnly) != 0) // a note needs all of its place
            SendMessageA(window, EM_SETMARGINS, EC_LEFTMARGIN | EC_RIGHTMARGIN, MAKELPARAM(2, 2));
        break;
    default:
        break;
    }
}

void BindControls(CDialog& dialog, HWND window) {
    for (const auto& control : dialog.GetControls()) {
        if (control->GetDlgCtrlID() == -1) continue; // nobody refers to it
        const HWND child = GetDlgItem(window, control->GetDlgCtrlID());
        if (child == nullptr) continue;
        control->SetPeer(std::make_unique<WindowPeer>(*control, child));
        Complete(*control, child);
    }
}

/// The icon that lies beside the manifest.
constexpr int kIconId = 3;

void SetIcons(HWND window) {
    const struct {
        WPARAM which;
        int width, height;
    } rows[] = {{ICON_BIG, SM_CXICON, SM_CYICON}, {ICON_SMALL, SM_CXSMICON, SM_CYSMICON}};
    for (const auto& row : rows) {
        HANDLE icon =
            LoadImageA(ModuleInstance(), MAKEINTRESOURCEA(kIconId), IMAGE_ICON,
                       GetSystemMetrics(row.width), GetSystemMetrics(row.height), LR_SHARED);
        SendMessageA(window, WM_SETICON, row.which, reinterpret_cast<LPARAM>(icon));
    }
}

/// Makes the window in the largest font in which it fits on its screen; a page in that of its
/// sheet. Gives the size of the font back; null without a window.
HWND MakeInFont(const CDialog& dialog, HWND parent, bool page, int& points) {
    constexpr int kLeast = 3;
    HWND window = nullptr;
    const auto make = [&](int size) {
        if (window != nullptr) DestroyWindow(window);
        const DialogBytes bytes(dialog, size);
        window =
            CreateDialogIndirectParamA(ModuleInstance(), bytes.Get(), parent, DialogProcedure, 0);
        return window == nullptr || page || FitsScreen(window);
    };
    const WindowPeer* sheet = page ? PeerOf(*dialog.GetParent()) : nullptr;
    points = sheet != nullptr ? sheet->m_Points : DialogBytes::kPoints;
    points = LargestThatFits(std::min(kLeast, points), points, make);
    return window;
}

} // namespace

bool MakeDialogWindow(CDialog& dialog, HWND owner) {
    const NativeLook look;
    const bool page = dynamic_cast<CPropertyPage*>(&dialog) != nullptr;
    const HWND parent =
        page && dialog.GetParent() != nullptr ? WindowOf(*dialog.GetParent()) : owner;
    if (page && parent == nullptr) return false;
    int points = 0;
    const HWND window = MakeInFont(dialog, parent, page, points);
    if (window == nullptr) return false;
    dialog.SetPeer(std::make_unique<WindowPeer>(dialog, window));
    PeerOf(dialog)->m_Points = points;
    if (!page) SetIcons(window);
    BindControls(dialog, window);
    DescribeControls(dialog);
    if (page) FitIntoTab(window, parent);
    // The tab key goes from the page to the buttons, and on to the tabs.
    if (const HWND tab = GetDlgItem(window, IDC_TAB_CONTROL))
        SetWindowPos(tab, HWND_BOTTOM, 0, 0, 0, 0, SWP_NOMOVE | SWP_NOSIZE | SWP_NOACTIVATE);
    return true;
}

void ChooseTab(CPropertySheet& sheet, CTabCtrl& tab, int index) {
    CPropertyPage* before = sheet.GetActivePage();
    const bool fromPage = before != nullptr && HasFocus(WindowOf(*before));
    input::Select(tab, index);
    if (fromPage && sheet.GetActivePage() != before) FocusFirst(sheet);
}
