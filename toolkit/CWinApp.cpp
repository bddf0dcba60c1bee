#include "toolkit/CWinApp.h"

#include <algorithm>

#include "platform/version.h"
#include "toolkit/CallDepth.h"
#include "toolkit/guarded.h"
#include "toolkit/input.h"

namespace {

CWinApp* g_App = nullptr;

} // namespace

CWinApp::CWinApp(const char* name) : m_Title(name != nullptr ? name : "KVETMControl") {
    g_App = this;
}

CWinApp::~CWinApp() {
    if (g_App == this) g_App = nullptr;
}

void CWinApp::AddClient() {
    ++m_Clients;
}

void CWinApp::RemoveClient() {
    if (m_Clients > 0 && --m_Clients == 0) DropDisplay();
}

Display& CWinApp::GetDisplay() {
    if (m_Other != nullptr) return *m_Other;
    try {
        if (!m_Own) m_Own = MakeDisplay();
        return *m_Own;
    } catch (const std::exception& error) {
        m_None.SetReason(error.what());
        return m_None;
    }
}

void CWinApp::UseDisplay(Display* display) {
    m_Other = display;
}

void CWinApp::CancelAll() {
    if (calls::Stack() == 0 && m_Running.empty()) return;
    m_Cancelling = true;
    if (m_Own || m_Other != nullptr) GetDisplay().CancelBoxes(); // not to make one for that
    const std::vector<CDialog*> running = m_Running;
    for (auto dialog = running.rbegin(); dialog != running.rend(); ++dialog) {
        input::Close(**dialog);
        if (!(*dialog)->HasEnded()) (*dialog)->EndDialog(IDCANCEL); // a handler threw
    }
}

CWinApp::Running::Running(CDialog& dialog) {
    AfxGetApp()->m_Running.push_back(&dialog);
}

CWinApp::Running::~Running() {
    CWinApp& app = *AfxGetApp();
    app.m_Running.pop_back();
    if (calls::Stack() == 0 && app.m_Running.empty()) app.ForgetCancel();
}

CWinApp::Box::Box() {
    ++AfxGetApp()->m_Boxes;
}

CWinApp::Box::~Box() {
    --AfxGetApp()->m_Boxes;
}

bool CWinApp::IsWaiting(const CDialog& dialog) const {
    if (std::ranges::find(m_Running, &dialog) == m_Running.end()) return false;
    return m_Boxes > 0 || m_Running.back() != &dialog;
}

CWinApp* AfxGetApp() {
    if (g_App == nullptr) {
        static CWinApp plain; // for programs that use the toolkit alone
        g_App = &plain;
    }
    return g_App;
}

int AfxMessageBox(const char* text, unsigned flags) {
    return MessageBoxWithoutOwner(text, AfxGetApp()->GetTitle(), flags);
}

void ReportException(const char* what) noexcept {
    static bool showing = false;
    if (showing) return; // a failing timer must not pile up boxes
    showing = true;
    try {
        AfxMessageBox(what, MB_OK | MB_ICONHAND);
    } catch (...) {
        // Nobody is left who could be told.
    }
    showing = false;
}

bool GetSaveFileName(SaveFileRecord& record) {
    if (AfxGetApp()->IsCancelling()) return false;
    const CWinApp::Box box;
    return AfxGetApp()->GetDisplay().AskSaveFile(record);
}

uint32_t GetPlatformVersion() {
    return PlatformVersion();
}
