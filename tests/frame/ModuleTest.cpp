// The export, the factory, the control component, and Open without its pages' work.

#include <algorithm>
#include <cstring>

#include "frame/FactoryTable.h"
#include "frame/OrnAPIBase.h"
#include "frame/interfaces/IOrnKVETMSupp.h"
#include "tests/support/Session.h"

using ::testing::ElementsAre;
using ::testing::IsEmpty;

namespace {

TEST(FactoryTable, GrowsByTenAndKeepsItsRows) {
    FactoryTable table;
    const std::string names = "abcdefghijk";
    for (const char& name : names) table.AddFactoryRow({&name, "component", nullptr, nullptr});
    EXPECT_EQ(std::pair(table.Count, table.Capacity), std::pair(11, 20));
    EXPECT_EQ(table.Find(10)->InterfaceName, &names[10]);
    for (const int32_t outside : {11, -1}) EXPECT_EQ(table.Find(outside), nullptr);
}

TEST(ModuleObject, ListsItsOneRow) {
    IOrnAPIBase* module = OrnDLL();
    EXPECT_EQ(module->GetRowCount(), 1);
    EXPECT_STREQ(module->GetRowInterfaceName(0), "IOrnKVETMCtrl");
    for (const int32_t outside : {1, -1, INT32_MAX, INT32_MIN}) {
        EXPECT_STREQ(module->GetRowInterfaceName(outside), "");
        EXPECT_STREQ(module->GetRowComponentName(outside), "");
        EXPECT_EQ(module->CreateRowObject(outside), nullptr);
        module->DestroyRowObject(outside, nullptr);
    }
    module->DestroyRowObject(0, nullptr);
}

TEST(ModuleObject, TakesPathAndHost) {
    OrnAPIBase module;
    for (const char* none : {static_cast<const char*>(nullptr), ""}) {
        module.SetModulePath("/a/b.so");
        EXPECT_STREQ(module.GetModulePath(), "/a/b.so");
        module.SetModulePath(none);
        EXPECT_EQ(module.GetModulePath(), nullptr);
    }
    HostObject<IOrnAPI> host("iornapi"), nameless(nullptr);
    HostObject<IOrnEmu> other("IOrnEmu");
    for (IOrnInterface* object : std::initializer_list<IOrnInterface*>{&host, &other, &nameless})
        module.SetAPI(object);
    EXPECT_EQ(g_HostAPI, &host);
    EXPECT_EQ(g_API, nullptr);
    module.SetAPI(nullptr);
    EXPECT_EQ(g_HostAPI, nullptr);
}

class Component : public Session {
protected:
    /// The error of an operation that has failed; "" for one that has not.
    std::string Error(bool success) { return success ? "" : LastError(); }
};

TEST_F(Component, SaysWhoItIs) {
    IOrnInterface* support = control->GetInterface("IOrnKVETMSupp");
    EXPECT_EQ(support, control->GetInterface("IOrnKVETMSupp"));
    std::string said;
    for (IOrnInterface* object :
         {static_cast<IOrnInterface*>(OrnDLL()), static_cast<IOrnInterface*>(control), support}) {
        ASSERT_NE(object, nullptr);
        said += object->GetInterfaceName() + (" " + std::to_string(object->GetInterfaceVersion()));
        said += std::string(" ") + object->GetComponentName() + " " +
                std::to_string(object->GetComponentVersion()) + "; ";
        EXPECT_EQ(object->GetInterface(nullptr), nullptr);
    }
    EXPECT_EQ(said, "IOrnAPIBase 120 OrnAPIBase 120; IOrnKVETMCtrl 100 KVETMControl 107; "
                    "IOrnKVETMSupp 100 KVETMSupp 102; ");
}

/// Calls an operation by its number in the object's table, as a host does that was
/// built from the headers by another compiler.
template <class Result, class... Arguments>
Result Call(void* object, int slot, Arguments... arguments) {
    void* operation = (*static_cast<void***>(object))[slot];
    return reinterpret_cast<Result (*)(void*, Arguments...)>(operation)(object, arguments...);
}

TEST_F(Component, KeepsItsSlots) {
    IOrnAPIBase* module = OrnDLL();
    EXPECT_STREQ(Call<const char*>(module, 0), "IOrnAPIBase");
    EXPECT_EQ(Call<int32_t>(module, 6), 1);
    EXPECT_STREQ(Call<const char*>(module, 7, 0), "KVETMControl");
    EXPECT_STREQ(Call<const char*>(module, 12), module->GetModulePath());
    EXPECT_EQ(Call<int32_t>(control, 6), 0);
    EXPECT_EQ(Call<int32_t>(control, 12), 1);
    EXPECT_EQ(Call<int32_t>(control, 14), 6);
    EXPECT_STREQ(Call<const char*>(control, 15, 1), "IOrnVETMTrace");
    EXPECT_EQ(Call<IOrnInterface*>(control, 17, "IOrnEmu"), &host.emu);
    EXPECT_TRUE(Call<bool>(control, 18, 0u));
    EXPECT_TRUE(Call<bool>(control, 20));
    char text[4] = "xxx";
    Call<void>(control, 21, &text[0], 4);
    EXPECT_STREQ(text, "");
}

uint64_t g_Answer = 0; // what HasFeature, SetValue and GetValue leave in the register

/// The host's trace engine as another compiler may have made it: of the register in which
/// it answers only the low byte is set on purpose.
class LowByteHost {
public:
    explicit LowByteHost(IOrnVETMTrace& trace) : m_Object(&trace) {
        std::memcpy(&m_Before, m_Object, sizeof m_Before);
        std::copy_n(m_Before - 2, std::size(m_Table), m_Table); // with what precedes slot 0
        for (const int slot : {9, 10, 11})
            m_Table[2 + slot] =
                reinterpret_cast<void*>(+[](void*, uint32_t, void*) { return g_Answer; });
        void** const table = m_Table + 2;
        std::memcpy(m_Object, &table, sizeof table);
    }
    ~LowByteHost() { std::memcpy(m_Object, &m_Before, sizeof m_Before); }

private:
    void* m_Object;
    void** m_Before;
    void* m_Table[2 + 13];
};

TEST_F(Component, OfAHostsAnswerTheLowByteCounts) {
    for (const uint64_t answer : {0x01u, 0x02u, 0x04u, 0x80u, 0xFFu, 0xABCDEF00u, 0x100u}) {
        SCOPED_TRACE(answer);
        const bool yes = (answer & 0xFF) != 0;
        const LowByteHost lowByte(host.trace);
        g_Answer = answer;
        EXPECT_EQ(control->Init(0), yes);
        EXPECT_EQ(OpenAnd([] {}), yes);
        g_Settings->Working.Accumulate = g_Settings->Working.TriggerPosition = 1;
        EXPECT_EQ(control->Apply(), yes);
        EXPECT_EQ(g_Settings->IsModified(), !yes) << "or it would be sent again for ever";
    }
}

TEST_F(Component, NamesWhatItNeedsAndHandsItBack) {
    std::vector<std::string> names;
    for (int32_t i = 0; i < control->GetRequiredCount(); ++i)
        names.push_back(control->GetRequiredName(i));
    EXPECT_THAT(names, ElementsAre("IOrnAPI", "IOrnVETMTrace", "IOrnTraceClient",
                                   "IOrnXTraceClient", "IOrnXTrace", "IOrnEmu"));
    for (const int32_t outside : {6, -1}) EXPECT_EQ(control->GetRequiredName(outside), nullptr);
    EXPECT_STREQ(control->GetImplementedName(0), "IOrnKVETMCtrl");
    EXPECT_EQ(control->GetImplementedName(1), nullptr);

    EXPECT_EQ(control->GetAttachedInterface("IOrnEmu"), &host.emu);
    for (const char* name : {"iornemu", static_cast<const char*>(nullptr)})
        EXPECT_EQ(control->AttachInterface(name, nullptr), -1);
    EXPECT_EQ(control->GetAttachedInterface("IOrnEmu"), &host.emu);
    EXPECT_EQ(control->DetachInterface("IOrnEmu"), 0);
    for (const char* name : {"IOrnEmu", "IOrnSomething"})
        EXPECT_EQ(control->GetAttachedInterface(name), nullptr) << name;
}

TEST_F(Component, InitReadsTheTargetAndComponentsComeAndGo) {
    host.values.erase(ORN_VALUE_TRIGGER_COUNT);
    host.lines = {"ETM PC = all"};
    EXPECT_EQ(Error(control->Init(0)), "Cannot read ETM/Trace settings from target");
    EXPECT_EQ(g_Ctrl, nullptr);
    EXPECT_NE(g_Settings, nullptr);
    control->GetLastError(nullptr, 10);
    host.TakeCalls();
    EXPECT_TRUE(control->Apply()); // half a read is nothing to send
    EXPECT_THAT(host.TakeCalls(), IsEmpty());

    host.values[ORN_VALUE_TRIGGER_COUNT] = 1024;
    EXPECT_TRUE(control->Init(0));
    EXPECT_EQ(LastError(), "");
    EXPECT_EQ(g_Settings->Working.TriggerPosition, 50);
    EXPECT_TRUE(control->Init(0)); // a second time: no leak

    auto* second = static_cast<IOrnKVETMCtrl*>(OrnDLL()->CreateRowObject(0));
    EXPECT_TRUE(second->Init(0) && second->GetInterface("IOrnKVETMSupp") != nullptr);
    OrnDLL()->DestroyRowObject(0, second);
    EXPECT_TRUE(g_Supp != nullptr && g_Ctrl != nullptr && control->Apply());
    OrnDLL()->DestroyRowObject(0, control);
    EXPECT_TRUE(g_Settings == nullptr && g_Supp == nullptr && g_Ctrl == nullptr);
    control = static_cast<IOrnKVETMCtrl*>(OrnDLL()->CreateRowObject(0));
    EXPECT_EQ(Error(control->Apply()), "Module is not initialized properly");
}

TEST_F(Component, BetweenTwoHandlersOfTheSheetAttachingActsAtOnce) {
    const auto attached = [&] { return control->GetAttachedInterface("IOrnEmu"); };
    EXPECT_TRUE(OpenAnd([&] { // a timer of the host's
        control->DetachInterface("IOrnEmu");
        EXPECT_EQ(attached(), nullptr);
        host.onCall = [&](const std::string&) {
            control->AttachInterface("IOrnEmu", &host.emu);
            EXPECT_EQ(attached(), nullptr) << "inside an operation";
            host.onCall = nullptr;
        };
        display.Advance(600);
        EXPECT_EQ(attached(), &host.emu);
        EXPECT_EQ(Error(control->Init(0)), "Another operation of the module is running");

        display.RefuseToShow("not on this thread");
        for (const int button : {IDOK, IDCANCEL}) { // of the question that the host asks
            if (button == IDOK) display.OnNextDialog([&] { display.Click(IDOK); });
            EXPECT_FALSE(control->Open());
            display.RefuseToShow("");
            EXPECT_EQ(control->Open(), button == IDOK);
        }
        IOrnInterface* second = OrnDLL()->CreateRowObject(0);
        OrnDLL()->DestroyRowObject(0, second);
        EXPECT_TRUE(display.Front() != nullptr && !display.Front()->HasEnded());
        OrnDLL()->DestroyRowObject(0, control);
        EXPECT_TRUE(display.Front()->HasEnded());
    }));
    EXPECT_EQ(g_Settings, nullptr);
    control = static_cast<IOrnKVETMCtrl*>(OrnDLL()->CreateRowObject(0));
}

TEST_F(Component, AHostThatCallsBackForEverIsHeardNoMore) {
    ASSERT_TRUE(control->Init(0));
    g_Settings->Working.Accumulate = 1;
    std::string refusal;
    host.onCall = [&](const std::string&) {
        if (!control->Apply() && refusal.empty()) refusal = LastError();
    };
    EXPECT_TRUE(control->Apply());
    EXPECT_EQ(refusal, "Calls are nested too deeply");
    host.onCall = nullptr;
    host.values[ORN_VALUE_CONTROL] = ORN_CONTROL_ENABLE;
    EXPECT_TRUE(OpenAnd([&] {
        host.onCall = [&](const std::string& call) {
            if (call == "Command(start)") display.Click(1030);
        };
        display.Click(1030);
    }));
    const auto times = std::ranges::count(host.TakeCalls(), "Command(start)");
    EXPECT_TRUE(times > 1 && times < 20) << times;
}

TEST_F(Component, EachMissingPieceHasItsText) {
    EXPECT_EQ(Error(control->Apply()), "Module is not initialized properly");
    EXPECT_EQ(Error(control->Open()), "No memory");
    control->DetachInterface("IOrnVETMTrace");
    EXPECT_EQ(Error(control->Open()), "IOrnVETM interface is not attached");
    control->DetachInterface("IOrnAPI");
    EXPECT_EQ(Error(control->Open()), "IOrnAPI interface is not attached");
    EXPECT_TRUE(control->Init(0));
    EXPECT_EQ(Error(control->Apply()), "Module is not initialized properly");

    host.Attach(*control);
    host.values.erase(ORN_VALUE_CONTROL);
    EXPECT_EQ(Error(control->Open()), "Cannot read ETM/Trace settings from target");
    host.values[ORN_VALUE_CONTROL] = 0;
    display.RefuseToShow("there is no display");
    EXPECT_EQ(Error(control->Open()), "Error while creating main window: there is no display");
    EXPECT_EQ(g_SheetOpen, 0);
}

TEST_F(Component, OpenReadsTheTargetAnewAndLeavesNothingBehind) {
    ASSERT_TRUE(control->Init(0));
    g_Settings->Working.TriggerPosition = 10; // edited and never applied
    host.values[ORN_VALUE_TRIGGER_COUNT] = 0;
    for (const int button : {IDOK, IDCANCEL}) {
        EXPECT_TRUE(OpenAnd([&] {
            EXPECT_EQ(g_Settings->Working.TriggerPosition, 100);
            if (button == IDCANCEL) g_Settings->Working.PcBegin = "edited";
            display.Click(button);
        }));
        EXPECT_TRUE(g_Settings->Working == g_Settings->Snapshot);
        EXPECT_TRUE(g_SheetOpen == 0 && g_MainSheet == nullptr && g_ControlPage == nullptr);
        EXPECT_THAT(host.TakeChanges(), ElementsAre("Command(capability)"));
    }
}

} // namespace
