#include "toolkit/win32/boxes.h"

#include <algorithm>
#include <cstring>
#include <string>
#include <vector>

#include "toolkit/win32/NativeLook.h"

namespace {

// The save dialog's record in its short form, and with the fields from flagsEx on.
constexpr uint32_t kShortRecord = 76;

/// The system takes no Escape where a box has no Cancel.
LRESULT CALLBACK EscapeIsNo(int code, WPARAM wParam, LPARAM lParam) {
    const auto* message = reinterpret_cast<const MSG*>(lParam);
    if (code == MSGF_DIALOGBOX && message->message == WM_KEYDOWN && message->wParam == VK_ESCAPE) {
        const HWND box = GetAncestor(message->hwnd, GA_ROOT);
        if (GetDlgItem(box, IDNO) != nullptr && GetDlgItem(box, IDCANCEL) == nullptr) {
            PostMessageW(box, WM_COMMAND, IDNO, 0);
            return 1;
        }
    }
    return CallNextHookEx(nullptr, code, wParam, lParam);
}

class EscapeHook {
public:
    EscapeHook()
        : m_Hook(SetWindowsHookExW(WH_MSGFILTER, EscapeIsNo, nullptr, GetCurrentThreadId())) {}
    ~EscapeHook() {
        if (m_Hook != nullptr) UnhookWindowsHookEx(m_Hook);
    }
    EscapeHook(const EscapeHook&) = delete;
    EscapeHook& operator=(const EscapeHook&) = delete;

private:
    HHOOK m_Hook;
};

/// The save dialog moves the whole process to where the file lies.
class CurrentDirectoryKept {
public:
    CurrentDirectoryKept() : m_Path(GetCurrentDirectoryW(0, nullptr), L'\0') {
        const auto size = static_cast<DWORD>(m_Path.size());
        m_Path.resize(std::min(GetCurrentDirectoryW(size, m_Path.data()), size));
    }
    ~CurrentDirectoryKept() {
        if (!m_Path.empty()) SetCurrentDirectoryW(m_Path.c_str());
    }
    CurrentDirectoryKept(const CurrentDirectoryKept&) = delete;
    CurrentDirectoryKept& operator=(const CurrentDirectoryKept&) = delete;

private:
    std::wstring m_Path;
};

} // namespace

int ShowMessageBox(HWND owner, const char* text, const char* title, unsigned flags) {
    const NativeLook look;
    const EscapeHook hook;
    // Without an owner all of the thread's windows have to wait.
    if (owner == nullptr) flags |= MB_TASKMODAL;
    const int answer = MessageBoxA(owner, text != nullptr ? text : "", title, flags);
    return answer != 0 ? answer : IDCANCEL;
}

bool ShowSaveDialog(HWND owner, SaveFileRecord& record) {
    if (record.file == nullptr || record.maxFile == 0) return false;
    const NativeLook look;
    const CurrentDirectoryKept directory;
    // A dialog that fails may leave its buffer changed.
    std::vector<char> file(record.maxFile, '\0');
    std::strncpy(file.data(), record.file, file.size() - 1);

    static_assert(sizeof(void*) != 4 || sizeof(OPENFILENAMEA) == 88);
    OPENFILENAMEA request{};
    const bool isShort = record.structSize == kShortRecord;
    request.lStructSize = isShort ? OPENFILENAME_SIZE_VERSION_400A : sizeof request;
    request.hwndOwner = owner;
    request.lpstrFilter = record.filter;
    request.nFilterIndex = record.filterIndex;
    request.lpstrFile = file.data();
    request.nMaxFile = record.maxFile;
    request.lpstrFileTitle = record.fileTitle;
    request.nMaxFileTitle = record.maxFileTitle;
    request.lpstrInitialDir = record.initialDirectory;
    request.lpstrTitle = record.title;
    request.lpstrDefExt = record.defaultExtension;
    request.Flags = record.flags;
    if (!isShort) request.FlagsEx = record.flagsEx;
    if (!GetSaveFileNameA(&request)) return false;
    std::memcpy(record.file, file.data(), file.size());
    record.filterIndex = request.nFilterIndex;
    return true;
}
