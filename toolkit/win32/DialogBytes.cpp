#include "toolkit/win32/DialogBytes.h"

#include <string>

#include "toolkit/focus.h"

namespace {

// The outline face with the metrics of MS Sans Serif, so that it scales with the
// screen's resolution.
constexpr char kFace[] = "MS Shell Dlg";

constexpr int kTwoLines = 16; // dialog units

struct NativeControl {
    const char* className;
    DWORD style;
    DWORD exStyle = 0;
};

DWORD EditStyle(uint32_t styles) {
    DWORD result = WS_TABSTOP;
    if ((styles & style::MultiLine) == 0)
        result |= ES_AUTOHSCROLL;
    else
        result |= ES_MULTILINE | ES_AUTOVSCROLL;
    if ((styles & style::ReadOnly) != 0) result |= ES_READONLY;
    // Whoever may write several lines may write more than fit.
    if ((styles & style::WantReturn) != 0) result |= ES_WANTRETURN | WS_VSCROLL;
    if ((styles & style::DigitsOnly) != 0) result |= ES_NUMBER;
    return result;
}

/// Check boxes and radio buttons are not the automatic kind: the model decides what
/// is checked.
NativeControl Native(const CWnd& control) {
    const uint32_t styles = control.GetStyle();
    switch (control.GetKind()) {
    case ControlKind::PushButton:
        return {WC_BUTTONA, WS_TABSTOP | ((styles & style::Default) != 0 ? DWORD{BS_DEFPUSHBUTTON}
                                                                         : DWORD{BS_PUSHBUTTON})};
    case ControlKind::CheckBox:
        return {WC_BUTTONA, WS_TABSTOP | BS_CHECKBOX};
    case ControlKind::RadioButton:
        // One tab stop for the whole group, which moves when the buttons change.
        return {WC_BUTTONA, BS_RADIOBUTTON | ((styles & style::Group) != 0 ? WS_TABSTOP : 0u)};
    case ControlKind::GroupBox:
        return {WC_BUTTONA, BS_GROUPBOX};
    case ControlKind::Edit:
        return {WC_EDITA, EditStyle(styles), WS_EX_CLIENTEDGE};
    case ControlKind::ComboBox:
        return {WC_COMBOBOXA, WS_TABSTOP | WS_VSCROLL | CBS_DROPDOWNLIST};
    case ControlKind::Slider:
        return {TRACKBAR_CLASSA, WS_TABSTOP | TBS_HORZ | TBS_AUTOTICKS |
                                     ((styles & style::TicksBothSides) != 0 ? TBS_BOTH : 0u)};
    case ControlKind::Tab:
        return {WC_TABCONTROLA, WS_TABSTOP | WS_CLIPSIBLINGS | TCS_SINGLELINE};
    case ControlKind::Static:
        break;
    }
    if ((styles & style::Centered) != 0) return {WC_STATICA, SS_CENTER};
    return {WC_STATICA,
            control.GetTemplate()->height < kTwoLines ? DWORD{SS_LEFTNOWORDWRAP} : DWORD{SS_LEFT}};
}

std::wstring Wide(std::string_view text) {
    const int size = static_cast<int>(text.size());
    std::wstring wide(text.size(), L'\0'); // never more units than bytes
    const int length = MultiByteToWideChar(CP_ACP, 0, text.data(), size, wide.data(),
                                           static_cast<int>(wide.size()));
    wide.resize(length > 0 ? static_cast<size_t>(length) : 0);
    return wide;
}

} // namespace

DialogBytes::DialogBytes(const CDialog& dialog, int points) {
    AddFrame(dialog, points);
    for (const auto& control : dialog.GetControls()) AddControl(*control);
    m_Bytes[m_CountPlace] = static_cast<uint8_t>(m_Count);
    m_Bytes[m_CountPlace + 1] = static_cast<uint8_t>(m_Count >> 8);
}

void DialogBytes::AddFrame(const CDialog& dialog, int points) {
    const bool page = dynamic_cast<const CPropertyPage*>(&dialog) != nullptr;
    const DialogTemplate& place = *dialog.GetDialogTemplate();
    Word(1);      // version
    Word(0xFFFF); // the extended form
    DoubleWord(0);
    DoubleWord(page ? WS_EX_CONTROLPARENT : WS_EX_DLGMODALFRAME);
    DoubleWord(page ? DS_SHELLFONT | DS_CONTROL | WS_CHILD | WS_CLIPSIBLINGS
                    : DS_SHELLFONT | DS_MODALFRAME | WS_POPUP | WS_CAPTION | WS_SYSMENU);
    m_CountPlace = m_Bytes.size();
    Word(0);
    Word(0);
    Word(0);
    Word(static_cast<unsigned>(place.width));
    Word(static_cast<unsigned>(place.height));
    Word(0); // no menu
    Word(0); // the usual class
    Text(page ? std::string_view() : dialog.GetWindowText());
    Word(static_cast<unsigned>(points));
    Word(FW_NORMAL);
    Word(DEFAULT_CHARSET << 8); // not italic
    Text(kFace);
}

void DialogBytes::AddControl(const CWnd& control) {
    const ControlTemplate& row = *control.GetTemplate();
    // A screen reader names a control after the static before it, even an invisible one.
    if (row.accessibleName != nullptr)
        AddItem({WC_STATICA, row.accessibleName, SS_LEFT, 0, -1}, row);
    const NativeControl native = Native(control);
    DWORD style = native.style;
    if (control.IsWindowVisible() && IsInSight(control)) style |= WS_VISIBLE;
    if (!control.IsWindowEnabled()) style |= WS_DISABLED;
    if ((control.GetStyle() & style::Group) != 0) style |= WS_GROUP;
    AddItem({native.className, control.GetWindowText(), style, native.exStyle, row.id}, row);
}

void DialogBytes::AddItem(const Item& item, const ControlTemplate& place) {
    Align();
    DoubleWord(0);
    DoubleWord(item.exStyle);
    DoubleWord(item.style | WS_CHILD);
    Word(static_cast<unsigned>(place.x));
    Word(static_cast<unsigned>(place.y));
    Word(static_cast<unsigned>(place.width));
    Word(static_cast<unsigned>(place.height));
    DoubleWord(static_cast<DWORD>(item.id));
    Text(item.className);
    Text(item.text);
    Word(0); // nothing for the control itself
    ++m_Count;
}

void DialogBytes::Align() {
    while (m_Bytes.size() % sizeof(DWORD) != 0) m_Bytes.push_back(0);
}

void DialogBytes::Word(unsigned value) {
    m_Bytes.push_back(static_cast<uint8_t>(value));
    m_Bytes.push_back(static_cast<uint8_t>(value >> 8));
}

void DialogBytes::DoubleWord(DWORD value) {
    Word(value);
    Word(value >> 16);
}

void DialogBytes::Text(std::string_view text) {
    for (const wchar_t character : Wide(text)) Word(character);
    Word(0);
}
