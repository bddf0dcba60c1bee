#include "toolkit/win32/ShowModel.h"

#include <algorithm>
#include <string>
#include <vector>

#include "toolkit/win32/WindowTable.h"
#include "toolkit/win32/help.h"
#include "toolkit/win32/keyboard.h"

namespace {

void ShowText(HWND window, const CWnd& model) {
    const std::string& text = model.GetWindowText();
    if (TextOf(window) == text) return; // the caret stays where it is
    SetWindowTextA(window, text.c_str());
    // Whoever is typing goes on behind the new text.
    if (model.GetKind() == ControlKind::Edit && GetFocus() == window) {
        const auto end = static_cast<LPARAM>(text.size());
        SendMessageA(window, EM_SETSEL, static_cast<WPARAM>(end), end);
    }
}

/// Gives the one tab stop of a group of radio buttons to the checked one, or, if that
/// can't be used, to the first one that can.
void PlaceTabStop(const CWnd& radio) {
    const auto* dialog = dynamic_cast<const CDialog*>(radio.GetParent());
    if (dialog == nullptr) return;
    std::vector<CButton*> group = dialog->GetRadioGroup(radio);
    std::erase_if(group, [](const CButton* button) {
        const HWND window = WindowOf(*button);
        const LONG style = GetWindowLongA(window, GWL_STYLE);
        SetWindowLongA(window, GWL_STYLE, style & ~WS_TABSTOP);
        return !button->IsWindowEnabled() || !button->IsWindowVisible();
    });
    if (group.empty()) return;
    const auto checked = std::ranges::find_if(group, &CButton::GetCheck);
    const HWND window = WindowOf(**(checked != group.end() ? checked : group.begin()));
    SetWindowLongA(window, GWL_STYLE, GetWindowLongA(window, GWL_STYLE) | WS_TABSTOP);
}

void ShowVisible(HWND window, const CWnd& model) {
    const bool page = dynamic_cast<const CPropertyPage*>(&model) != nullptr;
    if (!model.IsWindowVisible()) page ? LeavePage(window) : LendFocus(window);
    UINT flags = SWP_NOMOVE | SWP_NOSIZE | SWP_NOACTIVATE;
    if (!page) flags |= SWP_NOZORDER; // a page comes in front of the tab control
    flags |= model.IsWindowVisible() ? SWP_SHOWWINDOW : SWP_HIDEWINDOW;
    SetWindowPos(window, HWND_TOP, 0, 0, 0, 0, flags);
    TakeFocusBack(window);
    PlaceToolTip(model);
}

void ShowEnabled(HWND window, const CWnd& model) {
    if (!model.IsWindowEnabled()) LendFocus(window);
    EnableWindow(window, model.IsWindowEnabled());
    TakeFocusBack(window);
}

void ShowChecked(HWND window, const CWnd& model) {
    const ControlKind kind = model.GetKind();
    if (kind != ControlKind::CheckBox && kind != ControlKind::RadioButton) return;
    const bool checked = static_cast<const CButton&>(model).GetCheck();
    SendMessageA(window, BM_SETCHECK, checked ? BST_CHECKED : BST_UNCHECKED, 0);
}

void ShowSelection(HWND window, const CWnd& model) {
    if (const auto* tab = dynamic_cast<const CTabCtrl*>(&model))
        SendMessageA(window, TCM_SETCURSEL, static_cast<WPARAM>(tab->GetCurSel()), 0);
    else if (const auto* combo = dynamic_cast<const CComboBox*>(&model))
        SendMessageA(window, CB_SETCURSEL, static_cast<WPARAM>(combo->GetCurSel()), 0);
}

/// Entries are only ever added at the end or all taken away.
void ShowEntries(HWND window, const CWnd& model) {
    if (const auto* tab = dynamic_cast<const CTabCtrl*>(&model)) {
        const auto& titles = tab->GetTitles();
        auto shown = static_cast<size_t>(SendMessageA(window, TCM_GETITEMCOUNT, 0, 0));
        for (; shown < titles.size(); ++shown) {
            TCITEMA item{};
            item.mask = TCIF_TEXT;
            item.pszText = const_cast<char*>(titles[shown].c_str());
            SendMessageA(window, TCM_INSERTITEMA, shown, reinterpret_cast<LPARAM>(&item));
        }
    } else if (const auto* combo = dynamic_cast<const CComboBox*>(&model)) {
        const auto& entries = combo->GetEntries();
        auto shown = static_cast<size_t>(SendMessageA(window, CB_GETCOUNT, 0, 0));
        if (shown > entries.size()) {
            SendMessageA(window, CB_RESETCONTENT, 0, 0);
            shown = 0;
        }
        for (; shown < entries.size(); ++shown)
            SendMessageA(window, CB_ADDSTRING, 0, reinterpret_cast<LPARAM>(entries[shown].c_str()));
    }
    ShowSelection(window, model);
}

void ShowPosition(HWND window, const CSliderCtrl& slider) {
    SendMessageA(window, TBM_SETPOS, TRUE, slider.GetPos());
}

void ShowRange(HWND window, const CSliderCtrl& slider) {
    SendMessageA(window, TBM_SETRANGEMIN, FALSE, slider.GetMinimum());
    SendMessageA(window, TBM_SETRANGEMAX, FALSE, slider.GetMaximum());
    SendMessageA(window, TBM_SETPAGESIZE, 0, slider.GetPageSize());
    SendMessageA(window, TBM_SETLINESIZE, 0, slider.GetLineSize());
    if (slider.GetTicFreq() > 0)
        SendMessageA(window, TBM_SETTICFREQ, static_cast<WPARAM>(slider.GetTicFreq()), 0);
    else
        SendMessageA(window, TBM_CLEARTICS, TRUE, 0);
    ShowPosition(window, slider);
}

/// The change itself, in the window that exists.
void Show(HWND window, const CWnd& model, Change what) {
    const auto* slider = dynamic_cast<const CSliderCtrl*>(&model);
    switch (what) {
    case Change::Text:
        return ShowText(window, model);
    case Change::ReadOnly:
        SendMessageA(window, EM_SETREADONLY, (model.GetStyle() & style::ReadOnly) != 0, 0);
        return;
    case Change::Enabled:
        return ShowEnabled(window, model);
    case Change::Visible:
        return ShowVisible(window, model);
    case Change::Checked:
        return ShowChecked(window, model);
    case Change::Entries:
        return ShowEntries(window, model);
    case Change::Selection:
        return ShowSelection(window, model);
    case Change::Range:
        if (slider != nullptr) ShowRange(window, *slider);
        return;
    case Change::Position:
        if (slider != nullptr) ShowPosition(window, *slider);
        return;
    }
}

/// Widens the label of one line so that its whole text shows, whatever face the system has
/// put in place of the template's.
void FitLabel(HWND label) {
    if ((GetWindowLongA(label, GWL_STYLE) & SS_TYPEMASK) != SS_LEFTNOWORDWRAP) return;
    RECT place;
    GetWindowRect(label, &place);
    int width = 0;
    if (!MeasureText(label, TextOf(label), width) || width <= place.right - place.left) return;
    SetWindowPos(label, nullptr, 0, 0, width, place.bottom - place.top,
                 SWP_NOMOVE | SWP_NOZORDER | SWP_NOACTIVATE);
}

constexpr std::string_view kLetters = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz";

/// The distance of the tab stops of an edit: 32 dialog units, eight mean characters.
int TabStop(HDC context) {
    SIZE size{};
    GetTextExtentPoint32A(context, kLetters.data(), static_cast<int>(kLetters.size()), &size);
    return 8 * static_cast<int>((size.cx / 26 + 1) / 2);
}

} // namespace

void ShowChange(const CWnd& model, Change what) {
    const HWND window = WindowOf(model);
    if (window == nullptr) return;
    const Showing showing;
    Show(window, model, what);
    if (model.GetKind() == ControlKind::RadioButton) PlaceTabStop(model);
}

void ShowAll(const CWnd& control) {
    ShowChange(control, Change::Checked);
    ShowChange(control, Change::Entries);
    ShowChange(control, Change::Range);
    if (control.GetKind() == ControlKind::Static) FitLabel(WindowOf(control));
}

bool MeasureText(HWND window, std::string_view text, int& width) {
    const HDC context = window != nullptr ? GetDC(window) : nullptr;
    if (context == nullptr) return false;
    const auto font = reinterpret_cast<HGDIOBJ>(SendMessageA(window, WM_GETFONT, 0, 0));
    const HGDIOBJ before = font != nullptr ? SelectObject(context, font) : nullptr;
    const int stop = TabStop(context);
    width =
        LOWORD(GetTabbedTextExtentA(context, text.data(), static_cast<int>(text.size()), 1, &stop));
    if (before != nullptr) SelectObject(context, before);
    ReleaseDC(window, context);
    return true;
}
