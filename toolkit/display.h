// Display: what draws the windows. A guide for porting.
//
// A display keeps real windows in step with the models and reports what the
// person does. It holds mechanism only: no rule about pages, trace or boards, and
// no state that a model has too. To port the module to another window system,
// write one class derived from Display, in a folder of its own, and define
// MakeDisplay there; nothing else changes.
//
//  * Models to windows. Create makes the real windows of a dialog from
//    CDialog::GetControls, in tab order, each at the place of its template row and
//    in the state of its model. From then on Refresh tells of each change. A
//    display stores what it needs in CWnd::SetPeer.
//  * Windows to models. The display calls the functions of input.h. It may find
//    that a model refused (a tab that can't be left): it shows the model's state,
//    whatever the person did. Those functions let no exception out.
//  * A property sheet is a dialog with three buttons and a CTabCtrl. Its pages are
//    created with the sheet as parent, first hidden, and lie inside the tab
//    control; ShowWindow brings them to the front and back.
//  * Modal windows nest. EndModal of an outer window while an inner one runs holds
//    the wish until the inner one has ended.
//  * Text is 8-bit; a display decides what encoding it has.
//
// All calls are made on the thread that runs the dialogs.

#pragma once

#include <memory>
#include <string>

#include "toolkit/CPropertySheet.h"
#include "toolkit/save_dialog.h"

class Display {
public:
    Display() = default;
    virtual ~Display() = default;
    Display(const Display&) = delete;
    Display& operator=(const Display&) = delete;

    /// Gets ready to show windows on the calling thread. Returns false with a
    /// readable line in `reason` if that is not possible now; may be tried again.
    /// Never ends the process.
    virtual bool Prepare(std::string& reason) = 0;

    /// Makes the hidden windows of a dialog, page or sheet and of its controls.
    virtual bool Create(CDialog& dialog) = 0;
    /// Takes them down; the peers of the dialog and its controls go next.
    virtual void Destroy(CDialog& dialog) = 0;
    /// Brings the window of `window`, a control or a dialog, in step with its model.
    virtual void Refresh(CWnd& window, Change what) = 0;

    /// True iff a control has the keyboard, or will have it once its window is in front;
    /// a disabled or hidden one keeps it until Focus is called for another.
    virtual bool HasFocus(const CWnd& control) = 0;
    /// Gives a usable control the keyboard, as soon as its window is in front.
    virtual void Focus(CWnd& control) = 0;

    /// Shows a top-level dialog and runs it until EndModal. Returns at once if it
    /// has already ended (CDialog::HasEnded).
    virtual void RunModal(CDialog& dialog) = 0;
    virtual void EndModal(CDialog& dialog) = 0;

    /// Modal message box; a null `owner` stands for what is in front, if anything is.
    /// `text` and `title` are never null. `flags`: MB_ values. Returns IDOK, IDYES,
    /// IDNO or IDCANCEL; closing it counts as the refusal.
    virtual int ShowMessage(CWnd* owner, const char* text, const char* title, unsigned flags) = 0;
    /// See GetSaveFileName.
    virtual bool AskSaveFile(SaveFileRecord& record) = 0;
    /// Ends the message boxes and save dialogs that run, as if refused; returns at once.
    virtual void CancelBoxes() = 0;

    /// A periodic tick: input::Tick(window, id). It goes on while modal windows run.
    virtual void StartTimer(CWnd& window, unsigned id, unsigned milliseconds) = 0;
    virtual void StopTimer(CWnd& window, unsigned id) = 0;

    /// Width in pixels of a text with tabs on default stops, in the font of
    /// `control`. Returns false if there is nothing to measure with.
    virtual bool MeasureTabbedText(const CWnd& control, std::string_view text, int& width) = 0;

    /// Shows `text` while the pointer rests on `control`; at most `maxWidth` pixels
    /// wide, -1: no limit.
    virtual void SetToolTip(CWnd& control, const char* text, int maxWidth) = 0;

    virtual void Beep(unsigned flags) = 0;
};

/// Makes the display that the binary was linked with. Each display's folder defines it
/// once, and so does library/ for one that lies in a library beside the module. Throws
/// std::exception with a readable line if there is none now; may be tried again.
std::unique_ptr<Display> MakeDisplay();
