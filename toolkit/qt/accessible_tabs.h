// A row of tabs as screen readers see it: a list of which one tab is selected. Qt's own says of
// the selected one that it has the focus, wherever that is.

#pragma once

#include <QTabBar>

namespace qt {

/// Told to screen readers as described above, from its making to its end.
class AccessibleTabBar : public QTabBar {
public:
    explicit AccessibleTabBar(QWidget* parent);
    ~AccessibleTabBar() override;
};

} // namespace qt
