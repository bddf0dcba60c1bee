#include "toolkit/CDialog.h"

#include "toolkit/CWinApp.h"
#include "toolkit/data_exchange.h"
#include "toolkit/guarded.h"
#include "toolkit/help.h"

CDialog::CDialog(int dialogNumber, CWnd* parent) {
    m_Id = dialogNumber;
    m_Parent = parent;
    m_DialogTemplate = FindDialogTemplate(dialogNumber);
    if (m_DialogTemplate != nullptr) m_Text = m_DialogTemplate->caption;
}

CDialog::~CDialog() = default;

void CDialog::AddControl(const ControlTemplate& row) {
    std::unique_ptr<CWnd> control = MakeControl(row.kind);
    control->m_Id = row.id;
    control->m_Kind = row.kind;
    control->m_Style = row.styles;
    control->m_Template = &row;
    control->m_Parent = this;
    control->m_Text = row.text;
    control->m_Visible = (row.styles & style::Hidden) == 0;
    control->m_Enabled = (row.styles & style::Disabled) == 0;
    control->m_Help = FindHelp(m_DialogTemplate->id, row.id);
    if (auto* combo = dynamic_cast<CComboBox*>(control.get()))
        for (const char* entry : row.entries) combo->AddString(entry);
    m_Controls.push_back(std::move(control));
}

bool CDialog::CreateDialogWindow() {
    if (m_DialogTemplate == nullptr || m_Created) return m_Created;
    m_Controls.clear();
    for (const ControlTemplate& row : m_DialogTemplate->controls) AddControl(row);
    if (!AfxGetApp()->GetDisplay().Create(*this)) return false;
    m_Created = true;
    for (const auto& control : m_Controls) control->m_Created = true;
    if (m_DialogTemplate->helpAsTips) ShowHelpAsTips();
    return true;
}

void CDialog::ShowHelpAsTips() {
    // Frames last: the tip of what lies inside goes first.
    for (const bool frames : {false, true})
        for (const auto& control : m_Controls)
            if (control->m_Help != nullptr && (control->m_Kind == ControlKind::GroupBox) == frames)
                AfxGetApp()->GetDisplay().SetToolTip(*control, control->m_Help, kHelpTipWidth);
}

void CDialog::DestroyDialogWindow() {
    if (!m_Created) return;
    OnDestroy();
    AfxGetApp()->GetDisplay().Destroy(*this);
    m_Created = false;
    for (const auto& control : m_Controls) {
        control->m_Created = false;
        control->m_Peer.reset();
    }
    m_Peer.reset();
}

int CDialog::DoModal() {
    m_Ended = false;
    m_Result = IDCANCEL;
    if (AfxGetApp()->IsCancelling() || !CreateDialogWindow()) return IDCANCEL;
    // The window goes on every way out, exceptions included.
    struct Window {
        CDialog& dialog;
        ~Window() {
            Guarded([this] { dialog.DestroyDialogWindow(); });
        }
    } window{*this};
    const CWinApp::Running running(*this);
    OnInitDialog();
    RunLoop();
    return m_Result;
}

void CDialog::RunLoop() {
    AfxGetApp()->GetDisplay().RunModal(*this);
}

void CDialog::EndDialog(int result) {
    if (m_Ended) return;
    m_Ended = true;
    m_Result = result;
    AfxGetApp()->GetDisplay().EndModal(*this);
}

CWnd* CDialog::GetDlgItem(int id) const {
    for (const auto& control : m_Controls)
        if (control->GetDlgCtrlID() == id) return control.get();
    return nullptr;
}

bool CDialog::UpdateData(bool fromControls) {
    struct Exchange {
        int& depth;
        explicit Exchange(int& counter) : depth(counter) { ++depth; }
        ~Exchange() { --depth; }
    } exchange(m_Exchanging);
    CDataExchange data(*this, fromControls);
    DoDataExchange(data);
    return true;
}

void CDialog::Notify(Notification& notification) {
    if (m_Exchanging > 0) return;
    const bool clicked = notification.event == Event::Clicked;
    if (clicked && notification.id == IDOK)
        OnOK();
    else if (clicked && notification.id == IDCANCEL)
        OnCancel();
    else
        OnNotify(notification);
}

std::vector<CButton*> CDialog::GetRadioGroup(const CWnd& control) const {
    std::vector<CButton*> group;
    bool found = false;
    for (const auto& next : m_Controls) {
        if ((next->GetStyle() & style::Group) != 0) {
            if (found) break;
            group.clear();
        }
        found = found || next.get() == &control;
        if (next->GetKind() == ControlKind::RadioButton)
            group.push_back(static_cast<CButton*>(next.get()));
    }
    if (!found) group.clear();
    return group;
}

void CDialog::CheckRadioButton(CButton& radio) {
    for (CButton* button : GetRadioGroup(radio)) button->SetCheck(button == &radio);
}

void CDialog::OnClose() {
    OnCancel();
}

void CDialog::DoDataExchange(CDataExchange&) {}

bool CDialog::OnInitDialog() {
    UpdateData(false);
    return true;
}

void CDialog::OnOK() {
    if (UpdateData(true)) EndDialog(IDOK);
}

void CDialog::OnCancel() {
    EndDialog(IDCANCEL);
}

void CDialog::OnDestroy() {}

void CDialog::OnNotify(Notification&) {}
