#include "toolkit/win32/boxes.h"

#include <algorithm>
#include <cstring>
#include <string>
#include <utility>
#include <vector>

#include "toolkit/win32/NativeLook.h"
#include "toolkit/win32/keyboard.h"

namespace {

// The save dialog's record in its short form, and with the fields from flagsEx on.
constexpr uint32_t kShortRecord = 76;

/// A held key answers nothing. And the system takes no Escape where a box has no Cancel.
LRESULT CALLBACK FilterKeys(int code, WPARAM wParam, LPARAM lParam) {
    const auto* message = reinterpret_cast<const MSG*>(lParam);
    if (code == MSGF_DIALOGBOX && IsHeldKey(*message)) return 1;
    if (code == MSGF_DIALOGBOX && message->message == WM_KEYDOWN && message->wParam == VK_ESCAPE) {
        const HWND box = GetAncestor(message->hwnd, GA_ROOT);
        if (GetDlgItem(box, IDNO) != nullptr && GetDlgItem(box, IDCANCEL) == nullptr) {
            PostMessageW(box, WM_COMMAND, IDNO, 0);
            return 1;
        }
    }
    return CallNextHookEx(nullptr, code, wParam, lParam);
}

class KeyHook {
public:
    KeyHook()
        : m_Hook(SetWindowsHookExW(WH_MSGFILTER, FilterKeys, nullptr, GetCurrentThreadId())) {}
    ~KeyHook() {
        if (m_Hook != nullptr) UnhookWindowsHookEx(m_Hook);
    }
    KeyHook(const KeyHook&) = delete;
    KeyHook& operator=(const KeyHook&) = delete;

private:
    HHOOK m_Hook;
};

/// A modal window of the system's that runs. Its call tells nobody which window that is:
/// it is the first dialog that comes up in it, and no other one, say of the host's.
class RunningBox {
public:
    RunningBox()
        : m_Outer(std::exchange(s_Innermost, this)),
          m_Hook(SetWindowsHookExW(WH_CBT, FindWindowOfCall, nullptr, GetCurrentThreadId())) {}
    ~RunningBox() {
        if (m_Hook != nullptr) UnhookWindowsHookEx(m_Hook);
        s_Innermost = m_Outer;
    }
    RunningBox(const RunningBox&) = delete;
    RunningBox& operator=(const RunningBox&) = delete;

    bool IsCancelled() const { return m_Cancelled; }

    static void CancelAll() {
        EndMenu(); // has a loop of its own
        for (RunningBox* box = s_Innermost; box != nullptr; box = box->m_Outer) {
            box->m_Cancelled = true;
            if (!IsWindow(box->m_Window)) continue;
            EnumThreadWindows(GetCurrentThreadId(), RefuseIfOwned,
                              reinterpret_cast<LPARAM>(box->m_Window));
            Refuse(box->m_Window);
        }
    }

private:
    static bool IsDialog(HWND window) {
        char name[8] = "";
        return GetClassNameA(window, name, sizeof name) != 0 && std::strcmp(name, "#32770") == 0;
    }
    static LRESULT CALLBACK FindWindowOfCall(int code, WPARAM wParam, LPARAM lParam) {
        const auto window = reinterpret_cast<HWND>(wParam);
        if (code == HCBT_CREATEWND && s_Innermost != nullptr && !IsWindow(s_Innermost->m_Window) &&
            IsDialog(window) && (GetWindowLongW(window, GWL_STYLE) & WS_CHILD) == 0)
            s_Innermost->m_Window = window;
        return CallNextHookEx(nullptr, code, wParam, lParam);
    }
    static void Refuse(HWND box) {
        for (const int button : {IDCANCEL, IDNO, IDOK})
            if (GetDlgItem(box, button) != nullptr) {
                PostMessageW(box, WM_COMMAND, static_cast<WPARAM>(button), 0);
                return;
            }
    }
    /// A question of the save dialog's own.
    static BOOL CALLBACK RefuseIfOwned(HWND window, LPARAM box) {
        if (IsDialog(window) && GetWindow(window, GW_OWNER) == reinterpret_cast<HWND>(box))
            Refuse(window);
        return TRUE;
    }

    static inline RunningBox* s_Innermost = nullptr;
    RunningBox* m_Outer;
    HHOOK m_Hook;
    HWND m_Window = nullptr;
    bool m_Cancelled = false;
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

OPENFILENAMEA Request(HWND owner, const SaveFileRecord& record, char* file) {
    static_assert(sizeof(void*) != 4 || sizeof(OPENFILENAMEA) == 88);
    const bool isShort = record.structSize == kShortRecord;
    OPENFILENAMEA request{};
    request.lStructSize = isShort ? OPENFILENAME_SIZE_VERSION_400A : sizeof request;
    request.hwndOwner = owner;
    request.lpstrFilter = record.filter;
    request.nFilterIndex = record.filterIndex;
    request.lpstrFile = file;
    request.nMaxFile = record.maxFile;
    request.lpstrFileTitle = record.fileTitle;
    request.nMaxFileTitle = record.maxFileTitle;
    request.lpstrInitialDir = record.initialDirectory;
    request.lpstrTitle = record.title;
    request.lpstrDefExt = record.defaultExtension;
    request.Flags = record.flags;
    if (!isShort) request.FlagsEx = record.flagsEx;
    return request;
}

/// The system asks about the name as it was typed. Asks about the file that will be
/// written, if that is another one.
bool MayReplace(HWND owner, const SaveFileRecord& record, const std::string& name) {
    const size_t start = name.find_last_of("\\/") + 1;
    if ((record.flags & OFN_OVERWRITEPROMPT) == 0 || record.extensionToCome == nullptr ||
        name.find('.', start) != std::string::npos)
        return true;
    const std::string path = name + '.' + record.extensionToCome;
    if (GetFileAttributesA(path.c_str()) == INVALID_FILE_ATTRIBUTES) return true;
    const std::string question =
        path.substr(start) + " already exists.\nDo you want to replace it?";
    return ShowMessageBox(owner, question.c_str(), "Confirm Save As",
                          MB_YESNO | MB_ICONEXCLAMATION) == IDYES;
}

} // namespace

int ShowMessageBox(HWND owner, const char* text, const char* title, unsigned flags) {
    const NativeLook look;
    const KeyHook hook;
    const RunningBox running;
    // Without an owner all of the thread's windows have to wait.
    if (owner == nullptr) flags |= MB_TASKMODAL;
    const int answer = MessageBoxA(owner, text, title, flags);
    return answer != 0 ? answer : IDCANCEL;
}

bool ShowSaveDialog(HWND owner, SaveFileRecord& record) {
    if (record.file == nullptr || record.maxFile == 0) return false;
    const NativeLook look;
    const KeyHook hook;
    const CurrentDirectoryKept directory;
    // A dialog that fails may leave its buffer changed.
    std::vector<char> file(record.maxFile, '\0');
    std::strncpy(file.data(), record.file, file.size() - 1);
    OPENFILENAMEA request = Request(owner, record, file.data());
    const RunningBox running;
    do {
        if (running.IsCancelled() || !GetSaveFileNameA(&request)) return false;
    } while (!MayReplace(owner, record, file.data()));
    std::memcpy(record.file, file.data(), file.size());
    record.filterIndex = request.nFilterIndex;
    return true;
}

void CancelRunningBoxes() {
    RunningBox::CancelAll();
}
