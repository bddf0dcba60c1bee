#include "toolkit/qt/HelpTip.h"

#include <QApplication>
#include <QCursor>
#include <QFontMetrics>
#include <QTextDocument>
#include <QToolTip>

#include "toolkit/CPropertySheet.h"
#include "toolkit/help.h"
#include "toolkit/qt/QtPeer.h"
#include "toolkit/qt/qt_text.h"

namespace qt {

namespace {

constexpr int kPointerRoom = 14;    // pixels
constexpr int kTipTime = 5 * 60000; // milliseconds: a person who asked reads as long as it takes

/// The control of the dialog, or of its page in front, that has the keyboard.
CWnd* FocusedIn(const CDialog& dialog) {
    const CPropertySheet* sheet = dialog.AsSheet();
    if (sheet != nullptr && sheet->GetActivePage() != nullptr)
        if (CWnd* control = FocusedIn(*sheet->GetActivePage())) return control;
    for (const auto& control : dialog.GetControls()) {
        const QtPeer* peer = PeerOf(*control);
        if (peer != nullptr && peer->Widget() != nullptr && peer->FocusWidget()->hasFocus())
            return control.get();
    }
    return nullptr;
}

/// Takes tips down at once. What QToolTip::hideText does comes 300 ms later, and would take
/// along the same text if that has been shown again meanwhile.
void HideTips() {
    for (QWidget* window : QApplication::topLevelWidgets())
        if (window->inherits("QTipLabel")) window->hide();
}

} // namespace

QString TipText(const char* text, int maxWidth) {
    QString tip = Wrapped(LinesFromModel(text), QToolTip::font(), maxWidth);
    if (Qt::mightBeRichText(tip)) tip = Qt::convertFromPlainText(tip, Qt::WhiteSpacePre);
    return tip;
}

bool HelpTip::IsShown() const {
    return QToolTip::isVisible() && !m_Text.isEmpty() && QToolTip::text() == m_Text;
}

bool HelpTip::TakesKey(const QKeyEvent& key) {
    if (key.key() == Qt::Key_F1) {
        ShowNext();
        return true;
    }
    if (key.key() != Qt::Key_Escape || !IsShown()) return false;
    HideTips();
    m_Text.clear(); // a second Escape means the dialog
    return true;
}

void HelpTip::ShowNext() {
    CWnd* control = NextHelp(m_Dialog, FocusedIn(m_Dialog), IsShown() ? m_Control : nullptr);
    const QtPeer* peer = control != nullptr ? PeerOf(*control) : nullptr;
    if (peer == nullptr || peer->Widget() == nullptr) return;
    QWidget& widget = *peer->Widget();
    m_Control = control;
    m_Text = TipText(HelpText(*control).c_str(), kHelpTipWidth);
    HideTips();
    // Right below: Qt leaves room for a pointer.
    QPoint place = widget.mapToGlobal(widget.rect().bottomLeft()) - QPoint(0, kPointerRoom);
    // A tip that came up over the pointer would go at once: the pointer has left the window.
    const QSize size = QFontMetrics(QToolTip::font()).size(0, m_Text);
    const QRect around = QRect(place, size).adjusted(0, 0, 2 * kPointerRoom, 3 * kPointerRoom);
    if (around.contains(QCursor::pos())) place.setY(QCursor::pos().y());
    QToolTip::showText(place, m_Text, &widget, {}, kTipTime);
}

} // namespace qt
