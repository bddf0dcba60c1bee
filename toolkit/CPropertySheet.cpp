#include "toolkit/CPropertySheet.h"

#include <algorithm>

#include "toolkit/CWinApp.h"
#include "toolkit/CallDepth.h"

namespace {

// The frame around the pages, in dialog units.
constexpr int kMargin = 5;
constexpr int kGap = 4;
constexpr int kTabHeight = 15;
constexpr int kPageMargin = 3; // between the tab control's border and the page
constexpr int kButtonWidth = 50;
constexpr int kButtonHeight = 14;

} // namespace

CPropertySheet::CPropertySheet(const char* caption, CWnd* parent, int firstTab)
    : CDialog(0, parent), m_FirstTab(firstTab) {
    m_Text = caption;
}

void CPropertySheet::AddPage(CPropertyPage* page) {
    page->m_Sheet = this;
    page->m_Parent = this;
    m_Pages.push_back(page);
}

void CPropertySheet::LayOut() {
    int width = 0;
    int height = 0;
    for (const CPropertyPage* page : m_Pages) {
        if (page->GetDialogTemplate() == nullptr) continue;
        width = std::max(width, page->GetDialogTemplate()->width);
        height = std::max(height, page->GetDialogTemplate()->height);
    }
    const int tabWidth = width + 2 * kPageMargin;
    const int tabHeight = height + kTabHeight + 2 * kPageMargin;
    const int y = kMargin + tabHeight + kGap;
    const int x = kMargin + tabWidth - 3 * kButtonWidth - 2 * kGap;
    constexpr int kStep = kButtonWidth + kGap;
    using enum ControlKind;
    m_Rows = {{
        {IDC_TAB_CONTROL, Tab, "", kMargin, kMargin, tabWidth, tabHeight, style::Group},
        {IDOK, PushButton, "OK", x, y, kButtonWidth, kButtonHeight, style::Default},
        {IDCANCEL, PushButton, "Cancel", x + kStep, y, kButtonWidth, kButtonHeight},
        {IDC_APPLY_NOW, PushButton, "Apply", x + 2 * kStep, y, kButtonWidth, kButtonHeight,
         style::Disabled},
    }};
    m_FrameTemplate = {0, m_Text.c_str(), tabWidth + 2 * kMargin, y + kButtonHeight + kMargin,
                       m_Rows};
    m_DialogTemplate = &m_FrameTemplate;
}

bool CPropertySheet::OnInitDialog() {
    m_Tab = static_cast<CTabCtrl*>(GetDlgItem(IDC_TAB_CONTROL));
    m_ApplyButton = GetDlgItem(IDC_APPLY_NOW);
    for (const CPropertyPage* page : m_Pages) m_Tab->AddTab(page->GetWindowText());
    ShowPage(m_FirstTab);
    return true;
}

void CPropertySheet::RunLoop() {
    // Whoever opened the sheet only waits for it: between two handlers nothing is on its way.
    const calls::Waiting waiting;
    CDialog::RunLoop();
}

void CPropertySheet::OnDestroy() {
    for (CPropertyPage* page : m_Pages) page->DestroyDialogWindow();
    m_Tab = nullptr;
    m_ApplyButton = nullptr;
    m_Active = nullptr;
}

int CPropertySheet::DoModal() {
    LayOut();
    return CDialog::DoModal();
}

void CPropertySheet::ShowPage(int index) {
    if (index < 0 || index >= static_cast<int>(m_Pages.size())) return;
    CPropertyPage* page = m_Pages[static_cast<size_t>(index)];
    if (!page->IsCreated()) {
        if (!page->CreateDialogWindow()) return;
        page->OnInitDialog();
    }
    page->OnSetActive();
    if (m_Active != nullptr) m_Active->ShowWindow(SW_HIDE);
    m_Active = page;
    m_Tab->SetCurSel(index);
    page->ShowWindow(SW_SHOW);
}

bool CPropertySheet::SetActivePage(int index) {
    if (m_Tab == nullptr || HasEnded() || index == m_Tab->GetCurSel()) return true;
    if (m_Active != nullptr && !m_Active->OnKillActive()) {
        m_Tab->SetCurSel(m_Tab->GetCurSel()); // the display may already show the other one
        return false;
    }
    ShowPage(index);
    return true;
}

bool CPropertySheet::ApplyPages() {
    // The page in front comes first: as long as it may refuse, nothing has been applied.
    if (m_Active != nullptr && !m_Active->OnKillActive()) return false;
    for (CPropertyPage* page : m_Pages) {
        if (!page->IsCreated() || page->OnApply()) continue;
        // The page in front has let go and stays in front all the same.
        if (m_Active != nullptr) m_Active->OnSetActive();
        return false;
    }
    return true;
}

void CPropertySheet::OnOK() {
    if (ApplyPages()) EndDialog(IDOK);
}

void CPropertySheet::OnApplyNow() {
    if (ApplyPages() && m_Active != nullptr) m_Active->OnSetActive();
}

void CPropertySheet::OnCancel() {
    for (CPropertyPage* page : m_Pages)
        if (page->IsCreated()) page->OnReset();
    EndDialog(IDCANCEL);
}

void CPropertySheet::OnNotify(Notification& notification) {
    if (notification.id == IDC_APPLY_NOW && notification.event == Event::Clicked) OnApplyNow();
}

void CPropertySheet::PressButton(int button) {
    if (!IsCreated() || HasEnded()) return;
    if (button == PSBTN_OK) OnOK();
    if (button == PSBTN_CANCEL) OnCancel();
    if (button == PSBTN_APPLYNOW) OnApplyNow();
}

void CPropertySheet::UpdateApplyButton() {
    if (m_ApplyButton == nullptr) return;
    m_ApplyButton->EnableWindow(std::ranges::any_of(
        m_Pages, [](const CPropertyPage* page) { return page->IsPageModified(); }));
}
