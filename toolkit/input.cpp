#include "toolkit/input.h"

#include <utility>

#include "toolkit/CWinApp.h"
#include "toolkit/CallDepth.h"
#include "toolkit/focus.h"
#include "toolkit/guarded.h"

namespace {

/// The dialog of a control that can take input now, or null: the control and its
/// page are enabled and visible, and neither their dialog nor its sheet has ended.
CDialog* DialogTakingInput(const CWnd& control) {
    if (!control.IsCreated()) return nullptr;
    for (const CWnd* window = &control; window != nullptr; window = window->GetParent()) {
        const auto* dialog = dynamic_cast<const CDialog*>(window);
        if (!window->IsWindowVisible() || !window->IsWindowEnabled()) return nullptr;
        if (dialog != nullptr && dialog->HasEnded()) return nullptr;
        // A top-level dialog takes input whatever its owner does.
        if (dialog != nullptr && dynamic_cast<const CPropertyPage*>(dialog) == nullptr) break;
    }
    return dynamic_cast<CDialog*>(control.GetParent());
}

/// The top-level dialog of a control; null without one.
const CDialog* WindowOf(const CWnd& control) {
    for (const CWnd* window = &control; window != nullptr; window = window->GetParent()) {
        const auto* dialog = dynamic_cast<const CDialog*>(window);
        if (dialog != nullptr && dynamic_cast<const CPropertyPage*>(dialog) == nullptr)
            return dialog;
    }
    return nullptr;
}

/// Whether the window of a control waits for one that was opened later. Window systems
/// keep a person from it, but a program that assists one presses buttons by themselves.
bool Waits(const CWnd& control) {
    const CDialog* const dialog = WindowOf(control);
    return dialog != nullptr && AfxGetApp()->IsWaiting(*dialog);
}

/// Whether a dialog, or the sheet of a page, has ended: its last repaints are no
/// business of its handlers any more.
bool LoopIsOver(const CDialog& dialog) {
    const auto* page = dynamic_cast<const CPropertyPage*>(&dialog);
    const auto* sheet = page == nullptr ? nullptr : dynamic_cast<CDialog*>(page->GetParent());
    return dialog.HasEnded() || (sheet != nullptr && sheet->HasEnded());
}

void Refresh(CWnd& control, Change what) {
    if (control.IsCreated()) AfxGetApp()->GetDisplay().Refresh(control, what);
}

/// Runs what handles one report of a window: it counts as a call on its way, what it
/// throws ends here, and the keyboard leaves what it has disabled. A host that delivers
/// reports from inside its own operations could nest them for ever; too deep, nothing is
/// heard any more.
template <class Work> void Handle(const CWnd& window, Work&& work) {
    if (calls::Stack() > 2 * calls::kDeepest) return;
    const calls::Counted counted;
    const FocusKept focus(window);
    Guarded(std::forward<Work>(work));
}

/// Lets `change` act on the model and then tells the dialog; for a control that
/// takes no input now, shows its present state again.
template <class Work>
void Report(CWnd& control, Change shown, Event event, unsigned drawStage, Work&& change) {
    Handle(
        control,
        [&] {
            CDialog* dialog = DialogTakingInput(control);
            if (dialog == nullptr) return Refresh(control, shown);
            change(*dialog);
            Notification notification{control.GetDlgCtrlID(), event, drawStage};
            dialog->Notify(notification);
        });
}

} // namespace

namespace input {

void Click(CWnd& button) {
    if (button.GetKind() == ControlKind::PushButton && Waits(button)) return;
    Report(button, Change::Checked, Event::Clicked, 0, [&](CDialog& dialog) {
        auto* model = dynamic_cast<CButton*>(&button);
        if (model == nullptr) return;
        if (button.GetKind() == ControlKind::CheckBox) model->SetCheck(!model->GetCheck());
        if (button.GetKind() == ControlKind::RadioButton) dialog.CheckRadioButton(*model);
        Refresh(button, Change::Checked); // in case the display went ahead of the model
    });
}

void Type(CWnd& edit, std::string_view text) {
    if ((edit.GetStyle() & style::ReadOnly) != 0) return;
    Report(edit, Change::Text, Event::TextChanged, 0,
           [&](CDialog&) { edit.AcceptTypedText(text); });
}

void Select(CWnd& list, int index) {
    if (list.GetKind() == ControlKind::Tab) {
        Handle(list, [&] {
            auto* sheet = dynamic_cast<CPropertySheet*>(DialogTakingInput(list));
            if (sheet == nullptr) return Refresh(list, Change::Selection);
            sheet->SetActivePage(index);
        });
        return;
    }
    auto* combo = dynamic_cast<CComboBox*>(&list);
    if (combo == nullptr || combo->GetCurSel() == index) return; // chosen again: no change
    Report(list, Change::Selection, Event::SelectionChanged, 0,
           [&](CDialog&) { combo->SetCurSel(index); });
}

void Slide(CSliderCtrl& slider, int position) {
    Handle(
        slider,
        [&] {
            if (DialogTakingInput(slider) != nullptr)
                slider.SetPos(position);
            else
                Refresh(slider, Change::Position);
        });
}

void Paint(CSliderCtrl& slider) {
    // A handler may change the slider, which paints it again, at once on some displays:
    // the edit beside it follows the thumb, not itself.
    static const CSliderCtrl* painting = nullptr;
    if (painting == &slider) return;
    struct Painting {
        const CSliderCtrl* outer;
        explicit Painting(const CSliderCtrl& now) : outer(std::exchange(painting, &now)) {}
        ~Painting() { painting = outer; }
    } const guard(slider);
    Handle(slider, [&] {
        auto* dialog = dynamic_cast<CDialog*>(slider.GetParent());
        if (dialog == nullptr || !slider.IsCreated() || LoopIsOver(*dialog)) return;
        Notification notification{slider.GetDlgCtrlID(), Event::CustomDraw, CDDS_PREPAINT};
        dialog->Notify(notification);
    });
}

void Release(CSliderCtrl& slider) {
    Report(
        slider, Change::Position, Event::ReleasedCapture, 0, [](CDialog&) {});
}

void Close(CDialog& dialog) {
    Handle(
        dialog,
        [&] {
            if (dialog.IsCreated() && !dialog.HasEnded()) dialog.OnClose();
        });
}

void Tick(CWnd& window, unsigned id) {
    Handle(
        window,
        [&] {
            const auto* dialog = dynamic_cast<CDialog*>(&window);
            if (!window.IsCreated() || (dialog != nullptr && LoopIsOver(*dialog))) return;
            window.OnTimer(id);
        });
}

} // namespace input
