#include "toolkit/qt/accessible_tabs.h"

#include <QAccessibleWidget>
#include <map>
#include <memory>

namespace qt {

namespace {

int g_Bars = 0; // that there are; with the last one goes the factory

/// One tab.
class TabInterface : public QAccessibleInterface, public QAccessibleActionInterface {
public:
    TabInterface(QTabBar& bar, int index) : m_Bar(bar), m_Index(index) {}

    bool isValid() const override { return m_Index < m_Bar.count(); }
    QObject* object() const override { return nullptr; }
    QWindow* window() const override { return m_Bar.window()->windowHandle(); }
    QAccessibleInterface* parent() const override {
        return QAccessible::queryAccessibleInterface(&m_Bar);
    }
    QAccessibleInterface* child(int) const override { return nullptr; }
    QAccessibleInterface* childAt(int, int) const override { return nullptr; }
    int childCount() const override { return 0; }
    int indexOfChild(const QAccessibleInterface*) const override { return -1; }
    QAccessible::Role role() const override { return QAccessible::PageTab; }

    QString text(QAccessible::Text kind) const override {
        if (kind != QAccessible::Name) return {};
        return m_Bar.tabText(m_Index).remove(u'&'); // the mark of its key
    }
    void setText(QAccessible::Text, const QString&) override {}

    QRect rect() const override {
        const QRect tab = m_Bar.tabRect(m_Index);
        return {m_Bar.mapToGlobal(tab.topLeft()), tab.size()};
    }

    QAccessible::State state() const override {
        const bool selected = m_Index == m_Bar.currentIndex();
        QAccessible::State state;
        state.disabled = !m_Bar.isEnabled() || !m_Bar.isTabEnabled(m_Index);
        state.invisible = !m_Bar.isVisible();
        state.selectable = true;
        state.selected = selected;
        state.focusable = true;
        state.focused = selected && m_Bar.hasFocus();
        return state;
    }

    void* interface_cast(QAccessible::InterfaceType type) override {
        return type == QAccessible::ActionInterface ? static_cast<QAccessibleActionInterface*>(this)
                                                    : nullptr;
    }

    QStringList actionNames() const override { return {pressAction()}; }
    void doAction(const QString& name) override {
        if (name != pressAction() || !m_Bar.isEnabled()) return;
        // Later: who asks for it waits, and a tab that cannot be left raises a box.
        QMetaObject::invokeMethod(
            &m_Bar, [&bar = m_Bar, index = m_Index] { bar.setCurrentIndex(index); },
            Qt::QueuedConnection);
    }
    QStringList keyBindingsForAction(const QString&) const override { return {}; }

private:
    QTabBar& m_Bar;
    int m_Index;
};

/// The row.
class BarInterface : public QAccessibleWidget {
public:
    explicit BarInterface(QTabBar& bar)
        : QAccessibleWidget(&bar, QAccessible::PageTabList), m_Bar(bar) {}
    ~BarInterface() override {
        for (const auto& [index, id] : m_Tabs) QAccessible::deleteAccessibleInterface(id);
    }

    int childCount() const override { return m_Bar.count(); }

    QAccessibleInterface* child(int index) const override {
        if (index < 0 || index >= m_Bar.count()) return nullptr;
        auto [found, isNew] = m_Tabs.try_emplace(index, 0);
        if (isNew)
            found->second =
                QAccessible::registerAccessibleInterface(new TabInterface(m_Bar, index));
        return QAccessible::accessibleInterface(found->second);
    }

    int indexOfChild(const QAccessibleInterface* tab) const override {
        for (int i = 0; i < childCount(); ++i)
            if (child(i) == tab) return i;
        return -1;
    }

    QAccessibleInterface* childAt(int x, int y) const override {
        return child(m_Bar.tabAt(m_Bar.mapFromGlobal(QPoint(x, y))));
    }

    QAccessibleInterface* focusChild() const override {
        return m_Bar.hasFocus() ? child(m_Bar.currentIndex()) : nullptr;
    }

    QString text(QAccessible::Text kind) const override {
        return kind == QAccessible::Name ? m_Bar.tabText(m_Bar.currentIndex()).remove(u'&')
                                         : QAccessibleWidget::text(kind);
    }

private:
    QTabBar& m_Bar;
    mutable std::map<int, QAccessible::Id> m_Tabs;
};

QAccessibleInterface* MakeInterface(const QString&, QObject* object) {
    auto* const bar = dynamic_cast<AccessibleTabBar*>(object);
    return bar != nullptr ? new BarInterface(*bar) : nullptr;
}

} // namespace

AccessibleTabBar::AccessibleTabBar(QWidget* parent) : QTabBar(parent) {
    if (g_Bars++ == 0) QAccessible::installFactory(MakeInterface);
}

AccessibleTabBar::~AccessibleTabBar() {
    if (--g_Bars == 0) QAccessible::removeFactory(MakeInterface);
}

} // namespace qt
