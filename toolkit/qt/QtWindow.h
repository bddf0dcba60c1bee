// QtWindow: the window of a dialog, a sheet or a page, with its controls.

#pragma once

#include "toolkit/qt/QtPeer.h"
#include "toolkit/qt/modal.h"

namespace qt {

class WindowPeer : public QtPeer {
public:
    /// Owns `window`.
    WindowPeer(CDialog& model, QWidget* window);
    ~WindowPeer() override;

    CDialog& Dialog() const { return m_Dialog; }
    QObject* Reports() const { return m_Reports.get(); }
    /// The window of a top-level dialog; null for a page.
    TopWindow* Top() const { return dynamic_cast<TopWindow*>(Widget()); }

    void Refresh(Change what) override;
    /// The widget that has the focus when the window comes up, or had it last.
    QWidget* FocusWidget() const override;

private:
    CDialog& m_Dialog;
    std::unique_ptr<QObject> m_Reports;
};

/// Makes the hidden window of a dialog, sheet or page, and its controls. Returns
/// false for a page without a tab.
bool MakeWindow(CDialog& dialog, const ModalStack& stack, QWidget* owner);
/// Takes it down; nothing is reported from then on.
void TakeDownWindow(CDialog& dialog);

} // namespace qt
