// A host that calls the module back from inside each of its own operations.

#include "frame/interfaces/IOrnKVETMSupp.h"
#include "tests/support/Session.h"

namespace {

/// One life of a component under a host that misbehaves, and the session after it.
struct Round {
    Round() {
        AfxGetApp()->UseDisplay(&display);
        host.boardFile = "/none";
        host.offersExecuteCmd = host.evaluates = true;
        host.info = "info";
        Create();
        EXPECT_TRUE(control->Init(0));
    }
    ~Round() {
        host.onCall = nullptr;
        // Whatever has happened, the next session works.
        if (control == nullptr) Create();
        host.Attach(*control);
        EXPECT_TRUE(control->Init(0));
        display.OnNextDialog([&] { display.Click(IDOK); });
        EXPECT_TRUE(control->Open());
        RecordingHost::Detach(*control);
        Destroy();
        EXPECT_EQ(g_Settings, nullptr);
        EXPECT_EQ(display.OpenWindows(), 0);
        AfxGetApp()->UseDisplay(nullptr);
    }

    void Create() {
        control = static_cast<IOrnKVETMCtrl*>(OrnDLL()->CreateRowObject(0));
        host.Attach(*control);
    }
    void Destroy() {
        display.ClearLog();
        OrnDLL()->DestroyRowObject(0, std::exchange(control, nullptr));
    }

    void Use(const std::vector<int>& ids) {
        for (const int id : ids)
            if (display.Has(id)) display.Click(id);
    }

    /// A person who leads the module to every operation of the host, as long as there
    /// is a dialog.
    void UseEverything() {
        display.OnNextDialog([this] {
            Use({1000}); // Enable ETM
            if (display.Has(1035)) display.Advance(600);
            Use({1035, 1005});
            if (display.Has(1077)) display.Type(1077, "main");
            Use({1030, 1031, 1006});
            display.OnNextDialog([this] {
                if (display.Has(1065)) display.Select(1065, 1);
                Use({IDOK});
            });
            Use({1029});
            for (const int tab : {1, 2, 0})
                if (display.Has(IDC_TAB_CONTROL)) display.Tab(tab);
            Use({IDOK});
        });
        if (control != nullptr) control->Open();
        if (control != nullptr) control->Apply();
    }

    RecordingHost host;
    HeadlessDisplay display;
    IOrnKVETMCtrl* control = nullptr;
};

TEST(Reentry, EveryEntryFromEveryOperation) {
    using Enter = void (*)(Round&);
    const std::pair<const char*, Enter> entries[] = {
        {"Init", [](Round& r) { EXPECT_FALSE(r.control->Init(0)); }},
        {"Open", [](Round& r) { r.control->Open(); }},
        {"Apply", [](Round& r) { r.control->Apply(); }},
        {"InitBoardFile",
         [](Round& r) {
             g_Settings->Working.BoardFile = "/no/such/file";
             auto* support = r.control->GetInterface("IOrnKVETMSupp");
             static_cast<IOrnKVETMSupp*>(support)->InitBoardFile("", nullptr, 0, nullptr);
         }},
        {"Detach", [](Round& r) { RecordingHost::Detach(*r.control); }},
        {"Attach", [](Round& r) { r.host.Attach(*r.control); }},
        {"Destroy",
         [](Round& r) {
             r.Destroy();
             r.host.onCall = [](const std::string& call) { ADD_FAILURE() << call; };
         }},
        {"a second component",
         [](Round&) {
             IOrnInterface* other = OrnDLL()->CreateRowObject(0);
             EXPECT_FALSE(static_cast<IOrnKVETMCtrl*>(other)->Init(0));
             OrnDLL()->DestroyRowObject(0, other);
         }},
        {"Destroy and a new one", [](Round& r) { r.Destroy(), r.Create(); }},
    };
    const char* const operations[] = {
        "GetValue(0x1000004)",  "GetValue(0x0)",  "Command(capability)", "GetSettingsLine",
        "ReadSetting",          "HasFeature",     "GetTraceState",       "GetInfoText",
        "HasCommand",           "Action(Check",   "Action(Eval",         "Command(enable",
        "Command(etm portsize", "Command(etm pc", "Command(start",       "Command(trigger",
        "WriteSetting",         "SetValue"};
    for (const auto& [entry, enter] : entries)
        for (const std::string operation : operations)
            for (const int times : {1, 3, 12}) {
                SCOPED_TRACE(entry + (" from " + operation));
                Round round;
                int left = times;
                round.host.onCall = [&, enter = enter](const std::string& call) {
                    if (round.control == nullptr || !call.starts_with(operation) || left == 0)
                        return;
                    --left;
                    enter(round);
                };
                round.UseEverything();
                EXPECT_LT(left, times) << "nobody came here";
                const auto runs = [](const std::string& line) { return line.starts_with("run "); };
                EXPECT_TRUE(round.control || std::ranges::none_of(round.display.Log(), runs));
            }
}

} // namespace
