#include "tests/win32/Win32User.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <stdexcept>
#include <thread>

namespace {

constexpr DWORD kPatience = 10000; // milliseconds
constexpr int kSaveNames[] = {0x47c, 0x480};
constexpr int kBoardList = 1078; // only the ETM Configuration dialog has it

std::string ClassOf(HWND window) {
    char name[64];
    return std::string(name, static_cast<size_t>(GetClassNameA(window, name, sizeof name)));
}

BOOL CALLBACK FindFront(HWND window, LPARAM result) {
    DWORD process = 0;
    GetWindowThreadProcessId(window, &process);
    if (process != GetCurrentProcessId() || !IsWindowVisible(window) || !IsWindowEnabled(window) ||
        ClassOf(window) != "#32770")
        return TRUE;
    *reinterpret_cast<HWND*>(result) = window;
    return FALSE;
}

HWND PageInFront(HWND sheet) {
    for (HWND page = FindWindowExA(sheet, nullptr, "#32770", nullptr); page != nullptr;
         page = FindWindowExA(sheet, page, "#32770", nullptr))
        if (IsWindowVisible(page)) return page;
    return nullptr;
}

HWND NameField(HWND window) {
    for (const int id : kSaveNames)
        if (const HWND field = GetDlgItem(window, id)) return field;
    return nullptr;
}

void Post(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    if (!PostMessageA(window, message, wParam, lParam)) throw std::runtime_error("cannot post");
}

} // namespace

Win32User::Win32User()
    : m_WindowThread(GetCurrentThreadId()),
      m_Marker(CreateWindowA("EDIT", "", 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr, nullptr, nullptr)) {}

bool Win32User::Open(IOrnKVETMCtrl& control) {
    std::thread person([this] {
        for (DWORD waited = 0; Front() == nullptr; waited += 5) {
            if (waited > kPatience) throw std::runtime_error("no dialog came up");
            Sleep(5);
        }
        Attend(Front());
    });
    const bool opened = control.Open();
    person.join();
    return opened;
}

HWND Win32User::Front() {
    HWND front = nullptr;
    EnumWindows(FindFront, reinterpret_cast<LPARAM>(&front));
    return front;
}

/// Returns false once the window has gone.
bool Win32User::LetWork(HWND window) {
    const WPARAM mark = ++m_Marks;
    Post(m_Marker, EM_SETLIMITTEXT, mark, 0);
    const ULONGLONG limit = GetTickCount64() + kPatience;
    for (DWORD_PTR reached = 0; reached != mark; Sleep(1)) {
        if (!IsWindow(window)) return false; // and with it perhaps the last loop
        if (GetTickCount64() > limit) throw std::runtime_error("the windows do not answer");
        SendMessageTimeoutA(m_Marker, EM_GETLIMITTEXT, 0, 0, SMTO_NORMAL, 100, &reached);
    }
    return IsWindow(window) != 0;
}

void Win32User::Settle() {
    const HWND window = m_Attended.back();
    while (LetWork(window) && Front() != window) {
        const HWND front = Front();
        if (front != nullptr && std::ranges::count(m_Attended, front) == 0) Attend(front);
    }
}

bool Win32User::IsSaveDialog(HWND window) {
    return NameField(window) != nullptr;
}

bool Win32User::IsBox(HWND window) {
    return window != nullptr && !IsSaveDialog(window) &&
           GetDlgItem(window, kTabControl) == nullptr && GetDlgItem(window, kBoardList) == nullptr;
}

void Win32User::Attend(HWND window) {
    m_Attended.push_back(window);
    if (IsSaveDialog(window))
        AnswerSaveDialog(window);
    else if (IsBox(window))
        AnswerBox(window);
    else
        RunScript(window);
    const ULONGLONG limit = GetTickCount64() + kPatience;
    while (LetWork(window)) { // something may still come up, such as a question
        Settle();
        if (GetTickCount64() > limit) throw std::runtime_error("stays open: " + TextOf(window));
    }
    m_Attended.pop_back();
}

void Win32User::RunScript(HWND window) {
    try {
        LetWork(window); // it may not have its focus yet
        Next<Script>(m_Scripts, [](User&) {})(*this);
    } catch (const std::exception& error) {
        ADD_FAILURE() << error.what();
    }
    if (IsWindow(window)) PostMessageA(window, WM_SYSCOMMAND, SC_CLOSE, 0);
}

