#include "toolkit/qt/QtTabs.h"

#include <QShortcut>
#include <QSignalBlocker>
#include <QStyleOptionTabWidgetFrame>
#include <QTabBar>
#include <QTabWidget>

#include "toolkit/controls.h"
#include "toolkit/guarded.h"
#include "toolkit/input.h"
#include "toolkit/qt/accessible_tabs.h"
#include "toolkit/qt/layout.h"
#include "toolkit/qt/qt_text.h"

namespace qt {

class TabWidget : public QTabWidget {
public:
    explicit TabWidget(QWidget* parent) : QTabWidget(parent) {
        auto* const bar = new AccessibleTabBar(this);
        bar->setDrawBase(false); // the frame around the pages is its line
        setTabBar(bar);
        setFocusProxy(nullptr); // only the row of tabs takes the keyboard
        setFocusPolicy(Qt::NoFocus);
    }

    /// What stands around a page: the tabs and the frame.
    QSize Overhead() const {
        constexpr int kAny = 1000;
        QStyleOptionTabWidgetFrame option;
        initStyleOption(&option);
        option.rect = QRect(0, 0, kAny, kAny);
        const QSize inside =
            style()->subElementRect(QStyle::SE_TabWidgetTabContents, &option, this).size();
        return QSize(kAny, kAny) - inside;
    }
};

TabsPeer::TabsPeer(CTabCtrl& model, TabWidget* tabs, const Surroundings& in)
    : QtPeer(model, tabs), m_Tabs(model), m_Widget(tabs) {
    QObject::connect(tabs, &QTabWidget::currentChanged, in.reports, [this](int index) {
        Guarded([&] {
            // The new tab may only show if the model lets go of the old one.
            ShowSelection();
            Choose(index);
        });
    });
    // Qt's own keys for the tabs work only while the focus is among them.
    const auto turn = [this](int step) {
        const int count = static_cast<int>(m_Tabs.GetTitles().size());
        if (count > 0) Choose((m_Tabs.GetCurSel() + step + count) % count);
    };
    const std::pair<QKeyCombination, int> keys[] = {
        {Qt::CTRL | Qt::Key_Tab, 1},
        {Qt::CTRL | Qt::Key_PageDown, 1},
        {Qt::CTRL | Qt::SHIFT | Qt::Key_Tab, -1},
        {Qt::CTRL | Qt::Key_PageUp, -1},
    };
    for (const auto& [key, step] : keys) {
        auto* shortcut = new QShortcut(key, in.parent);
        QObject::connect(shortcut, &QShortcut::activated, in.reports,
                         [turn, by = step] { Guarded([&] { turn(by); }); });
    }
}

void TabsPeer::Refresh(Change what) {
    if (what == Change::Entries) ShowTitles();
    if (what == Change::Entries || what == Change::Selection) ShowSelection();
    QtPeer::Refresh(what);
}

void TabsPeer::RefreshAll() {
    QtPeer::RefreshAll();
    Refresh(Change::Entries);
}

QWidget* TabsPeer::FocusWidget() const {
    return m_Widget->tabBar();
}

QWidget* TabsPeer::Room(int index) const {
    return m_Widget->widget(index);
}

QSize TabsPeer::SizeAround(QSize page) const {
    return page + m_Widget->Overhead();
}

void TabsPeer::ShowTitles() {
    {
        const QSignalBlocker blocker(m_Widget);
        const auto& titles = m_Tabs.GetTitles();
        for (size_t i = static_cast<size_t>(m_Widget->count()); i < titles.size(); ++i)
            m_Widget->addTab(new QWidget, FromModel(titles[i]));
    }
    // Only now is it known how much room the tabs take.
    LayOut(static_cast<CDialog&>(*m_Tabs.GetParent()));
}

void TabsPeer::ShowSelection() {
    const QSignalBlocker blocker(m_Widget);
    m_Widget->setCurrentIndex(m_Tabs.GetCurSel());
}

void TabsPeer::Choose(int index) {
    input::Select(m_Tabs, index);
}

std::unique_ptr<QtPeer> MakeTabs(CWnd& model, const Surroundings& in) {
    return std::make_unique<TabsPeer>(static_cast<CTabCtrl&>(model), new TabWidget(in.parent), in);
}

TabsPeer* TabsOf(const CDialog& sheet) {
    const CWnd* tabs = sheet.GetDlgItem(IDC_TAB_CONTROL);
    if (tabs == nullptr || tabs->GetKind() != ControlKind::Tab) return nullptr;
    return static_cast<TabsPeer*>(PeerOf(*tabs));
}

} // namespace qt
