// CDialog: a dialog made from a template, its data exchange and its messages.

#pragma once

#include "toolkit/controls.h"

class CDataExchange;

/// What a control can report to its dialog.
enum class Event : uint8_t {
    Clicked,          // BN_CLICKED
    TextChanged,      // EN_CHANGE
    SelectionChanged, // CBN_SELCHANGE
    CustomDraw,       // NM_CUSTOMDRAW
    ReleasedCapture,  // NM_RELEASEDCAPTURE
};

struct Notification {
    int id = 0; // of the control
    Event event = Event::Clicked;
    unsigned drawStage = 0; // of CustomDraw
    int32_t result = 0;     // what the handler leaves for the control
};

/// One row of a message map: which handler gets which event of which control.
template <class Dialog> struct MessageRow {
    int id;
    Event event;
    void (Dialog::*handler)(Notification&);
};

class CDialog : public CWnd {
public:
    /// `parent` may be null.
    explicit CDialog(int dialogNumber, CWnd* parent = nullptr);
    ~CDialog() override;

    /// Creates the dialog, runs it until EndDialog and returns the result given
    /// there: IDOK or IDCANCEL. Returns IDCANCEL too if it can't be shown.
    virtual int DoModal();

    /// Ends DoModal with `result` as soon as the modal windows above have closed.
    void EndDialog(int result);
    /// True from EndDialog on.
    bool HasEnded() const { return m_Ended; }

    /// The control with a resource number, or null.
    CWnd* GetDlgItem(int id) const;
    /// All controls, in tab order; empty until the dialog is created.
    const std::vector<std::unique_ptr<CWnd>>& GetControls() const { return m_Controls; }
    const DialogTemplate* GetDialogTemplate() const { return m_DialogTemplate; }

    /// TRUE moves the controls into the bound fields, FALSE the fields into the
    /// controls, by DoDataExchange. Meanwhile no control of this dialog reaches
    /// its handlers. Returns true.
    bool UpdateData(bool fromControls);

    /// A control reports something: held back during an exchange, otherwise
    /// passed to OnNotify. OK and Cancel go to OnOK and OnCancel.
    void Notify(Notification& notification);

    /// The frame's close button or Escape: as if Cancel had been pressed.
    void OnClose();

    /// The radio buttons of the group that `control` stands in, hidden ones too, in tab
    /// order. A group begins at a control with the group style and ends before the next.
    std::vector<CButton*> GetRadioGroup(const CWnd& control) const;
    /// Unchecks the other radio buttons of the group and checks this one.
    void CheckRadioButton(CButton& radio);

    // For DoModal and property sheets.
    /// Makes the controls from the template and the window on the display.
    bool CreateDialogWindow();
    /// Calls OnDestroy and takes the window down; the models of the controls stay.
    void DestroyDialogWindow();

protected:
    /// Binds controls to fields; see data_exchange.h.
    virtual void DoDataExchange(CDataExchange& exchange);
    /// Runs once the controls exist. Base: UpdateData(FALSE). Returns true to let
    /// the display choose the first focus.
    virtual bool OnInitDialog();
    /// Base: UpdateData(TRUE), then EndDialog(IDOK).
    virtual void OnOK();
    /// Base: EndDialog(IDCANCEL).
    virtual void OnCancel();
    /// The window is about to go.
    virtual void OnDestroy();
    /// Runs the window's modal loop, once DoModal has made and filled the window.
    virtual void RunLoop();
    /// Finds the handler of a notification: Dispatch over the class's own table.
    virtual void OnNotify(Notification& notification);

    template <class Dialog, size_t N> static void
    Dispatch(Dialog& dialog, const MessageRow<Dialog> (&rows)[N], Notification& notification) {
        for (const MessageRow<Dialog>& row : rows)
            if (row.id == notification.id && row.event == notification.event)
                return (dialog.*row.handler)(notification);
    }

    const DialogTemplate* m_DialogTemplate = nullptr;

private:
    void AddControl(const ControlTemplate& row);
    void ShowHelpAsTips();

    std::vector<std::unique_ptr<CWnd>> m_Controls;
    int m_Exchanging = 0;
    bool m_Ended = false;
    int m_Result = IDCANCEL;
};
