#include "toolkit/CWnd.h"

#include "toolkit/CDialog.h"
#include "toolkit/CWinApp.h"
#include "toolkit/focus.h"

namespace {

int ShowMessage(CWnd* owner, const char* text, const char* title, unsigned flags) {
    if (AfxGetApp()->IsCancelling()) return (flags & MB_YESNO) != 0 ? IDNO : IDOK;
    const CWinApp::Box box;
    return AfxGetApp()->GetDisplay().ShowMessage(owner, text, title != nullptr ? title : "Error",
                                                 flags);
}

} // namespace

CWnd::~CWnd() = default;

void CWnd::Changed(Change what) {
    if (m_Created) AfxGetApp()->GetDisplay().Refresh(*this, what);
}

void CWnd::SetWindowText(std::string_view text) {
    if (text == m_Text) return;
    m_Text = text;
    Changed(Change::Text);
    if (m_Created && m_Kind == ControlKind::Edit && (m_Style & style::MultiLine) == 0) {
        Notification notification{m_Id, Event::TextChanged};
        if (auto* dialog = dynamic_cast<CDialog*>(m_Parent)) dialog->Notify(notification);
    }
}

void CWnd::EnableWindow(bool enable) {
    if (enable == m_Enabled) return;
    const FocusKept focus(*this);
    m_Enabled = enable;
    Changed(Change::Enabled);
}

void CWnd::ShowWindow(int command) {
    const bool visible = command != SW_HIDE;
    if (visible == m_Visible) return;
    const FocusKept focus(*this);
    m_Visible = visible;
    Changed(Change::Visible);
}

int CWnd::MessageBox(const char* text, const char* title, unsigned flags) {
    return ShowMessage(this, text, title, flags);
}

int MessageBoxWithoutOwner(const char* text, const char* title, unsigned flags) {
    return ShowMessage(nullptr, text, title, flags);
}

bool CWnd::MeasureTabbedText(std::string_view text, int& width) const {
    return AfxGetApp()->GetDisplay().MeasureTabbedText(*this, text, width);
}

void CWnd::MessageBeep(unsigned flags) {
    AfxGetApp()->GetDisplay().Beep(flags);
}

void CWnd::SetTimer(unsigned id, unsigned milliseconds) {
    if (m_Created) AfxGetApp()->GetDisplay().StartTimer(*this, id, milliseconds);
}

void CWnd::KillTimer(unsigned id) {
    if (m_Created) AfxGetApp()->GetDisplay().StopTimer(*this, id);
}

void CWnd::OnTimer(unsigned) {}
