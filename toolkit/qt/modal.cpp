#include "toolkit/qt/modal.h"

#include <QApplication>
#include <QDrag>
#include <QEvent>
#include <QWindow>

#include "toolkit/input.h"
#include "toolkit/qt/QtPeer.h"
#include "toolkit/qt/layout.h"
#include "toolkit/qt/on_screen.h"
#include "toolkit/qt/readable.h"

namespace qt {

namespace {

constexpr auto kEndWanted = QEvent::User;

/// Makes a window that behaves well above a host that is not ours.
void Adapt(QDialog& window) {
    window.setAttribute(Qt::WA_QuitOnClose, false); // the host does not end with it
    window.setLayoutDirection(Qt::LeftToRight);     // as the texts and templates run
    // A window without an owner still stays above the host's own one.
    const QWidget* host = QApplication::activeWindow();
    if (window.parentWidget() != nullptr || host == nullptr || host->windowHandle() == nullptr)
        return;
    window.winId();
    window.windowHandle()->setTransientParent(host->windowHandle());
}

} // namespace

TopWindow::TopWindow(CDialog& model, const ModalStack& stack, QWidget* owner)
    : QDialog(owner), m_Model(model), m_Stack(stack), m_HelpTip(model) {
    setWindowFlags(Qt::Dialog | Qt::CustomizeWindowHint | Qt::WindowTitleHint |
                   Qt::WindowSystemMenuHint | Qt::WindowCloseButtonHint);
    connect(qApp, &QApplication::focusChanged, this,
            [this](QWidget*, QWidget* focus) { ShowDefault(focus); });
}

void TopWindow::ShowDefault(const QWidget* focus) {
    if (focus == nullptr || focus->window() != this) return; // looks as it did
    const QList<QPushButton*> buttons = findChildren<QPushButton*>();
    if (m_Default == nullptr)
        for (QPushButton* button : buttons)
            if (button->isDefault()) m_Default = button;
    const QPushButton* pressed = qobject_cast<const QPushButton*>(focus);
    if (pressed == nullptr && !focus->property(kTakesReturn).toBool()) pressed = m_Default;
    for (QPushButton* button : buttons)
        if (button->isDefault() != (button == pressed)) button->setDefault(button == pressed);
}

void TopWindow::WantEnd() {
    m_WantsEnd = true;
    // By way of an event, since its loop may only just be about to begin.
    if (m_Stack.Innermost() == this) QCoreApplication::postEvent(this, new QEvent(kEndWanted));
}

void TopWindow::EndIfWanted() {
    if (m_WantsEnd && m_Stack.Innermost() == this) done(0);
}

void TopWindow::reject() {
    input::Close(m_Model);
    EndIfWanted();
}

bool TopWindow::event(QEvent* event) {
    if (event->type() == QEvent::WindowActivate && LearnFrame(*this)) {
        LayOut(m_Model);
        MoveOntoScreen(*this);
    }
    if (event->type() == kEndWanted) {
        EndIfWanted();
        return true;
    }
    const bool taken = QDialog::event(event);
    if (event->type() == QEvent::ApplicationPaletteChange || event->type() == QEvent::StyleChange)
        MakeReadable(*this);
    return taken;
}

bool TopWindow::focusNextPrevChild(bool next) {
    return QtPeer::HoldsFocus() || QDialog::focusNextPrevChild(next);
}

void TopWindow::keyPressEvent(QKeyEvent* key) {
    if (!m_HelpTip.TakesKey(*key)) QDialog::keyPressEvent(key);
}

void ModalStack::CancelBoxes() const {
    // By way of events, since a loop may only just be about to begin.
    const auto reject = [](QDialog* window) {
        QMetaObject::invokeMethod(window, &QDialog::reject, Qt::QueuedConnection);
    };
    // A menu and a drag have loops of their own.
    if (QWidget* popup = QApplication::activePopupWidget())
        QMetaObject::invokeMethod(popup, &QWidget::close, Qt::QueuedConnection);
    QDrag::cancel();
    for (QDialog* window : m_Windows) {
        if (window == nullptr || dynamic_cast<TopWindow*>(window) != nullptr) continue;
        for (QDialog* question : window->findChildren<QDialog*>()) reject(question);
        reject(window);
    }
}

ModalRun::ModalRun(ModalStack& stack, QDialog& window)
    : m_Stack(stack), m_HeldKeys(window), m_Look(window) {
    Adapt(window);
    m_Stack.m_Windows.push_back(&window);
}

ModalRun::~ModalRun() {
    m_Stack.m_Windows.pop_back();
    QWidget* outer = m_Stack.Innermost();
    if (outer == nullptr) return;
    outer->activateWindow(); // not every window manager gives the focus back
    if (auto* dialog = dynamic_cast<TopWindow*>(outer)) dialog->EndIfWanted();
}

} // namespace qt
