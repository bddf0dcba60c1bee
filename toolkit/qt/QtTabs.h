// QtTabs: the tab control of a property sheet, with a room for each page.

#pragma once

#include "toolkit/qt/QtPeer.h"

class CTabCtrl;

namespace qt {

class TabWidget;

class TabsPeer : public QtPeer {
public:
    TabsPeer(CTabCtrl& model, TabWidget* tabs, const Surroundings& in);

    void Refresh(Change what) override;
    void RefreshAll() override;
    /// The row of tabs, not what lies below it.
    QWidget* FocusWidget() const override;

    /// The widget that holds the page of tab `index`, or null.
    QWidget* Room(int index) const;
    /// Size of the whole control around a page of size `page`.
    QSize SizeAround(QSize page) const;

private:
    void ShowTitles();
    void ShowSelection();
    void Choose(int index);

    CTabCtrl& m_Tabs;
    TabWidget* m_Widget;
};

/// The peer of a sheet's tab control, or null.
TabsPeer* TabsOf(const CDialog& sheet);

} // namespace qt
