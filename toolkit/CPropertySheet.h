// CPropertySheet: a modal dialog with tabs and the buttons OK, Cancel and Apply.
//
// The order in which it calls its pages; "each page" means each page, in tab
// order, whose dialog exists, which it does from the first time that its tab has
// been in front:
//
//   the sheet opens     OnInitDialog, OnSetActive of the first tab
//   another tab         OnKillActive of the page in front (false: the tab stays);
//                       OnInitDialog of the new page, if it has no dialog yet;
//                       its OnSetActive
//   Apply               OnKillActive of the page in front (false: nothing more);
//                       OnApply of each page (false: no further page, the sheet
//                       stays); OnSetActive of the page in front in either case
//   OK                  as Apply, but the sheet closes unless a page refused
//   Cancel, the frame   OnReset of each page; the sheet closes
//   the sheet closes    OnDestroy of each page

#pragma once

#include <array>

#include "toolkit/CPropertyPage.h"

class CPropertySheet : public CDialog {
public:
    /// `parent` may be null. `firstTab` counts from 0.
    CPropertySheet(const char* caption, CWnd* parent, int firstTab);
    const CPropertySheet* AsSheet() const override { return this; }

    /// Appends a tab, titled with the caption of the page's dialog. The page must
    /// outlive the sheet's run and stays its owner's.
    void AddPage(CPropertyPage* page);

    /// Runs until the sheet closes; returns IDOK or IDCANCEL.
    int DoModal() override;

    /// PSM_PRESSBUTTON: acts exactly as if the person had pressed PSBTN_OK,
    /// PSBTN_CANCEL or PSBTN_APPLYNOW.
    void PressButton(int button);

    /// A tab was chosen, counted from 0. Returns false if the page in front can't be
    /// left.
    bool SetActivePage(int index);
    /// The page in front; null while the sheet does not run.
    CPropertyPage* GetActivePage() const { return m_Active; }
    const std::vector<CPropertyPage*>& GetPages() const { return m_Pages; }

protected:
    bool OnInitDialog() override;
    void RunLoop() override;
    void OnDestroy() override;
    void OnOK() override;
    void OnCancel() override;
    void OnNotify(Notification& notification) override;

private:
    friend class CPropertyPage;
    void LayOut();
    void ShowPage(int index);
    bool ApplyPages();
    void OnApplyNow();
    void UpdateApplyButton();

    std::vector<CPropertyPage*> m_Pages;
    int m_FirstTab;
    CPropertyPage* m_Active = nullptr;
    CTabCtrl* m_Tab = nullptr;
    CWnd* m_ApplyButton = nullptr;
    // The frame's own template, made to fit the largest page.
    std::array<ControlTemplate, 4> m_Rows{};
    DialogTemplate m_FrameTemplate{};
};
