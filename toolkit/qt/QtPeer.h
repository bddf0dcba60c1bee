// QtPeer: what the display keeps for one window: its widget.
//
// A control's peer makes its widget, brings it in step with the model and reports
// what the person does to input.h. Reports start at signals whose receiver is the
// dialog's `reports` object; when that goes, before the widgets do, nothing is
// reported any more. What the model changes is shown under a QSignalBlocker and
// so never comes back as input.

#pragma once

#include <QPointer>
#include <QRect>
#include <QWidget>
#include <memory>

#include "toolkit/CDialog.h"

namespace qt {

class QtPeer : public DisplayPeer {
public:
    QtPeer(CWnd& model, QWidget* widget) : m_Model(model), m_Widget(widget) {}

    CWnd& Model() const { return m_Model; }
    /// Null once the widget has gone.
    QWidget* Widget() const { return m_Widget; }

    /// Brings the widget in step. Base: enabled, and visible.
    virtual void Refresh(Change what);
    /// Brings in step all that a new widget does not have from the model yet.
    virtual void RefreshAll();
    /// Puts the widget to its place. Base: exactly there.
    virtual void Place(const QRect& place);
    /// The widget that takes the focus for this one.
    virtual QWidget* FocusWidget() const { return m_Widget; }
    /// True iff that widget has the focus, or will have it with its window.
    bool HasFocus() const { return m_Widget->window()->focusWidget() == FocusWidget(); }
    /// True while a control is being disabled or hidden that may come back, or else is
    /// left at the end of the handler: Qt must not move the focus on at once.
    static bool HoldsFocus() { return s_HoldsFocus; }

protected:
    /// Puts the widget to `place` with its centre line kept, at least as high as
    /// `needed`, and as wide: it is better to reach into the gap beside the place
    /// than to lose the end of a text.
    void PlaceCentered(const QRect& place, QSize needed);

    CWnd& m_Model;

private:
    void ShowEnabled();

    QPointer<QWidget> m_Widget;
    static inline bool s_HoldsFocus = false;
};

/// The peer of a window that the Qt display has made; null without one.
QtPeer* PeerOf(const CWnd& window);

/// What a control is made in.
struct Surroundings {
    QWidget* parent;  // the widget of the dialog
    QObject* reports; // receives the signals
};

// One for each kind of control.
std::unique_ptr<QtPeer> MakeStatic(CWnd& model, const Surroundings& in);
std::unique_ptr<QtPeer> MakeGroupBox(CWnd& model, const Surroundings& in);
std::unique_ptr<QtPeer> MakePushButton(CWnd& model, const Surroundings& in);
std::unique_ptr<QtPeer> MakeCheckBox(CWnd& model, const Surroundings& in);
std::unique_ptr<QtPeer> MakeRadioButton(CWnd& model, const Surroundings& in);
std::unique_ptr<QtPeer> MakeEdit(CWnd& model, const Surroundings& in);
std::unique_ptr<QtPeer> MakeComboBox(CWnd& model, const Surroundings& in);
std::unique_ptr<QtPeer> MakeSlider(CWnd& model, const Surroundings& in);
std::unique_ptr<QtPeer> MakeTabs(CWnd& model, const Surroundings& in);

/// Makes the peer for a control of any kind.
std::unique_ptr<QtPeer> MakeControlPeer(CWnd& model, const Surroundings& in);

} // namespace qt
