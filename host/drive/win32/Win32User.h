// Win32User: a person at native windows, found by their resource numbers.
//
// The person sits on a thread of their own, since the thread of the windows is inside Open.
// Whatever is done is posted; then the person waits until the other thread has dealt with it.

#pragma once

#include <windows.h>

#include <commctrl.h>

#include "host/drive/User.h"

namespace etmhost {

class Win32User : public User {
public:
    /// REQUIRES: made and destroyed on the thread that runs the dialogs.
    Win32User();
    ~Win32User() override { DestroyWindow(m_Marker); }
    Win32User(const Win32User&) = delete;
    Win32User& operator=(const Win32User&) = delete;

    FrontWindow Front() override;
    bool Has(int id) override { return Look(id) != nullptr; }
    std::vector<int> WithCaption(const std::string& caption) override;

    void Click(int id) override;
    void Type(int id, const std::string& text) override;
    void Select(int id, int index) override;
    void Tab(int index) override;
    void Drag(int id, int position) override;
    void Press(const KeyName& key) override;
    void Write(const std::string& text) override;
    void CloseFrame() override;
    void AnswerBox(Answer answer) override;
    void SaveAs(const std::string& path) override;
    void TakePicture(const std::filesystem::path& file) override;

    std::string Text(int id) override { return TextOf(Find(id)); }
    bool Enabled(int id) override { return IsWindowEnabled(Find(id)) != 0; }
    bool Visible(int id) override { return IsWindowVisible(Find(id)) != 0; }
    bool Checked(int id) override;
    int Selection(int id) override;
    std::vector<std::string> Entries(int id) override;
    std::string Help() override;
    int Focus() override { return GetDlgCtrlID(FocusWindow()); }

    /// The dialog, box or save dialog of this process in front, or null.
    static HWND FrontHandle();
    static bool IsBox(HWND window);
    static bool IsSaveDialog(HWND window) { return NameField(window) != nullptr; }
    /// The window that is acted on and looked at.
    virtual HWND Window() { return FrontHandle(); }
    /// The control in front; throws std::runtime_error without one.
    HWND Find(int id);
    /// Of the thread of the windows: the control with the focus.
    HWND FocusWindow() const;
    /// Presses a key there; `details` as in WM_KEYDOWN.
    void Press(WPARAM key, LPARAM details = 0);
    /// Lets the other thread deal with all that was posted.
    virtual void Settle();

protected:
    static std::string TextOf(HWND window);
    static HWND NameField(HWND saveDialog);
    static void Post(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
    /// Waits until the other thread has dealt with all that was posted, and returns true; or until
    /// `over()`, which means that it may have no loop any more.
    template <class Over> bool LetWork(Over over) {
        for (const Mark mark(*this); !mark.Reached(); Sleep(1))
            if (over()) return false;
        return true;
    }

private:
    /// Something posted behind all the rest. Throws std::runtime_error if the windows do not
    /// answer.
    class Mark {
    public:
        explicit Mark(Win32User& user);
        bool Reached() const;

    private:
        const HWND m_Marker;
        const WPARAM m_Number;
        const ULONGLONG m_Limit;
    };

    void GoTo(HWND control);
    static void PostMouse(HWND window, UINT message, POINT place);
    void Press(HWND window, POINT place); ///< by the mouse
    HWND Look(int id);
    HWND FindKind(int id, const char* kind, const char* what);

    const DWORD m_WindowThread;
    const HWND m_Marker; // an edit; its limit is the last mark reached
    WPARAM m_Marks = 0;
};

} // namespace etmhost
