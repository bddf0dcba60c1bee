// Win32User: a person at the native windows, found by their resource numbers.
//
// The person sits on a thread of their own, since the thread of the windows is inside
// Open. Whatever is done is posted; then the person waits until the other thread has
// dealt with it, and attends to the windows that came up because of it.

#pragma once

#include <windows.h>

#include <commctrl.h>

#include "frame/interfaces/IOrnKVETMCtrl.h"
#include "tests/support/PreparedUser.h"

// Of <windows.h>; the stories use the toolkit's constants of these names.
#undef MessageBox

class Win32User final : public PreparedUser {
public:
    /// For Answer: by the key, not by a button.
    static constexpr int kEscape = -1;
    /// For Press: the key is held down already.
    static constexpr LPARAM kHeld = 0x40000000;
    /// For Answer and AnswerSave: the window stays until somebody else ends it.
    static constexpr int kNothing = -2;
    static constexpr const char* kNoFile = "?";
    static bool IsBox(HWND window);
    static bool IsSaveDialog(HWND window);

    /// REQUIRES: made and destroyed on the thread that runs the dialogs.
    Win32User();
    ~Win32User() override { DestroyWindow(m_Marker); }

    /// Opens the sheet; the person's thread waits for it and runs its script, and has ended
    /// afterwards. What scripts threw has become a failure.
    bool Open(IOrnKVETMCtrl& control);

    void Click(int id) override;
    void Type(int id, const char* text) override;
    void Select(int id, int index) override;
    void Tab(int index) override;
    void Drag(int id, int position) override;
    void CloseFrame() override;
    void Wait(unsigned milliseconds) override;
    /// Presses a key in the window that has the focus; `details` as in WM_KEYDOWN.
    void Press(WPARAM key, LPARAM details = 0);

    std::string Text(int id) override { return TextOf(Find(id)); }
    bool Enabled(int id) override { return IsWindowEnabled(Find(id)) != 0; }
    bool Visible(int id) override { return IsWindowVisible(Find(id)) != 0; }
    bool Checked(int id) override { return Ask(id, BM_GETCHECK) == BST_CHECKED; }
    int Selection(int id) override { return Ask(id, CB_GETCURSEL); }
    int TabInFront() override { return Ask(kTabControl, TCM_GETCURSEL); }
    int Focus() override { return GetDlgCtrlID(FocusWindow()); }

    /// The dialog that the script of the moment is about.
    HWND Window() const { return m_Attended.back(); }
    /// The control in front; throws std::runtime_error without one.
    HWND Find(int id);
    /// The dialog in front, or null.
    static HWND Front();
    /// Of the thread of the windows: the control with the focus.
    HWND FocusWindow() const;
    /// Lets the other thread deal with all that was posted, and attends to new windows.
    void Settle();

private:
    static constexpr int kTabControl = 0x3020;

    static std::string TextOf(HWND window);
    int Ask(int id, UINT question) {
        return static_cast<int>(SendMessageA(Find(id), question, 0, 0));
    }
    void Attend(HWND window);
    void RunScript(HWND window);
    void AnswerBox(HWND box);
    void AnswerSaveDialog(HWND dialog);
    bool LetWork(HWND window);

    std::vector<HWND> m_Attended; // the last one is in front
    const DWORD m_WindowThread;
    const HWND m_Marker; // an edit; its limit is the last mark reached
    WPARAM m_Marks = 0;
};
