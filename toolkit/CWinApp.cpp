#include "toolkit/CWinApp.h"

#include "platform/version.h"
#include "toolkit/guarded.h"

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
    if (m_Clients > 0 && --m_Clients == 0) m_Own.reset();
}

Display& CWinApp::GetDisplay() {
    if (m_Other != nullptr) return *m_Other;
    if (!m_Own) m_Own = MakeDisplay();
    return *m_Own;
}

void CWinApp::UseDisplay(Display* display) {
    m_Other = display;
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
    return AfxGetApp()->GetDisplay().AskSaveFile(record);
}

uint32_t GetPlatformVersion() {
    return PlatformVersion();
}
