#include "toolkit/qt/QtWindow.h"

#include <QDialog>
#include <QLabel>
#include <algorithm>

#include "toolkit/CPropertySheet.h"
#include "toolkit/focus.h"
#include "toolkit/labels.h"
#include "toolkit/qt/QtTabs.h"
#include "toolkit/qt/layout.h"
#include "toolkit/qt/on_screen.h"
#include "toolkit/qt/qt_text.h"
#include "toolkit/qt/readable.h"

namespace qt {

namespace {

/// The room for a page in its sheet's tab control, or null.
QWidget* RoomOf(const CDialog& page) {
    const CPropertySheet* sheet =
        page.GetParent() != nullptr ? page.GetParent()->AsSheet() : nullptr;
    TabsPeer* tabs = sheet != nullptr ? TabsOf(*sheet) : nullptr;
    if (tabs == nullptr) return nullptr;
    const auto& pages = sheet->GetPages();
    const auto found = std::ranges::find(pages, &page);
    return tabs->Room(static_cast<int>(found - pages.begin()));
}

/// The widget that holds a control: that of its group, so that screen readers tell the
/// group, or the dialog's.
QWidget* HolderOf(const CWnd& control, QWidget* window) {
    const CWnd* group = GroupAround(control);
    return group != nullptr && PeerOf(*group) != nullptr ? PeerOf(*group)->Widget() : window;
}

void MakeControls(CDialog& dialog, const Surroundings& in) {
    const auto& controls = dialog.GetControls();
    const std::vector<Label> labels = LabelsOf(dialog);
    const auto make = [&](CWnd& control) {
        if (!IsInSight(control)) return; // no widget: screen readers would find it
        std::unique_ptr<QtPeer> made =
            MakeControlPeer(control, {HolderOf(control, in.parent), in.reports});
        QtPeer& peer = *made;
        control.SetPeer(std::move(made));
        peer.Widget()->setObjectName(QString::number(control.GetDlgCtrlID()));
        peer.Widget()->setAccessibleName(
            FromModel(HasNoCaption(control) ? NameWithoutCaption(control, labels) : ""));
        if (control.GetHelp() != nullptr) {
            peer.Widget()->setAccessibleDescription(control.GetHelp());
            peer.Widget()->setWhatsThis(control.GetHelp());
        }
        peer.RefreshAll();
    };
    // Groups hold the others, and lie below them.
    for (const bool groups : {true, false})
        for (const auto& control : controls)
            if ((control->GetKind() == ControlKind::GroupBox) == groups) make(*control);
    // What takes no input must not cover what does; frames lie below all.
    for (const ControlKind kind : {ControlKind::Static, ControlKind::GroupBox})
        for (auto control = controls.rbegin(); control != controls.rend(); ++control)
            if ((*control)->GetKind() == kind && PeerOf(**control) != nullptr)
                PeerOf(**control)->Widget()->lower();
    for (const auto& [text, control] : labels)
        if (PeerOf(*text) != nullptr && PeerOf(*control) != nullptr)
            static_cast<QLabel*>(PeerOf(*text)->Widget())->setBuddy(PeerOf(*control)->Widget());
}

/// The Tab key follows the order of the templates; a page comes right behind the
/// tabs of its sheet.
void OrderFocus(const CDialog& dialog) {
    QWidget* last = nullptr;
    if (dialog.AsPage() != nullptr)
        last = TabsOf(static_cast<CDialog&>(*dialog.GetParent()))->FocusWidget();
    for (const auto& control : dialog.GetControls()) {
        if (PeerOf(*control) == nullptr) continue;
        QWidget* next = PeerOf(*control)->FocusWidget();
        if (next->focusPolicy() == Qt::NoFocus) continue;
        if (last != nullptr) QWidget::setTabOrder(last, next);
        last = next;
    }
}

bool TakesTab(const QWidget& widget, const QWidget& window) {
    return (widget.focusPolicy() & Qt::TabFocus) == Qt::TabFocus && widget.isEnabled() &&
           widget.isVisibleTo(&window);
}

} // namespace

WindowPeer::WindowPeer(CDialog& model, QWidget* window)
    : QtPeer(model, window), m_Dialog(model), m_Reports(std::make_unique<QObject>()) {}

WindowPeer::~WindowPeer() {
    m_Reports.reset();
    delete Widget();
}

void WindowPeer::Refresh(Change what) {
    if (what == Change::Text) Widget()->setWindowTitle(FromModel(m_Dialog.GetWindowText()));
    const bool page = Top() == nullptr;
    if (what == Change::Enabled || page) QtPeer::Refresh(what); // RunModal shows a top-level one
    if (what != Change::Visible || !page || !m_Dialog.IsWindowVisible()) return;
    // The focus goes into a page that comes to the front, unless it is on the tabs.
    const TabsPeer* tabs = TabsOf(static_cast<CDialog&>(*m_Dialog.GetParent()));
    QWidget* first = FocusWidget();
    if (first != nullptr && !tabs->FocusWidget()->hasFocus()) first->setFocus(Qt::TabFocusReason);
}

QWidget* WindowPeer::FocusWidget() const {
    QWidget* before = Widget()->focusWidget();
    if (before != nullptr && TakesTab(*before, *Widget())) return before;
    for (const auto& control : m_Dialog.GetControls()) {
        QWidget* widget = PeerOf(*control) != nullptr ? PeerOf(*control)->FocusWidget() : nullptr;
        if (widget != nullptr && TakesTab(*widget, *Widget())) return widget;
    }
    return nullptr;
}

bool MakeWindow(CDialog& dialog, const ModalStack& stack, QWidget* owner) {
    const bool isPage = dialog.AsPage() != nullptr;
    const bool isSheet = dialog.AsSheet() != nullptr;
    QWidget* room = isPage ? RoomOf(dialog) : nullptr;
    if (isPage && room == nullptr) return false;
    QWidget* window = isPage ? new QWidget(room) : new TopWindow(dialog, stack, owner);
    auto peer = std::make_unique<WindowPeer>(dialog, window);
    if (isSheet) TakeKeptPlace(*window);
    window->setObjectName(isSheet ? QString("sheet") : QString::number(dialog.GetDlgCtrlID()));
    const Surroundings in{window, peer->Reports()};
    QtPeer& shown = *peer;
    dialog.SetPeer(std::move(peer));
    MakeControls(dialog, in);
    shown.RefreshAll();
    LayOut(dialog);
    MakeReadable(*window);
    OrderFocus(dialog);
    return true;
}

void TakeDownWindow(CDialog& dialog) {
    dialog.SetPeer(nullptr);
}

} // namespace qt
