#include "toolkit/qt/QtPeer.h"

#include <QGroupBox>
#include <algorithm>

namespace qt {

void QtPeer::Refresh(Change what) {
    s_HoldsFocus = m_Model.GetTemplate() != nullptr && HasFocus();
    if (what == Change::Enabled) ShowEnabled();
    if (what == Change::Visible) m_Widget->setVisible(m_Model.IsWindowVisible());
    s_HoldsFocus = false;
}

/// Qt enables nothing in what is disabled; but a disabled group does not disable its controls.
void QtPeer::ShowEnabled() {
    auto* const group = qobject_cast<QGroupBox*>(m_Widget->parentWidget());
    const bool alone = group != nullptr && !group->isEnabled();
    if (alone) group->setAttribute(Qt::WA_Disabled, false);
    m_Widget->setEnabled(m_Model.IsWindowEnabled());
    if (alone) group->setAttribute(Qt::WA_Disabled);
}

void QtPeer::RefreshAll() {
    Refresh(Change::Text);
    Refresh(Change::Enabled);
    Refresh(Change::Visible);
}

void QtPeer::Place(const QRect& place) {
    m_Widget->setGeometry(place);
}

void QtPeer::PlaceCentered(const QRect& place, QSize needed) {
    const int wider = std::max(0, needed.width() - place.width());
    const int higher = std::max(0, needed.height() - place.height());
    m_Widget->setGeometry(place.adjusted(0, -higher / 2, wider, higher - higher / 2));
}

QtPeer* PeerOf(const CWnd& window) {
    return static_cast<QtPeer*>(window.GetPeer());
}

std::unique_ptr<QtPeer> MakeControlPeer(CWnd& model, const Surroundings& in) {
    switch (model.GetKind()) {
    case ControlKind::PushButton:
        return MakePushButton(model, in);
    case ControlKind::CheckBox:
        return MakeCheckBox(model, in);
    case ControlKind::RadioButton:
        return MakeRadioButton(model, in);
    case ControlKind::GroupBox:
        return MakeGroupBox(model, in);
    case ControlKind::Edit:
        return MakeEdit(model, in);
    case ControlKind::ComboBox:
        return MakeComboBox(model, in);
    case ControlKind::Slider:
        return MakeSlider(model, in);
    case ControlKind::Tab:
        return MakeTabs(model, in);
    case ControlKind::Static:
        break;
    }
    return MakeStatic(model, in);
}

} // namespace qt
