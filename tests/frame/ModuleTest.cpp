// The export, the factory, the control component, and Open without its pages' work.

#include <algorithm>
#include <cstring>

#include "frame/FactoryTable.h"
#include "frame/OrnAPIBase.h"
#include "frame/interfaces/IOrnKVETMSupp.h"
#include "tests/support/Session.h"

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::StartsWith;

namespace {

TEST(FactoryTable, GrowsByTenAndKeepsItsRows) {
    FactoryTable table;
    const std::string names = "abcdefghijk";
    for (size_t i = 0; i < 11; ++i)
        table.AddFactoryRow({names.c_str() + i, "component", nullptr, nullptr});
    EXPECT_EQ(table.Count, 11);
    EXPECT_EQ(table.Capacity, 20);
    for (int32_t i = 0; i < 11; ++i)
        EXPECT_EQ(table.Find(i)->InterfaceName, names.c_str() + i) << i;
    EXPECT_EQ(table.Find(11), nullptr);
    EXPECT_EQ(table.Find(-1), nullptr);
}

TEST(ModuleObject, ListsItsOneRow) {
    IOrnAPIBase* module = OrnDLL();
    EXPECT_EQ(module, OrnDLL());
    EXPECT_EQ(module->GetRowCount(), 1);
    EXPECT_STREQ(module->GetRowInterfaceName(0), "IOrnKVETMCtrl");
    EXPECT_STREQ(module->GetRowComponentName(0), "KVETMControl");
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
    EXPECT_EQ(module.GetModulePath(), nullptr);
    module.SetModulePath("/a/b.so");
    EXPECT_STREQ(module.GetModulePath(), "/a/b.so");
    module.SetModulePath("");
    EXPECT_EQ(module.GetModulePath(), nullptr);
    module.SetModulePath(nullptr);
    EXPECT_EQ(module.GetModulePath(), nullptr);

    HostObject<IOrnAPI> host("iornapi");
    HostObject<IOrnEmu> other("IOrnEmu");
    HostObject<IOrnAPI> nameless(nullptr);
    module.SetAPI(&host);
    module.SetAPI(&other);
    module.SetAPI(&nameless);
    EXPECT_EQ(g_HostAPI, &host);
    EXPECT_EQ(g_API, nullptr);
    module.SetAPI(nullptr);
    EXPECT_EQ(g_HostAPI, nullptr);
}

class Component : public Session {};

TEST_F(Component, SaysWhoItIs) {
    struct Identity {
        IOrnInterface* object;
        const char* interfaceName;
        int32_t interfaceVersion;
        const char* componentName;
        int32_t componentVersion;
    };
    IOrnInterface* support = control->GetInterface("IOrnKVETMSupp");
    ASSERT_NE(support, nullptr);
    EXPECT_EQ(support, control->GetInterface("IOrnKVETMSupp"));
    for (const Identity& row : {Identity{OrnDLL(), "IOrnAPIBase", 120, "OrnAPIBase", 120},
                                Identity{control, "IOrnKVETMCtrl", 100, "KVETMControl", 107},
                                Identity{support, "IOrnKVETMSupp", 100, "KVETMSupp", 102}}) {
        SCOPED_TRACE(row.interfaceName);
        EXPECT_STREQ(row.object->GetInterfaceName(), row.interfaceName);
        EXPECT_EQ(row.object->GetInterfaceVersion(), row.interfaceVersion);
        EXPECT_STREQ(row.object->GetComponentName(), row.componentName);
        EXPECT_EQ(row.object->GetComponentVersion(), row.componentVersion);
        EXPECT_EQ(row.object->GetInterface(row.interfaceName), nullptr);
        EXPECT_EQ(row.object->GetInterface("iornkvetmsupp"), nullptr);
        EXPECT_EQ(row.object->GetInterface(nullptr), nullptr);
        row.object->ReleaseInterface(row.object);
    }
}

/// The operations of a host that was built from the headers by another compiler are
/// slots of a table: calls them as such, by the numbers that the headers give.
TEST_F(Component, KeepsItsSlots) {
    auto slot = [](void* object, int index) { return (*static_cast<void***>(object))[index]; };
    using Text = const char* (*)(void*);
    using Number = int32_t (*)(void*);
    using TextOf = const char* (*)(void*, int32_t);
    EXPECT_STREQ(reinterpret_cast<Text>(slot(OrnDLL(), 0))(OrnDLL()), "IOrnAPIBase");
    EXPECT_EQ(reinterpret_cast<Number>(slot(OrnDLL(), 6))(OrnDLL()), 1);
    EXPECT_STREQ(reinterpret_cast<TextOf>(slot(OrnDLL(), 7))(OrnDLL(), 0), "KVETMControl");
    EXPECT_STREQ(reinterpret_cast<Text>(slot(OrnDLL(), 12))(OrnDLL()), OrnDLL()->GetModulePath());

    EXPECT_EQ(reinterpret_cast<Number>(slot(control, 6))(control), 0);
    EXPECT_EQ(reinterpret_cast<Number>(slot(control, 12))(control), 1);
    EXPECT_EQ(reinterpret_cast<Number>(slot(control, 14))(control), 6);
    EXPECT_STREQ(reinterpret_cast<TextOf>(slot(control, 15))(control, 1), "IOrnVETMTrace");
    using Find = IOrnInterface* (*)(void*, const char*);
    EXPECT_EQ(reinterpret_cast<Find>(slot(control, 17))(control, "IOrnEmu"), &host.emu);
    using Init = bool (*)(void*, uint32_t);
    EXPECT_TRUE(reinterpret_cast<Init>(slot(control, 18))(control, 0));
    using Apply = bool (*)(void*);
    EXPECT_TRUE(reinterpret_cast<Apply>(slot(control, 20))(control));
    using Last = void (*)(void*, char*, int32_t);
    char text[4] = "xxx";
    reinterpret_cast<Last>(slot(control, 21))(control, text, sizeof text);
    EXPECT_STREQ(text, "");
}

TEST_F(Component, NamesWhatItNeedsAndHandsItBack) {
    std::vector<std::string> names;
    for (int32_t i = 0; i < control->GetRequiredCount(); ++i)
        names.push_back(control->GetRequiredName(i));
    EXPECT_THAT(names, ElementsAre("IOrnAPI", "IOrnVETMTrace", "IOrnTraceClient",
                                   "IOrnXTraceClient", "IOrnXTrace", "IOrnEmu"));
    EXPECT_EQ(control->GetRequiredName(6), nullptr);
    EXPECT_EQ(control->GetRequiredName(-1), nullptr);
    EXPECT_STREQ(control->GetImplementedName(0), "IOrnKVETMCtrl");
    EXPECT_EQ(control->GetImplementedName(1), nullptr);

    EXPECT_EQ(control->GetAttachedInterface("IOrnEmu"), &host.emu);
    EXPECT_EQ(control->AttachInterface("iornemu", nullptr), -1);
    EXPECT_EQ(control->AttachInterface(nullptr, nullptr), -1);
    EXPECT_EQ(control->GetAttachedInterface("IOrnEmu"), &host.emu);
    EXPECT_EQ(control->DetachInterface("IOrnEmu"), 0);
    EXPECT_EQ(control->GetAttachedInterface("IOrnEmu"), nullptr);
    EXPECT_EQ(control->GetAttachedInterface("IOrnSomething"), nullptr);
}

TEST_F(Component, InitReadsTheTargetOrSaysThatItCannot) {
    host.values.erase(2);
    EXPECT_FALSE(control->Init(0));
    EXPECT_EQ(LastError(), "Cannot read ETM/Trace settings from target");
    EXPECT_EQ(g_Ctrl, nullptr);
    EXPECT_NE(g_Settings, nullptr);
    char start[5];
    control->GetLastError(start, sizeof start);
    EXPECT_STREQ(start, "Cann");
    control->GetLastError(nullptr, 10);

    host.values[2] = 1024;
    EXPECT_TRUE(control->Init(0));
    EXPECT_EQ(LastError(), "");
    EXPECT_EQ(g_Settings->Working.TriggerPosition, 50);
    EXPECT_TRUE(control->Init(0)); // a second time: no leak
}

TEST_F(Component, EachMissingPieceHasItsText) {
    EXPECT_FALSE(control->Apply());
    EXPECT_EQ(LastError(), "Module is not initialized properly");
    EXPECT_FALSE(control->Open());
    EXPECT_EQ(LastError(), "No memory");
    control->DetachInterface("IOrnVETMTrace");
    EXPECT_FALSE(control->Open());
    EXPECT_EQ(LastError(), "IOrnVETM interface is not attached");
    control->DetachInterface("IOrnAPI");
    EXPECT_FALSE(control->Open());
    EXPECT_EQ(LastError(), "IOrnAPI interface is not attached");
    EXPECT_TRUE(control->Init(0));
    EXPECT_FALSE(control->Apply());
    EXPECT_EQ(LastError(), "Module is not initialized properly");

    host.Attach(*control);
    host.values.erase(0);
    EXPECT_FALSE(control->Open());
    EXPECT_EQ(LastError(), "Cannot read ETM/Trace settings from target");
    host.values[0] = 0;
    display.RefuseToShow("there is no display");
    EXPECT_FALSE(control->Open());
    EXPECT_EQ(LastError(), "Error while creating main window: there is no display");
    EXPECT_EQ(g_SheetOpen, 0);
}

TEST_F(Component, OpenReadsTheTargetAnewAndLeavesNothingBehind) {
    ASSERT_TRUE(control->Init(0));
    g_Settings->Working.TriggerPosition = 10; // edited and never applied
    host.values[2] = 0;
    for (const int button : {IDOK, IDCANCEL}) {
        EXPECT_TRUE(OpenAnd([&] {
            EXPECT_EQ(g_SheetOpen, 1);
            EXPECT_NE(g_MainSheet, nullptr);
            EXPECT_NE(g_ControlPage, nullptr);
            EXPECT_EQ(g_Settings->Working.TriggerPosition, 100);
            display.Click(button);
        }));
        EXPECT_EQ(g_SheetOpen, 0);
        EXPECT_EQ(g_MainSheet, nullptr);
        EXPECT_EQ(g_ControlPage, nullptr);
        EXPECT_THAT(host.TakeChanges(), ElementsAre("Command(capability)"));
    }
}

TEST_F(Component, ASecondComponentStartsAfresh) {
    ASSERT_TRUE(control->Init(0));
    ASSERT_NE(control->GetInterface("IOrnKVETMSupp"), nullptr);
    OrnDLL()->DestroyRowObject(0, control);
    EXPECT_EQ(g_Settings, nullptr);
    EXPECT_EQ(g_Supp, nullptr);
    EXPECT_EQ(g_Ctrl, nullptr);
    control = static_cast<IOrnKVETMCtrl*>(OrnDLL()->CreateRowObject(0));
    EXPECT_FALSE(control->Apply());
    EXPECT_EQ(LastError(), "Module is not initialized properly");
}

} // namespace
