#include "host/drive/win32/Win32User.h"

#include <algorithm>
#include <stdexcept>

namespace etmhost {

namespace {

constexpr DWORD kAnswerTime = 10'000; // in ms
constexpr int kSaveNames[] = {0x47c, 0x480};
constexpr LPARAM kAltHeld = 0x20000000;
constexpr LPARAM kReleased = static_cast<LPARAM>(0xC0000001U);

std::string ClassOf(HWND window) {
    char name[64];
    return std::string(name, static_cast<size_t>(GetClassNameA(window, name, sizeof name)));
}

bool IsOurDialog(HWND window) {
    DWORD process = 0;
    GetWindowThreadProcessId(window, &process);
    return process == GetCurrentProcessId() && ClassOf(window) == "#32770";
}

BOOL CALLBACK FindTip(HWND window, LPARAM result) {
    DWORD process = 0;
    GetWindowThreadProcessId(window, &process);
    if (process != GetCurrentProcessId() || ClassOf(window) != TOOLTIPS_CLASSA ||
        !IsWindowVisible(window))
        return TRUE;
    *reinterpret_cast<HWND*>(result) = window;
    return FALSE;
}

BOOL CALLBACK FindFront(HWND window, LPARAM result) {
    if (!IsOurDialog(window) || !IsWindowVisible(window) || !IsWindowEnabled(window)) return TRUE;
    *reinterpret_cast<HWND*>(result) = window;
    return FALSE;
}

BOOL CALLBACK FindAny(HWND window, LPARAM result) {
    *reinterpret_cast<bool*>(result) = IsOurDialog(window);
    return *reinterpret_cast<bool*>(result) ? FALSE : TRUE;
}

bool AnyDialog() {
    bool any = false;
    EnumWindows(FindAny, reinterpret_cast<LPARAM>(&any));
    return any;
}

/// What a dialog has and a message box never.
BOOL CALLBACK FindOther(HWND window, LPARAM result) {
    const std::string kind = ClassOf(window);
    *reinterpret_cast<bool*>(result) = kind != "Static" && kind != "Button";
    return *reinterpret_cast<bool*>(result) ? FALSE : TRUE;
}

HWND NextChild(HWND window, HWND last, const char* kind) {
    return FindWindowExA(window, last, kind, nullptr);
}

HWND PageInFront(HWND sheet) {
    for (HWND page = NextChild(sheet, nullptr, "#32770"); page != nullptr;
         page = NextChild(sheet, page, "#32770"))
        if (IsWindowVisible(page)) return page;
    return nullptr;
}

POINT Middle(const RECT& area) {
    return {(area.left + area.right) / 2, (area.top + area.bottom) / 2};
}

/// The code of a key by its name.
WPARAM CodeOf(const std::string& name) {
    constexpr struct {
        const char* name;
        int code;
    } codes[] = {
        {"Escape", VK_ESCAPE}, {"Return", VK_RETURN},  {"Tab", VK_TAB},       {"Space", VK_SPACE},
        {"Up", VK_UP},         {"Down", VK_DOWN},      {"Left", VK_LEFT},     {"Right", VK_RIGHT},
        {"Home", VK_HOME},     {"End", VK_END},        {"PageUp", VK_PRIOR},  {"PageDown", VK_NEXT},
        {"Delete", VK_DELETE}, {"Backspace", VK_BACK}, {"Insert", VK_INSERT},
    };
    for (const auto& key : codes)
        if (key.name == name) return static_cast<WPARAM>(key.code);
    if (name.size() == 1)
        return static_cast<WPARAM>(name[0]); // letters and digits have their codes
    return static_cast<WPARAM>(VK_F1 + std::stoi(name.substr(1)) - 1);
}

} // namespace

Win32User::Win32User()
    : m_WindowThread(GetCurrentThreadId()),
      m_Marker(CreateWindowA("EDIT", "", 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr, nullptr, nullptr)) {}

// --- The two threads ---------------------------------------------------------------

void Win32User::Post(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    if (!PostMessageA(window, message, wParam, lParam)) throw std::runtime_error("cannot post");
}

Win32User::Mark::Mark(Win32User& user)
    : m_Marker(user.m_Marker), m_Number(++user.m_Marks), m_Limit(GetTickCount64() + kAnswerTime) {
    Post(m_Marker, EM_SETLIMITTEXT, m_Number, 0);
}

bool Win32User::Mark::Reached() const {
    if (GetTickCount64() > m_Limit) throw std::runtime_error("the windows do not answer");
    DWORD_PTR reached = 0;
    SendMessageTimeoutA(m_Marker, EM_GETLIMITTEXT, 0, 0, SMTO_NORMAL, 100, &reached);
    return reached == m_Number;
}

void Win32User::Settle() {
    LetWork([] { return !AnyDialog(); });
}

// --- Windows -----------------------------------------------------------------------

HWND Win32User::FrontHandle() {
    HWND front = nullptr;
    EnumWindows(FindFront, reinterpret_cast<LPARAM>(&front));
    return front;
}

HWND Win32User::NameField(HWND window) {
    for (const int id : kSaveNames)
        if (const HWND field = GetDlgItem(window, id)) return field;
    return nullptr;
}

bool Win32User::IsBox(HWND window) {
    bool other = false;
    EnumChildWindows(window, FindOther, reinterpret_cast<LPARAM>(&other));
    return window != nullptr && !other;
}

FrontWindow Win32User::Front() {
    const HWND window = FrontHandle();
    if (window == nullptr) return {};
    FrontWindow front{FrontWindow::Dialog, TextOf(window), {}, false};
    if (IsSaveDialog(window)) {
        front.kind = FrontWindow::Save;
    } else if (IsBox(window)) {
        front.kind = FrontWindow::Box;
        for (HWND part = NextChild(window, nullptr, "Static"); part != nullptr;
             part = NextChild(window, part, "Static"))
            front.text += TextOf(part);
        std::erase(front.text, '\r');
    }
    front.sheet = GetDlgItem(window, kTabControl) != nullptr;
    return front;
}

HWND Win32User::Look(int id) {
    const HWND window = Window();
    HWND control = nullptr;
    if (const HWND page = PageInFront(window)) control = GetDlgItem(page, id);
    return control != nullptr ? control : GetDlgItem(window, id);
}

HWND Win32User::Find(int id) {
    if (const HWND control = Look(id)) return control;
    throw std::runtime_error("no control " + std::to_string(id) + " in front");
}

HWND Win32User::FindKind(int id, const char* kind, const char* what) {
    const HWND control = Find(id);
    if (ClassOf(control) != kind) throw std::runtime_error(std::to_string(id) + " is no " + what);
    return control;
}

std::vector<int> Win32User::WithCaption(const std::string& caption) {
    std::vector<int> found;
    for (const HWND window : {PageInFront(Window()), Window()})
        for (HWND button = window != nullptr ? NextChild(window, nullptr, "Button") : nullptr;
             button != nullptr; button = NextChild(window, button, "Button"))
            if (IsWindowVisible(button) &&
                (GetWindowLongA(button, GWL_STYLE) & BS_TYPEMASK) != BS_GROUPBOX &&
                WithoutMarks(TextOf(button)) == caption)
                found.push_back(GetDlgCtrlID(button));
    return found;
}

// --- Acts ----------------------------------------------------------------------------

void Win32User::PostMouse(HWND window, UINT message, POINT place) {
    Post(window, message, message == WM_LBUTTONUP ? 0 : MK_LBUTTON, MAKELPARAM(place.x, place.y));
}

void Win32User::Press(HWND window, POINT place) {
    for (const UINT message : {WM_LBUTTONDOWN, WM_LBUTTONUP}) PostMouse(window, message, place);
    Settle();
}

/// Gives a control the keyboard, as the mouse does.
void Win32User::GoTo(HWND control) {
    Post(Window(), WM_NEXTDLGCTL, reinterpret_cast<WPARAM>(control), TRUE);
    Settle();
}

void Win32User::Click(int id) {
    Post(Find(id), BM_CLICK, 0, 0);
    Settle();
}

void Win32User::Type(int id, const std::string& text) {
    const HWND edit = FindKind(id, "Edit", "edit");
    GoTo(edit);
    SendMessageA(edit, EM_SETSEL, 0, -1);
    Post(edit, WM_KEYDOWN, VK_DELETE, 0);
    Write(text);
}

void Win32User::Write(const std::string& text) {
    const HWND edit = FocusWindow();
    for (const char c : text) // the key for a new line is Return
        if (c != '\r') Post(edit, WM_CHAR, c == '\n' ? '\r' : static_cast<unsigned char>(c), 0);
    Settle();
}

/// Opens the list and clicks an entry: keys would choose each entry on the way.
void Win32User::Select(int id, int index) {
    const HWND combo = FindKind(id, "ComboBox", "list");
    COMBOBOXINFO parts{};
    parts.cbSize = sizeof parts;
    SendMessageA(combo, CB_GETCOMBOBOXINFO, 0, reinterpret_cast<LPARAM>(&parts));
    Press(combo, Middle(parts.rcButton));
    const HWND list = parts.hwndList;
    if (SendMessageA(combo, CB_GETDROPPEDSTATE, 0, 0) == FALSE)
        throw std::runtime_error("the list of " + std::to_string(id) + " does not open");
    RECT entry, shown;
    GetClientRect(list, &shown);
    const auto row = static_cast<WPARAM>(index);
    SendMessageA(list, LB_GETITEMRECT, row, reinterpret_cast<LPARAM>(&entry));
    if (entry.top < shown.top || entry.bottom > shown.bottom) { // as the wheel does
        SendMessageA(list, LB_SETTOPINDEX, row, 0);
        SendMessageA(list, LB_GETITEMRECT, row, reinterpret_cast<LPARAM>(&entry));
    }
    Press(list, Middle(entry));
}

void Win32User::Tab(int index) {
    Post(Find(kTabControl), TCM_SETCURFOCUS, static_cast<WPARAM>(index), 0);
    Settle();
}

/// Moves the thumb by the mouse, to and fro until it is there. Where a pixel is more than one step,
/// the arrows do the rest.
void Win32User::Drag(int id, int position) {
    const HWND slider = FindKind(id, TRACKBAR_CLASSA, "slider");
    const auto ask = [slider](UINT what) {
        return static_cast<int>(SendMessageA(slider, what, 0, 0));
    };
    position = std::clamp(position, ask(TBM_GETRANGEMIN), ask(TBM_GETRANGEMAX));
    RECT thumb, area;
    SendMessageA(slider, TBM_GETTHUMBRECT, 0, reinterpret_cast<LPARAM>(&thumb));
    GetClientRect(slider, &area);
    const POINT from = Middle(thumb);
    PostMouse(slider, WM_LBUTTONDOWN, from);
    POINT at = from;
    for (int left = area.left, right = area.right; left <= right;) {
        at.x = (left + right) / 2;
        PostMouse(slider, WM_MOUSEMOVE, at);
        Settle();
        if (ask(TBM_GETPOS) == position) break;
        (ask(TBM_GETPOS) < position ? left : right) = at.x + (ask(TBM_GETPOS) < position ? 1 : -1);
    }
    PostMouse(slider, WM_LBUTTONUP, at);
    Settle();
    for (int steps = ask(TBM_GETRANGEMAX) - ask(TBM_GETRANGEMIN);
         steps > 0 && ask(TBM_GETPOS) != position; --steps)
        Press(ask(TBM_GETPOS) < position ? VK_RIGHT : VK_LEFT);
}

void Win32User::Press(WPARAM key, LPARAM details) {
    const HWND window = FocusWindow();
    const bool system = (details & kAltHeld) != 0;
    Post(window, system ? WM_SYSKEYDOWN : WM_KEYDOWN, key, details);
    // A button is pressed by Space when the key comes up.
    if (key == VK_SPACE) Post(window, system ? WM_SYSKEYUP : WM_KEYUP, key, details | kReleased);
    Settle();
}

void Win32User::Press(const KeyName& key) {
    constexpr BYTE down = 0x80;
    BYTE keys[256] = {};
    if (key.control) keys[VK_CONTROL] = down;
    if (key.shift) keys[VK_SHIFT] = down;
    if (key.alt) keys[VK_MENU] = down;
    const WPARAM code = CodeOf(key.name);
    // Radio buttons look whether an arrow brought the keyboard to them.
    if (code >= VK_LEFT && code <= VK_DOWN) keys[code] = down;
    AttachThreadInput(GetCurrentThreadId(), m_WindowThread, TRUE);
    SetKeyboardState(keys);
    Press(code, key.alt ? kAltHeld : 0);
    std::ranges::fill(keys, BYTE{0});
    SetKeyboardState(keys);
    AttachThreadInput(GetCurrentThreadId(), m_WindowThread, FALSE);
}

void Win32User::CloseFrame() {
    const HWND window = Window();
    if (IsBox(window)) return AnswerBox(Answer::Escape); // its frame may have nothing to close by
    Post(window, WM_SYSCOMMAND, SC_CLOSE, 0);
    Settle();
}

void Win32User::AnswerBox(Answer answer) {
    constexpr int buttons[] = {IDYES, IDNO, IDOK, IDCANCEL};
    const HWND box = Window();
    if (answer == Answer::Escape) {
        Post(box, WM_KEYDOWN, VK_ESCAPE, 0);
    } else {
        const HWND button = GetDlgItem(box, buttons[static_cast<size_t>(answer)]);
        if (button == nullptr) throw std::runtime_error("the box has no such button");
        Post(button, BM_CLICK, 0, 0);
    }
    Settle();
}

void Win32User::SaveAs(const std::string& path) {
    const HWND dialog = Window();
    SendMessageA(NameField(dialog), WM_SETTEXT, 0, reinterpret_cast<LPARAM>(path.c_str()));
    Post(GetDlgItem(dialog, path.empty() ? IDCANCEL : IDOK), BM_CLICK, 0, 0);
    Settle();
}

void Win32User::TakePicture(const std::filesystem::path&) {
    throw std::runtime_error("this build takes no pictures");
}

// --- What is seen ----------------------------------------------------------------------

bool Win32User::Checked(int id) {
    return SendMessageA(FindKind(id, "Button", "button"), BM_GETCHECK, 0, 0) == BST_CHECKED;
}

int Win32User::Selection(int id) {
    if (id == kTabControl) return static_cast<int>(SendMessageA(Find(id), TCM_GETCURSEL, 0, 0));
    return static_cast<int>(SendMessageA(FindKind(id, "ComboBox", "list"), CB_GETCURSEL, 0, 0));
}

std::string Win32User::Help() {
    HWND tip = nullptr;
    EnumWindows(FindTip, reinterpret_cast<LPARAM>(&tip));
    return tip != nullptr ? TextOf(tip) : "";
}

std::vector<std::string> Win32User::Entries(int id) {
    std::vector<std::string> entries;
    if (id == kTabControl) {
        char title[128] = "";
        TCITEMA item{};
        item.mask = TCIF_TEXT;
        item.pszText = title;
        item.cchTextMax = sizeof title;
        for (WPARAM i = 0;
             SendMessageA(Find(id), TCM_GETITEMA, i, reinterpret_cast<LPARAM>(&item)) != 0; ++i)
            entries.push_back(WithoutMarks(item.pszText));
        return entries;
    }
    const HWND combo = FindKind(id, "ComboBox", "list");
    const auto count = static_cast<WPARAM>(SendMessageA(combo, CB_GETCOUNT, 0, 0));
    for (WPARAM i = 0; i < count; ++i) {
        const auto length = static_cast<size_t>(SendMessageA(combo, CB_GETLBTEXTLEN, i, 0));
        std::string text(length + 1, '\0');
        SendMessageA(combo, CB_GETLBTEXT, i, reinterpret_cast<LPARAM>(text.data()));
        entries.push_back(text.substr(0, length));
    }
    return entries;
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

} // namespace etmhost
