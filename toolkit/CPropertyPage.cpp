#include "toolkit/CPropertyPage.h"

#include "toolkit/CPropertySheet.h"

CPropertyPage::CPropertyPage(int dialogNumber) : CDialog(dialogNumber) {
    m_Visible = false; // until its tab comes to the front
}

void CPropertyPage::SetModified(bool modified) {
    m_Modified = modified;
    if (m_Sheet != nullptr) m_Sheet->UpdateApplyButton();
}

bool CPropertyPage::OnSetActive() {
    if (m_FirstActivation)
        m_FirstActivation = false; // OnInitDialog has just filled the controls
    else
        UpdateData(false);
    return true;
}

bool CPropertyPage::OnKillActive() {
    return UpdateData(true);
}

bool CPropertyPage::OnApply() {
    OnOK();
    return true;
}

void CPropertyPage::OnReset() {
    OnCancel();
}

void CPropertyPage::OnOK() {}

void CPropertyPage::OnCancel() {}
