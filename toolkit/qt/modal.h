// Modal windows, which nest: only the innermost one can end.

#pragma once

#include <QDialog>
#include <QPointer>
#include <QPushButton>
#include <vector>

#include "toolkit/qt/DialogLook.h"
#include "toolkit/qt/HeldKeys.h"
#include "toolkit/qt/HelpTip.h"
#include "toolkit/qt/QtApplication.h"

class CDialog;

namespace qt {

class ModalStack;

/// The property of a widget that makes something of Return itself.
inline constexpr char kTakesReturn[] = "takesReturn";

/// The top-level window of a dialog.
class TopWindow : public QDialog {
public:
    TopWindow(CDialog& model, const ModalStack& stack, QWidget* owner);

    /// The model wants the window's loop to end: now, or as soon as those that run
    /// inside it have ended.
    void WantEnd();
    /// This window is the innermost one again.
    void EndIfWanted();

    /// Gives the look of a default button to the one that Return will press now, if any.
    void ShowDefault(const QWidget* focus);

    /// Escape, or the frame's close button.
    void reject() override;

protected:
    bool event(QEvent* event) override;
    bool focusNextPrevChild(bool next) override;
    void keyPressEvent(QKeyEvent* key) override;

private:
    CDialog& m_Model;
    const ModalStack& m_Stack;
    HelpTip m_HelpTip;
    bool m_WantsEnd = false;
    QPointer<QPushButton> m_Default; // that of the template
};

/// The modal windows that run, the innermost last.
class ModalStack {
public:
    QWidget* Innermost() const { return m_Windows.empty() ? nullptr : m_Windows.back(); }
    /// Refuses all that are no dialogs of ours, as soon as their loops run.
    void CancelBoxes() const;

private:
    friend class ModalRun;
    std::vector<QDialog*> m_Windows;
};

/// One modal window, while it runs.
class ModalRun {
public:
    ModalRun(ModalStack& stack, QDialog& window);
    ~ModalRun();
    ModalRun(const ModalRun&) = delete;
    ModalRun& operator=(const ModalRun&) = delete;

private:
    ModalStack& m_Stack;
    KeepLocale m_Locale;
    HeldKeys m_HeldKeys;
    DialogLook m_Look;
};

} // namespace qt
