// Win32Person: a prepared person at the native windows of the module, who attends to windows that
// come up because of what they do.

#pragma once

#include "frame/interfaces/IOrnKVETMCtrl.h"
#include "host/drive/Interpreter.h"
#include "tests/support/Prepared.h" // ahead of <windows.h>, which has macros for constants

#include "host/drive/win32/Win32User.h"

class Win32Person final : public Prepared<Win32Person, etmhost::Win32User> {
public:
    /// For Answer: by the key, not by a button.
    static constexpr int kEscape = -1;
    /// For Press: the key is held down already.
    static constexpr LPARAM kHeld = 0x40000000;
    /// For Answer and AnswerSave: the window stays until somebody else ends it.
    static constexpr int kNothing = -2;
    static constexpr const char* kNoFile = "?";

    /// Opens the sheet; the person's thread waits for it and runs its script, and has ended
    /// afterwards. What scripts threw has become a failure.
    bool Open(IOrnKVETMCtrl& control);

    /// The dialog that the script of the moment is about.
    HWND Window() override { return m_Attended.back(); }
    void Settle() override;

private:
    bool LetWorkAt(HWND window) {
        return LetWork([window] { return !IsWindow(window); }) && IsWindow(window) != 0;
    }
    void Attend(HWND window);
    void RunScript(HWND window);
    void AttendBox(HWND box);
    void AttendSaveDialog(HWND dialog);

    std::vector<HWND> m_Attended; // the last one is in front
};
