#include "toolkit/data_exchange.h"

void DDX_Check(CDataExchange& exchange, int id, int32_t& value) {
    CButton* button = nullptr;
    DDX_Control(exchange, id, button);
    if (button == nullptr) return;
    if (exchange.FromControls())
        value = button->GetCheck() ? 1 : 0;
    else
        button->SetCheck(value != 0);
}

void DDX_Radio(CDataExchange& exchange, int id, int32_t& value) {
    const auto& controls = exchange.GetDialog().GetControls();
    size_t at = 0;
    while (at < controls.size() && controls[at]->GetDlgCtrlID() != id) ++at;
    if (at == controls.size()) return;
    if (exchange.FromControls()) value = -1;
    int32_t index = 0;
    do {
        if (controls[at]->GetKind() != ControlKind::RadioButton) continue;
        auto& radio = static_cast<CButton&>(*controls[at]);
        if (!exchange.FromControls())
            radio.SetCheck(index == value);
        else if (radio.GetCheck())
            value = index;
        ++index;
    } while (++at < controls.size() && (controls[at]->GetStyle() & style::Group) == 0);
}

void DDX_Text(CDataExchange& exchange, int id, std::string& value) {
    CWnd* control = exchange.GetDialog().GetDlgItem(id);
    if (control == nullptr) return;
    if (exchange.FromControls())
        value = control->GetWindowText();
    else
        control->SetWindowText(value);
}

void DDX_CBIndex(CDataExchange& exchange, int id, int32_t& value) {
    CComboBox* combo = nullptr;
    DDX_Control(exchange, id, combo);
    if (combo == nullptr) return;
    if (exchange.FromControls())
        value = combo->GetCurSel();
    else
        combo->SetCurSel(value);
}