void Win32User::AnswerBox(HWND box) {
    std::string text = "[" + TextOf(box) + "] ";
    for (HWND part = FindWindowExA(box, nullptr, "Static", nullptr); part != nullptr;
         part = FindWindowExA(box, part, "Static", nullptr))
        text += TextOf(part);
    m_Boxes.push_back(text);
    for (const WPARAM key : {VK_RETURN, VK_ESCAPE}) Post(box, WM_KEYDOWN, key, kHeld);
    const int answer = Next<int>(m_Answers, IDCANCEL);
    if (answer == kNothing) return;
    const HWND button = GetDlgItem(box, answer);
    if (answer == kEscape || button == nullptr)
        Post(box, WM_KEYDOWN, VK_ESCAPE, 0);
    else
        Post(button, BM_CLICK, 0, 0);
}

void Win32User::AnswerSaveDialog(HWND dialog) {
    do { // again if a question kept it open
        std::string path = Next<std::string>(m_Saves, "");
        if (path == kNoFile) return;
        std::ranges::replace(path, '/', '\\');
        Post(NameField(dialog), WM_KEYDOWN, VK_ESCAPE, kHeld);
        SendMessageA(NameField(dialog), WM_SETTEXT, 0, reinterpret_cast<LPARAM>(path.c_str()));
        Post(GetDlgItem(dialog, path.empty() ? IDCANCEL : IDOK), BM_CLICK, 0, 0);
        Settle();
    } while (IsWindow(dialog) && !m_Saves.empty());
}

HWND Win32User::Find(int id) {
    const HWND window = m_Attended.back();
    HWND control = nullptr;
    if (const HWND page = PageInFront(window)) control = GetDlgItem(page, id);
    if (control == nullptr) control = GetDlgItem(window, id);
    if (control == nullptr) throw std::runtime_error("no control " + std::to_string(id));
    return control;
}

void Win32User::Click(int id) {
    if (!Enabled(id)) throw std::runtime_error("disabled: " + std::to_string(id));
    Post(Find(id), BM_CLICK, 0, 0);
    Settle();
}

void Win32User::Type(int id, const char* text) {
    const HWND edit = Find(id);
    SendMessageA(edit, EM_SETSEL, 0, -1);
    Post(edit, WM_KEYDOWN, VK_DELETE, 0);
    for (; *text != '\0'; ++text)
        if (*text != '\n') Post(edit, WM_CHAR, static_cast<unsigned char>(*text), 0);
    Settle();
}

void Win32User::Select(int id, int index) {
    const HWND combo = Find(id);
    SendMessageA(combo, CB_SETCURSEL, static_cast<WPARAM>(index), 0);
    Post(GetParent(combo), WM_COMMAND, MAKEWPARAM(id, CBN_SELCHANGE),
         reinterpret_cast<LPARAM>(combo));
    Settle();
}

void Win32User::Tab(int index) {
    Post(Find(kTabControl), TCM_SETCURFOCUS, static_cast<WPARAM>(index), 0);
    Settle();
}

void Win32User::Drag(int id, int position) {
    const HWND slider = Find(id);
    SendMessageA(slider, TBM_SETPOS, TRUE, position);
    Post(GetParent(slider), WM_HSCROLL, MAKEWPARAM(TB_THUMBTRACK, position),
         reinterpret_cast<LPARAM>(slider));
    Settle();
    NMHDR header{slider, static_cast<UINT_PTR>(id), NM_RELEASEDCAPTURE};
    SendMessageA(GetParent(slider), WM_NOTIFY, header.idFrom, reinterpret_cast<LPARAM>(&header));
    Settle();
}

void Win32User::CloseFrame() {
    Post(m_Attended.back(), WM_SYSCOMMAND, SC_CLOSE, 0);
    Settle();
}

void Win32User::Press(WPARAM key, LPARAM details) {
    Post(FocusWindow(), WM_KEYDOWN, key, details);
    Settle();
}

void Win32User::Wait(unsigned milliseconds) {
    Sleep(milliseconds);
    Settle();
}

HWND Win32User::FocusWindow() const {
    GUITHREADINFO info{};
    info.cbSize = sizeof info;
    GetGUIThreadInfo(m_WindowThread, &info);
    return info.hwndFocus;
}

std::string Win32User::TextOf(HWND window) {
    std::string text(static_cast<size_t>(SendMessageA(window, WM_GETTEXTLENGTH, 0, 0)) + 1, '\0');
    text.resize(static_cast<size_t>(
        SendMessageA(window, WM_GETTEXT, text.size(), reinterpret_cast<LPARAM>(text.data()))));
    return text;
}
