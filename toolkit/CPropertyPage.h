// CPropertyPage: one tab of a property sheet.

#pragma once

#include "toolkit/CDialog.h"

class CPropertySheet;

class CPropertyPage : public CDialog {
public:
    explicit CPropertyPage(int dialogNumber);
    const CPropertyPage* AsPage() const override { return this; }

    /// TRUE marks the page as changed and enables the sheet's Apply button; FALSE
    /// takes the mark back. Apply is enabled while any page is marked.
    void SetModified(bool modified);
    bool IsPageModified() const { return m_Modified; }

    // What the sheet calls.
    /// Base: UpdateData(FALSE), except on the first activation; returns true.
    virtual bool OnSetActive();
    /// Base: UpdateData(TRUE); returns its result. False keeps the tab.
    virtual bool OnKillActive();
    /// Base: OnOK; returns true. False keeps the sheet open.
    virtual bool OnApply();
    /// Base: OnCancel.
    virtual void OnReset();

protected:
    void OnOK() override;
    void OnCancel() override;

private:
    friend class CPropertySheet;
    CPropertySheet* m_Sheet = nullptr;
    bool m_Modified = false;
    bool m_FirstActivation = true;
};
