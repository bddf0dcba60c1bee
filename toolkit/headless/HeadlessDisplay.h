// HeadlessDisplay: a display without a screen, driven by a script.
//
// A script is a function that runs while a modal dialog is in front. It does what
// a person would do, by resource number, and reads what a person would see. All
// that happens is written to an ordered log. Message boxes and the save dialog
// take their answers from queues, and the clock stands still until Advance.
//
//     HeadlessDisplay display;
//     AfxGetApp()->UseDisplay(&display);
//     display.Answer(IDNO);                        // for the first message box
//     display.OnNextDialog([&] {                   // the sheet
//         display.OnNextDialog([&] {               // the dialog opened by 1029
//             display.Select(1078, 0);
//             display.Click(IDOK);
//         });
//         display.Click(1029);
//         display.Tab(1);
//         EXPECT_TRUE(display.Enabled(1018));
//         display.Click(IDOK);
//     });
//     control->Open();

#pragma once

#include <deque>
#include <functional>
#include <map>

#include "toolkit/display.h"

class HeadlessDisplay : public Display {
public:
    using Script = std::function<void()>;

    HeadlessDisplay();
    ~HeadlessDisplay() override;

    // --- Before a dialog opens -------------------------------------------------

    /// Queues the script for the next modal dialog. When the script returns and the
    /// dialog is still open, its frame is closed.
    void OnNextDialog(Script script);
    /// The script for every dialog for which none is queued; null: close its frame.
    void OnOtherDialogs(Script script) { m_OtherDialogs = std::move(script); }
    /// Queues the answer to a message box: IDOK, IDYES, IDNO or IDCANCEL. A box
    /// without an answer gets IDOK or, with Yes and No, IDNO, and is counted.
    void Answer(int result) { m_Answers.push_back(result); }
    /// Chooses an answer for boxes without a queued one; replaces the default.
    void AnswerOtherBoxes(std::function<int(const std::string& text, unsigned flags)> choose) {
        m_ChooseAnswer = std::move(choose);
    }
    /// Runs while the next message box is open, before it is answered.
    void DuringNextBox(Script script) { m_DuringBox = std::move(script); }
    /// Queues the path that the person confirms in the save dialog; null: cancels.
    void AnswerSave(const char* path);
    /// Makes Prepare fail with `reason`; empty: succeed again.
    void RefuseToShow(std::string reason) { m_Refusal = std::move(reason); }
    /// Measures texts with `width` pixels per character and tab stops of eight of
    /// them; 0: there is no device context.
    void SetCharacterWidth(int width) { m_CharacterWidth = width; }

    // --- What a person does, in the dialog in front ------------------------------

    void Click(int id);
    void Type(int id, std::string_view text);
    void Select(int id, int index);
    /// Selects the first entry with this text; throws std::runtime_error without one.
    void SelectText(int id, std::string_view text);
    void Tab(int index); // of the sheet in front
    /// Moves the thumb without letting go, then repaints the slider.
    void Drag(int id, int position);
    void Release(int id);
    void CloseFrame();
    /// Lets time pass: every timer that falls due ticks, in order of time.
    void Advance(unsigned milliseconds);

    // --- What a person sees ---------------------------------------------------------

    /// The control of the dialog in front, of its page in front for a sheet;
    /// throws std::runtime_error if there is none.
    CWnd& Control(int id) const;
    bool Has(int id) const;
    std::string Text(int id) const { return Control(id).GetWindowText(); }
    bool Enabled(int id) const { return Control(id).IsWindowEnabled(); }
    bool Visible(int id) const { return Control(id).IsWindowVisible(); }
    bool Checked(int id) const;
    std::vector<std::string> Entries(int id) const;
    int Selection(int id) const; // of a combo box or of the tab control
    int Position(int id) const;
    std::string ToolTip(int id) const;
    /// The control that was used last, or has been given the keyboard since; 0: none.
    int Focused() const { return m_Focus != nullptr ? m_Focus->GetDlgCtrlID() : 0; }
    /// The dialog in front; null while none is open.
    CDialog* Front() const;
    /// The page in front, if a sheet is; otherwise the dialog in front.
    CDialog* FrontPage() const;

    // --- What happened -----------------------------------------------------------------

    /// Every event in order: "create 107", "click 1002", "box [title] text -> 6", "beep", ...
    const std::vector<std::string>& Log() const { return m_Log; }
    void ClearLog() { m_Log.clear(); }
    /// Adds a line of one's own, to see it in order with the others.
    void Note(std::string line) { m_Log.push_back(std::move(line)); }
    /// The lines of message boxes alone: "[title] text".
    std::vector<std::string> Boxes() const;
    int UnansweredBoxes() const { return m_Unanswered; }
    /// What scripts threw, such as "no control 9 in front"; a test expects none.
    const std::vector<std::string>& ScriptErrors() const { return m_ScriptErrors; }
    /// Windows that exist; 0 when all is closed.
    int OpenWindows() const { return m_OpenWindows; }

    // --- Display -------------------------------------------------------------------------

    bool Prepare(std::string& reason) override;
    bool Create(CDialog& dialog) override;
    void Destroy(CDialog& dialog) override;
    void Refresh(CWnd& window, Change what) override;
    bool HasFocus(const CWnd& control) override { return &control == m_Focus; }
    void Focus(CWnd& control) override { m_Focus = &control; }
    void RunModal(CDialog& dialog) override;
    void EndModal(CDialog& dialog) override;
    int ShowMessage(CWnd* owner, const char* text, const char* title, unsigned flags) override;
    bool AskSaveFile(SaveFileRecord& record) override;
    void CancelBoxes() override { m_CancelBox = true; }
    void StartTimer(CWnd& window, unsigned id, unsigned milliseconds) override;
    void StopTimer(CWnd& window, unsigned id) override;
    bool MeasureTabbedText(const CWnd& control, std::string_view text, int& width) override;
    void SetToolTip(CWnd& control, const char* text, int maxWidth) override;
    void Beep(unsigned flags) override;

private:
    CWnd& Use(int id); // the control, with the keyboard

    struct Timer {
        CWnd* window;
        unsigned id;
        unsigned period;
        uint64_t due;
    };
    struct Save {
        bool accepted;
        std::string path;
    };

    std::deque<Script> m_Scripts;
    Script m_OtherDialogs;
    Script m_DuringBox;
    bool m_CancelBox = false; // the box that is open was cancelled
    std::deque<int> m_Answers;
    std::function<int(const std::string&, unsigned)> m_ChooseAnswer;
    std::deque<Save> m_Saves;
    std::string m_Refusal;
    int m_CharacterWidth = 1;
    std::vector<CDialog*> m_Modal;
    std::vector<Timer> m_Timers;
    uint64_t m_Now = 0; // milliseconds
    std::map<const CWnd*, std::string> m_ToolTips;
    std::vector<std::string> m_Log;
    std::vector<std::string> m_ScriptErrors;
    const CWnd* m_Focus = nullptr;
    int m_Unanswered = 0;
    int m_OpenWindows = 0;
};
