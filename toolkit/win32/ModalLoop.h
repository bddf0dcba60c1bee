// What keeps a modal window modal.

#pragma once

#include <vector>

#include "toolkit/win32/windows_api.h"

/// While one lives, the thread's other windows take no input: a host that could be
/// used meanwhile would call the module from inside one of its own calls. At the end
/// the window that was active before is so again.
class OthersDisabled {
public:
    explicit OthersDisabled(HWND window);
    ~OthersDisabled();
    OthersDisabled(const OthersDisabled&) = delete;
    OthersDisabled& operator=(const OthersDisabled&) = delete;

private:
    HWND m_Window;
    HWND m_ActiveBefore;
    std::vector<HWND> m_Disabled;
};

/// Delivers the thread's messages until the dialog has ended or lost its window.
/// Should the thread be asked to quit, the dialog is closed and the wish passed on.
void RunLoop(CDialog& dialog, HWND window);
