#include "toolkit/controls.h"

#include <algorithm>

void CButton::SetCheck(bool checked) {
    if (checked == m_Checked) return;
    m_Checked = checked;
    Changed(Change::Checked);
}

void CEdit::SetReadOnly(bool readOnly) {
    const uint32_t styles = readOnly ? m_Style | style::ReadOnly : m_Style & ~style::ReadOnly;
    if (styles == m_Style) return;
    m_Style = styles;
    Changed(Change::ReadOnly);
}

void CComboBox::ResetContent() {
    m_Entries.clear();
    m_Selection = -1;
    Changed(Change::Entries);
}

int CComboBox::AddString(std::string_view text) {
    m_Entries.emplace_back(text);
    Changed(Change::Entries);
    return GetCount() - 1;
}

void CComboBox::SetCurSel(int index) {
    if (index < 0 || index >= GetCount()) index = -1;
    if (index == m_Selection) return;
    m_Selection = index;
    Changed(Change::Selection);
}

void CSliderCtrl::SetRange(int minimum, int maximum) {
    m_Minimum = minimum;
    m_Maximum = std::max(minimum, maximum);
    m_Position = std::clamp(m_Position, m_Minimum, m_Maximum);
    Changed(Change::Range);
}

void CSliderCtrl::SetPageSize(int size) {
    m_PageSize = size;
    Changed(Change::Range);
}

void CSliderCtrl::SetLineSize(int size) {
    m_LineSize = size;
    Changed(Change::Range);
}

void CSliderCtrl::ClearTics() {
    m_TicFreq = 0;
    Changed(Change::Range);
}

void CSliderCtrl::SetTicFreq(int every) {
    m_TicFreq = every;
    Changed(Change::Range);
}

void CSliderCtrl::SetPos(int position) {
    m_Position = std::clamp(position, m_Minimum, m_Maximum);
    Changed(Change::Position);
}

int CTabCtrl::AddTab(std::string_view title) {
    m_Titles.emplace_back(title);
    Changed(Change::Entries);
    return static_cast<int>(m_Titles.size()) - 1;
}

void CTabCtrl::SetCurSel(int index) {
    m_Selection = index;
    Changed(Change::Selection);
}

std::unique_ptr<CWnd> MakeControl(ControlKind kind) {
    switch (kind) {
    case ControlKind::PushButton:
    case ControlKind::CheckBox:
    case ControlKind::RadioButton:
    case ControlKind::GroupBox:
        return std::make_unique<CButton>();
    case ControlKind::Edit:
        return std::make_unique<CEdit>();
    case ControlKind::ComboBox:
        return std::make_unique<CComboBox>();
    case ControlKind::Slider:
        return std::make_unique<CSliderCtrl>();
    case ControlKind::Tab:
        return std::make_unique<CTabCtrl>();
    case ControlKind::Static:
        break;
    }
    return std::make_unique<CStatic>();
}
