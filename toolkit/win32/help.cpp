#include "toolkit/win32/help.h"

#include <initguid.h> // the identifiers are defined here
#include <oleacc.h>

#include <string>

#include "toolkit/help.h"
#include "toolkit/win32/NativeLook.h"
#include "toolkit/win32/WindowTable.h"

namespace {

constexpr int kTipTime = 30000; // milliseconds: some tips are long

HWND MakeTipWindow(HWND owner) {
    const NativeLook look;
    return CreateWindowExA(WS_EX_TOPMOST, TOOLTIPS_CLASSA, nullptr,
                           WS_POPUP | TTS_ALWAYSTIP | TTS_NOPREFIX, CW_USEDEFAULT, CW_USEDEFAULT,
                           CW_USEDEFAULT, CW_USEDEFAULT, owner, nullptr, ModuleInstance(), nullptr);
}

/// The tip window of a dialog, made at the first tip.
HWND ToolTipsOf(CWnd& dialog) {
    WindowPeer* peer = PeerOf(dialog);
    if (peer == nullptr || peer->m_ToolTips != nullptr)
        return peer != nullptr ? peer->m_ToolTips : nullptr;
    peer->m_ToolTips = MakeTipWindow(peer->m_Window);
    SendMessageA(peer->m_ToolTips, TTM_SETDELAYTIME, TTDT_AUTOPOP, kTipTime);
    SendMessageA(peer->m_ToolTips, TTM_ACTIVATE, TRUE, 0);
    return peer->m_ToolTips;
}

TOOLINFOA ToolInfoFor(HWND owner, UINT flags, UINT_PTR id, const char* text) {
    static_assert(sizeof(void*) != 4 || sizeof(TOOLINFOA) == 48);
    TOOLINFOA info{};
    info.cbSize = sizeof info;
    info.uFlags = flags;
    info.hwnd = owner;
    info.uId = id;
    info.hinst = ModuleInstance();
    info.lpszText = const_cast<char*>(text);
    return info;
}

LRESULT Tell(HWND tips, UINT message, const TOOLINFOA& info, WPARAM wParam = 0) {
    return SendMessageA(tips, message, wParam, reinterpret_cast<LPARAM>(&info));
}

// --- F1 ------------------------------------------------------------------------------------

/// The tip that F1 brings up has one tool, of the dialog itself.
TOOLINFOA HelpTool(HWND dialog, const char* text) {
    return ToolInfoFor(dialog, TTF_TRACK | TTF_ABSOLUTE, 0, text);
}

void PutAway(HWND window, WindowPeer& peer) {
    if (peer.m_Helped == nullptr) return;
    peer.m_Helped = nullptr;
    Tell(peer.m_HelpTip, TTM_TRACKACTIVATE, HelpTool(window, nullptr), FALSE);
}

void ShowNextHelp(CDialog& dialog, HWND window, WindowPeer& peer) {
    CWnd* const control = NextHelp(dialog, ModelOf(GetFocus()), peer.m_Helped);
    const HWND place = control != nullptr ? WindowOf(*control) : nullptr;
    if (place == nullptr) return;
    PutAway(window, peer);
    if (peer.m_HelpTip == nullptr) {
        peer.m_HelpTip = MakeTipWindow(window);
        Tell(peer.m_HelpTip, TTM_ADDTOOLA, HelpTool(window, ""));
        SendMessageA(peer.m_HelpTip, TTM_SETMAXTIPWIDTH, 0, kHelpTipWidth);
    }
    const std::string text = HelpText(*control);
    RECT area;
    GetWindowRect(place, &area);
    Tell(peer.m_HelpTip, TTM_UPDATETIPTEXTA, HelpTool(window, text.c_str()));
    SendMessageA(peer.m_HelpTip, TTM_TRACKPOSITION, 0, MAKELPARAM(area.left, area.bottom));
    Tell(peer.m_HelpTip, TTM_TRACKACTIVATE, HelpTool(window, nullptr), TRUE);
    peer.m_Helped = control;
}

// --- Screen readers ------------------------------------------------------------------------

/// The service by which a window's description is set, while one lives.
class Annotations {
public:
    Annotations() : m_Entered(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED)) {
        void* service = nullptr;
        if (SUCCEEDED(CoCreateInstance(CLSID_AccPropServices, nullptr, CLSCTX_INPROC_SERVER,
                                       IID_IAccPropServices, &service)))
            m_Service = static_cast<IAccPropServices*>(service);
    }
    ~Annotations() {
        if (m_Service != nullptr) m_Service->Release();
        if (SUCCEEDED(m_Entered)) CoUninitialize();
    }
    Annotations(const Annotations&) = delete;
    Annotations& operator=(const Annotations&) = delete;

