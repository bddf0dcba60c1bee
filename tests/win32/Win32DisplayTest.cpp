// What native windows add to the stories: keys, modality, other programs, the loader.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "toolkit/constants.h"

#include "testkit/TemporaryDirectory.h"
#include "tests/module/LoadedModule.h"
#include "tests/win32/Win32Person.h"

#include <filesystem>
#include <fstream>
#include <set>

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::IsSupersetOf;

namespace {

class OnNativeWindows : public ::testing::Test {
protected:
    OnNativeWindows() { loaded.host.values[ORN_VALUE_CONTROL] = ORN_CONTROL_ENABLE; }

    void Open(Win32Person::Script script) {
        ASSERT_TRUE(loaded.control->Init(0)) << loaded.LastError();
        user.OnNextDialog([&](Win32Person& person) {
            loaded.host.TakeCalls();
            script(person);
        });
        EXPECT_TRUE(user.Open(*loaded.control)) << loaded.LastError();
        EXPECT_EQ(user.Surprises(), 0);
        EXPECT_EQ(Win32Person::FrontHandle(), nullptr);
    }
    std::string TipAt(int id);

    LoadedModule loaded;
    Win32Person user;
};

TEST_F(OnNativeWindows, EscapeSendsNothingAndAnswersNo) {
    loaded.host.values[ORN_VALUE_CONTROL] = ORN_CONTROL_ENABLE | ORN_CONTROL_TRIGGER_ADDRESS;
    loaded.host.lines = {"ETM TRIGGER 0x100"}; // without it the first tab can't be left
    const std::vector<Win32Person::Script> ways = {
        [this](Win32Person&) { user.Press(VK_ESCAPE); },
        [this](Win32Person& person) { // from an edit of several lines, which likes to keep the key
            person.Tab(2);
            PostMessageA(user.Find(1063), WM_KEYDOWN, VK_ESCAPE, 0);
            user.Settle();
        },
        [this](
            Win32Person& person) { // from the ETM Configuration dialog, as if nothing had happened
            user.OnNextDialog([this](Win32Person&) { user.Press(VK_ESCAPE); });
            person.Click(1029);
            person.Click(IDCANCEL);
        },
        [this](Win32Person& person) { // from a question: a range beside the trigger
            person.Tab(1);
            person.Answer(Win32Person::kEscape);
            person.Click(1017);
            EXPECT_FALSE(person.Checked(1017));
            person.Click(IDCANCEL);
        },
    };
    for (size_t way = 0; way < ways.size(); ++way) {
        SCOPED_TRACE(way);
        Open([&](Win32Person& person) {
            person.Click(1002);
            EXPECT_TRUE(person.Enabled(IDC_APPLY_NOW));
            ways[way](person);
            EXPECT_FALSE(IsWindow(user.Window()));
        });
        EXPECT_THAT(loaded.host.TakeChanges(), ::testing::Each("Command(capability)"));
    }
}

TEST_F(OnNativeWindows, AHeldKeyPressesNothing) {
    const auto hold = [this] {
        for (const WPARAM key : {VK_RETURN, VK_ESCAPE}) {
            user.Press(key, Win32Person::kHeld);
            EXPECT_TRUE(IsWindow(user.Window())) << key;
        }
    };
    Open([&](Win32Person& person) {
        hold();
        user.OnNextDialog([&](Win32Person& dialog) {
            hold();
            PostMessageA(user.Find(1080), WM_KEYDOWN, VK_RETURN, Win32Person::kHeld);
            user.Settle();
            EXPECT_EQ(dialog.Text(1080), "\r\n"); // which is typing
        });
        person.Click(1029);
    });
}

/// Names the edits, lists and sliders of a window, and of the windows in it, that no static text
/// stands right before: that one is what screen readers call them.
std::string Nameless(HWND window) {
    std::string nameless;
    for (HWND child = GetWindow(window, GW_CHILD); child != nullptr;
         child = GetWindow(child, GW_HWNDNEXT)) {
        char kind[64] = "", before[64] = "", name[64] = "";
        GetClassNameA(child, kind, sizeof kind);
        const bool silent = !lstrcmpiA(kind, "Edit") || !lstrcmpiA(kind, "ComboBox") ||
                            !lstrcmpiA(kind, TRACKBAR_CLASSA);
        if (const HWND previous = GetWindow(child, GW_HWNDPREV)) {
            GetClassNameA(previous, before, sizeof before);
            GetWindowTextA(previous, name, sizeof name);
        }
        if (silent && (lstrcmpiA(before, "Static") != 0 || *name == '\0'))
            nameless += " " + std::to_string(GetDlgCtrlID(child));
        if (!silent) nameless += Nameless(child);
    }
    return nameless;
}

TEST_F(OnNativeWindows, TabChangesNothingAndTheStatusStandsInOneColumn) {
    std::vector<int> visited;
    Open([&](Win32Person& person) {
        do {
            visited.push_back(user.Focus());
            user.Press(VK_TAB);
        } while (user.Focus() != 1000 && visited.size() < 40);
        EXPECT_TRUE(person.Checked(1061));
        user.OnNextDialog(
            [](Win32Person&) { EXPECT_EQ(Nameless(Win32Person::FrontHandle()), ""); });
        person.Click(1029);
        // Neither does the way back through a group whose checked button can't be used.
        person.Tab(1);
        EXPECT_FALSE(person.Enabled(IDC_APPLY_NOW));

        person.Tab(2);
        EXPECT_FALSE(person.Visible(1064));
        const std::string text = person.Text(1063);
        std::set<int> columns;
        for (size_t tab = text.find('\t'); tab != std::string::npos; tab = text.find('\t', tab + 1))
            if (text[tab + 1] != '\t')
                columns.insert(LOWORD(SendMessageA(user.Find(1063), EM_POSFROMCHAR, tab + 1, 0)));
        EXPECT_EQ(Nameless(user.Window()), ""); // all three pages have been created
        EXPECT_EQ(columns.size(), 1u) << *columns.begin() << ' ' << *columns.rbegin();
    });
    EXPECT_THAT(visited, ElementsAre(1000, 1029, 1061, 1006, 1007, 1008, 1002, 1009, 1030, IDOK,
                                     IDCANCEL, IDC_TAB_CONTROL));
}

TEST_F(OnNativeWindows, ArrowsChooseAmongRadioButtons) {
    Open([&](Win32Person& person) {
        while (user.Focus() != 1061) user.Press(VK_TAB);
        BYTE keys[256] = {};
        AttachThreadInput(GetCurrentThreadId(), GetWindowThreadProcessId(user.Window(), nullptr),
                          TRUE);
        keys[VK_DOWN] = 0x80;
        SetKeyboardState(keys);
        user.Press(VK_DOWN);
        EXPECT_EQ(user.Focus(), 1034);
        EXPECT_TRUE(person.Checked(1034));
        // Control and Tab: the next tab, and the focus in its page.
        keys[VK_DOWN] = 0;
        keys[VK_CONTROL] = 0x80;
        SetKeyboardState(keys);
        user.Press(VK_TAB);
        EXPECT_EQ(person.TabInFront(), 1);
        EXPECT_EQ(GetParent(user.FocusWindow()), GetParent(user.Find(1012)));
        user.Press(VK_PRIOR);
        EXPECT_EQ(person.TabInFront(), 0);
        user.Press(VK_PRIOR); // around
        EXPECT_EQ(person.TabInFront(), 2);
        keys[VK_CONTROL] = 0;
        SetKeyboardState(keys);
        user.Press(VK_RETURN); // the default button
        EXPECT_FALSE(IsWindow(user.Window()));
    });
    EXPECT_THAT(loaded.host.TakeChanges(), ElementsAre("Command(capability)", "SetValue(0x0,0x3)"));
}

TEST_F(OnNativeWindows, TheMouseMovesTheSliderAndTextKeepsItsCodePage) {
    loaded.host.values[ORN_VALUE_CONTROL] = ORN_CONTROL_ENABLE | ORN_CONTROL_TRIGGER_ADDRESS;
    loaded.host.evaluates = true;
    Open([&](Win32Person& person) {
        for (const int position : {1, 62, 63, 100, 0, 200}) {
            person.Drag(1007, position);
            EXPECT_EQ(person.Text(1008), std::to_string(std::min(position, 100)));
        }
        person.Type(1077, "n\xE4he");
        person.Click(IDOK);
    });
    EXPECT_THAT(loaded.host.TakeChanges(),
                IsSupersetOf({"SetValue(0x2,0x0)", "Command(etm trigger n\xE4he)"}));
}

/// The tip that a page shows for the pointer near the left end of a control of its own.
std::string OnNativeWindows::TipAt(int id) {
    const HWND page = GetParent(user.Find(id));
    RECT place;
    GetWindowRect(user.Find(id), &place);
    MapWindowPoints(nullptr, page, reinterpret_cast<POINT*>(&place), 2);
    char text[512] = "";
    TTHITTESTINFOA test{page, {place.left + 2, (place.top + place.bottom) / 2}, {}};
    test.ti.cbSize = sizeof test.ti;
    test.ti.lpszText = text;
    for (HWND tips = nullptr;
         (tips = FindWindowExA(nullptr, tips, TOOLTIPS_CLASSA, nullptr)) != nullptr;)
        if (GetWindow(tips, GW_OWNER) == user.Window() &&
            SendMessageA(tips, TTM_HITTESTA, 0, reinterpret_cast<LPARAM>(&test)) != 0)
            return text;
    return {};
}

TEST_F(OnNativeWindows, TextsSetByAnotherProgramCountAndToolTipsAreThere) {
    Open([&](Win32Person& person) {
        const auto set = [this](int id, const char* text) {
            SendMessageA(user.Find(id), WM_SETTEXT, 0, reinterpret_cast<LPARAM>(text));
        };
        set(1008, "25");
        EXPECT_EQ(SendMessageA(user.Find(1007), TBM_GETPOS, 0, 0), 25);
        EXPECT_THAT(TipAt(1031), HasSubstr("\"stop\"")) << "disabled";
        EXPECT_THAT(TipAt(1003), HasSubstr("What raises the trigger"));
        EXPECT_THAT(TipAt(1083), HasSubstr("What ends a capture"))
            << "hidden: that of what is seen";
        user.OnNextDialog([&](Win32Person& dialog) {
            HWND tips = nullptr; // of this dialog
            while ((tips = FindWindowExA(nullptr, tips, TOOLTIPS_CLASSA, nullptr)) != nullptr)
                if (GetWindow(tips, GW_OWNER) == user.Window()) break;
            EXPECT_EQ(SendMessageA(tips, TTM_GETTOOLCOUNT, 0, 0), 6);
            EXPECT_EQ(SendMessageA(tips, TTM_GETMAXTIPWIDTH, 0, 0), 250);
            set(1080, "Title=\r\n");
            dialog.Answer(IDOK);
            dialog.Click(1082);
        });
        person.Click(1029);
    });
    EXPECT_THAT(user.Boxes(), ElementsAre("[Error] Please declare non-empty title\nof the board "
                                          "initialization file."));
}

TEST_F(OnNativeWindows, AFileIsReplacedOnlyWithTheUsersConsent) {
    const TemporaryDirectory directory;
    const std::string old = directory.Path() + "\\board.mac";
    const std::string name = directory.Path() + "\\board"; // which gets the extension later
    std::ofstream(old) << "old";
    loaded.module.SetModulePath((directory.Path() + "\\KVETMControl.dll").c_str());
    char before[MAX_PATH], after[MAX_PATH];
    GetCurrentDirectoryA(sizeof before, before);
    Open([&](Win32Person& person) {
        user.OnNextDialog([&](Win32Person& dialog) {
            dialog.Type(1080, "Title=New\r\n");
            for (const char* typed : {name.c_str(), old.c_str()}) {
                dialog.AnswerSave(typed);
                dialog.Answer(IDNO);
                dialog.AnswerSave(nullptr); // the dialog is back, or still there
                dialog.Click(1082);
            }
            EXPECT_EQ(std::filesystem::file_size(old), 3u);
            dialog.AnswerSave(name.c_str());
            dialog.Answer(IDYES);
            dialog.Click(1082);
            EXPECT_GT(std::filesystem::file_size(old), 3u);

            // Too long to be shown whole, it can only be read.
            std::ofstream(old, std::ios::app) << std::string(1024 * 1024, 'x');
            for (const int selection : {0, 1}) {
                dialog.Select(1078, selection);
                const LONG styles = GetWindowLongA(user.Find(1080), GWL_STYLE);
                EXPECT_EQ((styles & ES_READONLY) != 0, selection == 1);
            }
        });
        person.Click(1029);
    });
    GetCurrentDirectoryA(sizeof after, after);
    EXPECT_STREQ(after, before);
}

TEST_F(OnNativeWindows, TheHostWaitsForTheDialogWhichGoesWithIt) {
    const HWND host = CreateWindowA("STATIC", "host", WS_OVERLAPPEDWINDOW | WS_VISIBLE, 0, 0, 400,
                                    300, nullptr, nullptr, nullptr, nullptr);
    SetActiveWindow(host);
    Open([&](Win32Person& person) {
        EXPECT_FALSE(IsWindowEnabled(host));
        const HWND sheet = user.Window();
        user.OnNextDialog([&](Win32Person&) { EXPECT_FALSE(IsWindowEnabled(sheet)); });
        person.Click(1029);
        EXPECT_TRUE(IsWindowEnabled(sheet));
        EXPECT_EQ(user.Focus(), 1029);
        EXPECT_FALSE(loaded.control->Open()); // from a thread that is not the windows'
        EXPECT_EQ(Win32Person::FrontHandle(), sheet);
    });
    EXPECT_TRUE(IsWindowEnabled(host));
    EXPECT_EQ(GetActiveWindow(), host);

    Open([&](Win32Person& person) {
        person.Click(1002);
        PostMessageA(host, WM_CLOSE, 0, 0);
        user.Settle();
        EXPECT_FALSE(IsWindow(user.Window()));
    });
    EXPECT_THAT(loaded.host.TakeChanges(), IsEmpty());

    // A wish to quit closes all, too, and is passed on.
    Open([&](Win32Person& person) {
        person.Click(1002);
        user.OnNextDialog([&](Win32Person&) {
            PostThreadMessageA(GetWindowThreadProcessId(user.Window(), nullptr), WM_QUIT, 7, 0);
            while (IsWindow(user.Window())) Sleep(5);
        });
        person.Click(1029);
    });
    EXPECT_THAT(loaded.host.TakeChanges(), IsEmpty());
    MSG message{};
    EXPECT_TRUE(PeekMessageA(&message, nullptr, WM_QUIT, WM_QUIT, PM_REMOVE));
    EXPECT_EQ(message.wParam, 7u);
}

/// Run at several resolutions of the screen.
TEST_F(OnNativeWindows, EachDialogFitsTheScreenAndHasTheIcon) {
    const auto height = [this] {
        MONITORINFO monitor{};
        monitor.cbSize = sizeof monitor;
        GetMonitorInfoA(MonitorFromWindow(user.Window(), MONITOR_DEFAULTTOPRIMARY), &monitor);
        RECT own;
        GetWindowRect(user.Window(), &own);
        EXPECT_TRUE(own.top >= monitor.rcWork.top && own.bottom <= monitor.rcWork.bottom)
            << own.top << " to " << own.bottom;
        EXPECT_NE(SendMessageA(user.Window(), WM_GETICON, ICON_SMALL, 0), 0);
        return double(own.bottom - own.top) / double(monitor.rcWork.bottom - monitor.rcWork.top);
    };
    Open([&](Win32Person& person) {
        const HDC screen = GetDC(nullptr);
        const bool sharp = GetDeviceCaps(screen, LOGPIXELSY) > 96;
        ReleaseDC(nullptr, screen);
        // No smaller than it has to be.
        EXPECT_GT(height(), sharp ? 0.75 : 0.5);
        user.OnNextDialog([&](Win32Person&) { height(); });
        person.Click(1029);
    });
}

TEST(AHostThatDestroysTheComponent, EndsWhateverRuns) {
    const TemporaryDirectory directory;
    const std::string old = directory.Write("board.mac", "");
    const std::string name = directory.PathOf("board"); // asked about by the module itself
    const auto saveAs = [](Win32Person& person, const char* path) {
        person.OnNextDialog([path](Win32Person& dialog) {
            dialog.AnswerSave(path);
            dialog.Answer(Win32Person::kNothing);
            dialog.Type(1080, "Title=New\r\n");
            dialog.Click(1082);
        });
        person.Click(1029);
    };
    struct {
        Win32Person::Script script;
        bool (*inFront)(HWND);
    } const rows[] = {
        {[](Win32Person& person) { person.Answer(Win32Person::kNothing), person.Click(1030); },
         Win32Person::IsBox},
        {[&](Win32Person& person) { saveAs(person, Win32Person::kNoFile); },
         Win32Person::IsSaveDialog},
        {[&](Win32Person& person) { saveAs(person, old.c_str()); }, Win32Person::IsBox},
        {[&](Win32Person& person) { saveAs(person, name.c_str()); }, Win32Person::IsBox},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(&row - rows);
        LoadedModule loaded(directory.Path());
        loaded.host.values[ORN_VALUE_CONTROL] = ORN_CONTROL_ENABLE;
        ASSERT_TRUE(loaded.control->Init(0));
        loaded.host.onCall = [&](const std::string& call) {
            if (call == "Command(start)") throw std::runtime_error("in a box");
            if (call == "GetTraceState" && row.inFront(Win32Person::FrontHandle()))
                loaded.Destroy();
        };
        Win32Person user;
        user.OnNextDialog(row.script);
        EXPECT_TRUE(user.Open(*loaded.control));
        EXPECT_EQ(loaded.control, nullptr);
        EXPECT_EQ(user.Surprises(), 0);
        EXPECT_EQ(Win32Person::FrontHandle(), nullptr);
    }
}

TEST(TheDll, CanBeLoadedAnewAndBearsVersionAndManifest) {
    for (int round = 0; round < 10; ++round) {
        LoadedModule loaded;
        ASSERT_TRUE(loaded.control->Init(0));
        Win32Person user;
        user.OnNextDialog([&](Win32Person& person) {
            RECT place;
            GetWindowRect(user.Window(), &place);
            EXPECT_EQ(place.left == 31 && place.top == 47, round > 0); // where it was left
            SetWindowPos(user.Window(), nullptr, 31, 47, 0, 0, SWP_NOSIZE | SWP_NOZORDER);
            EXPECT_EQ(person.TabInFront(), 0);
            person.Tab(2);
            person.Click(IDOK);
        });
        EXPECT_TRUE(user.Open(*loaded.control));

        const auto library = GetModuleHandleA("KVETMControl.dll");
        EXPECT_NE(FindResourceA(library, MAKEINTRESOURCEA(2), MAKEINTRESOURCEA(24)), nullptr);
        char path[MAX_PATH], bytes[4096];
        GetModuleFileNameA(library, path, sizeof path);
        ASSERT_TRUE(GetFileVersionInfoA(path, 0, sizeof bytes, bytes));
        VS_FIXEDFILEINFO* version = nullptr;
        UINT size = 0;
        ASSERT_TRUE(VerQueryValueA(bytes, "\\", reinterpret_cast<void**>(&version), &size));
        EXPECT_EQ(version->dwFileVersionMS, 0x10007u);
        EXPECT_EQ(version->dwFileVersionLS, 0u);
    }
    EXPECT_EQ(GetModuleHandleA("KVETMControl.dll"), nullptr);
}

} // namespace
