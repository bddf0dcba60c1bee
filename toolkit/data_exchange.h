// Data exchange: one list of (control, field) serves both directions.

#pragma once

#include "toolkit/CDialog.h"

class CDataExchange {
public:
    CDataExchange(CDialog& dialog, bool fromControls)
        : m_Dialog(dialog), m_FromControls(fromControls) {}
    /// True: controls to fields. False: fields to controls.
    bool FromControls() const { return m_FromControls; }
    CDialog& GetDialog() const { return m_Dialog; }

private:
    CDialog& m_Dialog;
    bool m_FromControls;
};

/// Binds a control object: `control` points to the model with number `id` from
/// the first exchange on, or stays null if the dialog has no such control.
template <class Control> void DDX_Control(CDataExchange& exchange, int id, Control*& control) {
    control = dynamic_cast<Control*>(exchange.GetDialog().GetDlgItem(id));
}

/// Check mark of check box `id`: 0 or 1.
void DDX_Check(CDataExchange& exchange, int id, int32_t& value);
/// Index of the checked radio button of the group that begins at `id`, hidden
/// ones counted; -1: none. The group ends before the next control with the group
/// style.
void DDX_Radio(CDataExchange& exchange, int id, int32_t& value);
/// Text of edit `id`.
void DDX_Text(CDataExchange& exchange, int id, std::string& value);
/// Index of the selected entry of combo box `id`; -1: none.
void DDX_CBIndex(CDataExchange& exchange, int id, int32_t& value);