    void Describe(HWND window, const char* text) const {
        if (m_Service == nullptr) return;
        const std::wstring wide(text, text + std::char_traits<char>::length(text)); // it is ASCII
        m_Service->SetHwndPropStr(window, static_cast<DWORD>(OBJID_CLIENT), CHILDID_SELF,
                                  PROPID_ACC_DESCRIPTION, wide.c_str());
    }

private:
    HRESULT m_Entered; // refused where the host has chosen another way, which does as well
    IAccPropServices* m_Service = nullptr;
};

} // namespace

void AddToolTip(CWnd& control, const char* text, int maxWidth) {
    const HWND tool = WindowOf(control);
    const HWND tips = ToolTipsOf(*control.GetParent());
    if (tool == nullptr || tips == nullptr) return;
    const HWND dialog = GetParent(tool);
    SendMessageA(tips, TTM_SETMAXTIPWIDTH, 0, maxWidth);
    Tell(tips, TTM_ADDTOOLA,
         ToolInfoFor(dialog, TTF_IDISHWND | TTF_SUBCLASS, reinterpret_cast<UINT_PTR>(tool), text));
    if (dynamic_cast<CPropertyPage*>(control.GetParent()) == nullptr) return;
    // A page shows the tips of disabled controls too: it is told of the pointer instead of them.
    Tell(tips, TTM_ADDTOOLA,
         ToolInfoFor(dialog, TTF_SUBCLASS, static_cast<UINT_PTR>(control.GetDlgCtrlID()), text));
    PlaceToolTip(control);
}

void PlaceToolTip(const CWnd& control) {
    const HWND tool = WindowOf(control);
    const WindowPeer* peer =
        control.GetParent() != nullptr ? PeerOf(*control.GetParent()) : nullptr;
    if (tool == nullptr || peer == nullptr || peer->m_ToolTips == nullptr) return;
    TOOLINFOA behind =
        ToolInfoFor(peer->m_Window, 0, static_cast<UINT_PTR>(control.GetDlgCtrlID()), nullptr);
    if (control.IsWindowVisible()) { // else it is nowhere
        GetWindowRect(tool, &behind.rect);
        MapWindowPoints(nullptr, peer->m_Window, reinterpret_cast<POINT*>(&behind.rect), 2);
    }
    Tell(peer->m_ToolTips, TTM_NEWTOOLRECTA, behind);
}

bool IsForHelp(CDialog& dialog, HWND window, const MSG& message) {
    WindowPeer* const peer = PeerOf(dialog);
    const bool key = message.message == WM_KEYDOWN || message.message == WM_SYSKEYDOWN;
    const bool button = message.message == WM_LBUTTONDOWN || message.message == WM_RBUTTONDOWN ||
                        message.message == WM_NCLBUTTONDOWN;
    if (peer == nullptr || (!key && !button) ||
        (message.hwnd != window && !IsChild(window, message.hwnd)))
        return false;
    if (key && message.wParam == VK_F1) {
        ShowNextHelp(dialog, window, *peer);
        return true;
    }
    const bool shown = peer->m_Helped != nullptr;
    PutAway(window, *peer);
    return shown && key && message.wParam == VK_ESCAPE;
}

void DescribeControls(const CDialog& dialog) {
    BOOL listens = FALSE; // otherwise the host's thread is spared the system's object service
    if (SystemParametersInfoA(SPI_GETSCREENREADER, 0, &listens, 0) == FALSE || listens == FALSE)
        return;
    const Annotations annotations;
    for (const auto& control : dialog.GetControls())
        if (control->GetHelp() != nullptr && WindowOf(*control) != nullptr)
            annotations.Describe(WindowOf(*control), control->GetHelp());
}
