// CWinApp: the module's application object: its title and its display.
//
// One static instance exists per module. The display is made at the first need
// and kept until the last client has gone, so that an application object of the
// window system lives no longer than the components that need it.

#pragma once

#include <memory>
#include <string>
#include <vector>

#include "toolkit/NoDisplay.h"

class CWinApp {
public:
    /// A null `name` gives the title "KVETMControl". The instance constructed last
    /// is the one of AfxGetApp.
    explicit CWinApp(const char* name = nullptr);
    virtual ~CWinApp();
    CWinApp(const CWinApp&) = delete;
    CWinApp& operator=(const CWinApp&) = delete;

    /// Title of AfxMessageBox.
    const char* GetTitle() const { return m_Title.c_str(); }

    /// Counts those who may need the display; behind the last one it is destroyed.
    void AddClient();
    void RemoveClient();

    /// The display, made on demand. As long as none can be made it is one that says so.
    Display& GetDisplay();
    /// Puts another display in its place, for tests; null: the linked one again.
    void UseDisplay(Display* display);

    /// Destroys the display that was made on demand.
    void DropDisplay() { m_Own.reset(); }

    /// Ends every modal loop that runs as if its Cancel had been pressed, the innermost
    /// first, message boxes and the save dialog included. Until all calls that are on
    /// their way have ended, a new one is cancelled at once.
    void CancelAll();
    bool IsCancelling() const { return m_Cancelling; }
    /// All calls have ended; see CallDepth.h.
    void ForgetCancel() { m_Cancelling = false; }

    /// A modal dialog runs as long as the object lives.
    class Running {
    public:
        explicit Running(CDialog& dialog);
        ~Running();
        Running(const Running&) = delete;
        Running& operator=(const Running&) = delete;
    };

    /// A message box or the save dialog is open as long as the object lives.
    class Box {
    public:
        Box();
        ~Box();
        Box(const Box&) = delete;
        Box& operator=(const Box&) = delete;
    };

    /// Whether a dialog that runs waits for one that was opened later, or for a box.
    bool IsWaiting(const CDialog& dialog) const;

private:
    std::string m_Title;
    int m_Clients = 0;
    std::unique_ptr<Display> m_Own;
    Display* m_Other = nullptr;
    NoDisplay m_None;
    std::vector<CDialog*> m_Running; // the innermost last
    int m_Boxes = 0;
    bool m_Cancelling = false;
};

/// The module's application object; never null while dialogs are used.
CWinApp* AfxGetApp();
