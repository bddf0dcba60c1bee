// Which window belongs to which model, in both directions.

#pragma once

#include <string>

#include "toolkit/win32/windows_api.h"

/// The window of a model; entered into the table while it lives.
class WindowPeer final : public DisplayPeer {
public:
    WindowPeer(CWnd& model, HWND window);
    ~WindowPeer() override;
    WindowPeer(const WindowPeer&) = delete;
    WindowPeer& operator=(const WindowPeer&) = delete;

    const HWND m_Window;
    // Of a dialog: its tool tips, once it has any; while it is not active, the control
    // that had the focus, and the one that takes it over from that.
    HWND m_ToolTips = nullptr;
    // Of a top-level dialog: the tip that F1 brings up, and whose help it shows; null: hidden.
    HWND m_HelpTip = nullptr;
    const CWnd* m_Helped = nullptr;
    int m_Points = 0; // the size of its font
    HWND m_LastFocus = nullptr;
    HWND m_FocusToCome = nullptr;
};

/// The peer of a model, or null.
WindowPeer* PeerOf(const CWnd& model);

/// The window of a model, or null.
HWND WindowOf(const CWnd& model);

/// The model of a window, or null for a window that is not ours.
CWnd* ModelOf(HWND window);

/// The text that a window shows now.
std::string TextOf(HWND window);
