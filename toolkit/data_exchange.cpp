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
    const CWnd* first = exchange.GetDialog().GetDlgItem(id);
    if (first == nullptr) return;
    if (exchange.FromControls()) value = -1;
    int32_t index = 0;
    for (CButton* radio : exchange.GetDialog().GetRadioGroup(*first)) {
        if (!exchange.FromControls())
            radio->SetCheck(index == value);
        else if (radio->GetCheck())
            value = index;
        ++index;
    }
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
