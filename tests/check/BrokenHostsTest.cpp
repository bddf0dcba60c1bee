// Hosts with one small fault each, behind the checker: it names the rule that is broken, and no
// other. Each host has a process of its own, because the checker lives as long as that.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>
#include <functional>
#include <sstream>
#include <thread>

#include "check/rules.h"
#include "host/module/module_session.h"
#include "testkit/RecordingHost.h"
#include "testkit/SilentTrace.h"
#include "tests/module/QtPerson.h"
#include "tests/support/built.h"

using ::testing::AllOf;
using ::testing::EndsWith;
using ::testing::ExitedWithCode;
using ::testing::HasSubstr;

namespace {

using hostcheck::Rule;

/// A trace engine whose answers a fault may replace.
struct OddTrace : SilentTrace {
    std::function<const char*(std::ostream*)> command;
    std::function<OrnBool(uint32_t*)> value;
    std::function<const char*(uint32_t)> line;

    OddTrace() { report = RecordingHost::kReport; }
    const char* Command(const char* text, std::ostream* stream) override {
        return command && stream != nullptr ? command(stream) : SilentTrace::Command(text, stream);
    }
    OrnBool GetValue(uint32_t id, uint32_t* word) override {
        return value && id == ORN_VALUE_CONTROL ? value(word) : SilentTrace::GetValue(id, word);
    }
    const char* GetSettingsLine(uint32_t index) override { return line ? line(index) : nullptr; }
};

struct OddSettings : HostObject<IOrnXTraceClient> {
    std::function<OrnBool(char*)> read;
    std::string kept = "/none";

    OddSettings() : HostObject(ORN_XTRACE_CLIENT, ORN_VERSION_WITH_HAS_COMMAND) {}
    OrnBool HasCommand(const char*) override { return 1; }
    OrnBool WriteSetting(const char*, const char*, const char* value) override {
        kept = value;
        return 1;
    }
    OrnBool ReadSetting(const char*, const char*, int32_t size, char* buffer) override {
        if (read) return read(buffer);
        std::strncpy(buffer, kept.c_str(), static_cast<size_t>(size));
        return 1;
    }
};

/// A host in its life with the module, which is right as long as nobody changes it.
struct Host {
    OddTrace trace;
    OddSettings settings;
    RecordingHost rest;
    std::vector<std::pair<const char*, IOrnInterface*>> objects = {
        {ORN_API, &rest.api},
        {ORN_VETM_TRACE, &trace},
        {ORN_TRACE_CLIENT, &rest.traceClient},
        {ORN_XTRACE_CLIENT, &settings},
        {ORN_XTRACE, &rest.xTrace},
        {ORN_EMU, &rest.emu}};

    etmhost::Library library{built::kChecker};
    IOrnAPIBase& module = *reinterpret_cast<decltype(&OrnDLL)>(library.Find("OrnDLL"))();
    IOrnKVETMCtrl* control = nullptr;

    IOrnInterface*& Object(const char* name) {
        for (auto& [known, object] : objects)
            if (std::strcmp(known, name) == 0) return object;
        std::abort();
    }

    void Begin() {
        module.SetModulePath(built::kChecker);
        module.SetAPI(&rest.api);
        control = static_cast<IOrnKVETMCtrl*>(module.CreateRowObject(0));
    }
    void Attach() {
        for (const auto& [name, object] : objects)
            if (object != nullptr) control->AttachInterface(name, object);
    }
    void Start() {
        Begin();
        Attach();
        control->Init(0);
    }
    IOrnKVETMSupp& Support() {
        return *static_cast<IOrnKVETMSupp*>(control->GetInterface(ORN_KVETM_SUPP));
    }
    bool InitBoardFile() {
        int32_t mode = 0;
        char value[260];
        return Support().InitBoardFile("", value, sizeof value, &mode);
    }
    void Detach() {
        for (const auto& [name, object] : objects) control->DetachInterface(name);
    }
    void End() {
        Detach();
        module.DestroyRowObject(0, control);
    }
    void Live() {
        Start();
        control->Init(0); // what was told once is not told again
        control->Apply();
        InitBoardFile();
        End();
    }
};

/// Gives `object` a table of its own, which can be changed.
struct OwnTable {
    void* words[8]; // two are ahead of the operations, for the compiler

    explicit OwnTable(IOrnInterface* object) {
        void**& table = *reinterpret_cast<void***>(object);
        std::memcpy(words, table - 2, sizeof words);
        table = words + 2;
    }
};

/// Returns a text that has gone with the function.
const char* FromTheStack() {
    char text[] = "ETM PC = all";
    const char* volatile gone = text;
    asm volatile("" : : "r"(text) : "memory");
    return gone; // NOLINT(clang-analyzer-core.StackAddressEscape): that is the fault
}

/// Returns a pointer to nothing.
template <class T> T* Nowhere() {
    return reinterpret_cast<T*>(uintptr_t{64}); // NOLINT(performance-no-int-to-ptr)
}

void Report(Host& host, const std::string& text) {
    host.trace.command = [text](std::ostream* stream) -> const char* {
        *stream << text;
        return nullptr;
    };
    host.Live();
}

void Lines(Host& host, const std::vector<std::string>& lines) {
    host.trace.line = [lines](uint32_t index) {
        return index < lines.size() ? lines[index].c_str() : nullptr;
    };
    host.Live();
}

void Value(Host& host, std::function<OrnBool(uint32_t*)> value) {
    host.trace.value = std::move(value);
    host.Live();
}

/// Has a person tick Enable ETM, which asks for a board file; that is settled then.
void ChooseBoard(Host& host) {
    const Application application;
    QtPerson person;
    person.OnNextDialog([](QtPerson& user) {
        user.OnNextDialog([](QtPerson& choosing) { choosing.Click(IDOK); });
        user.Click(1000);
        user.Click(IDOK);
    });
    host.settings.kept = ORN_BOARD_UNKNOWN;
    host.Start();
    person.Open(*host.control);
}

const struct Row {
    Rule rule;
    const char* place;
    std::function<void(Host&)> live;
} kRows[] = {
    {Rule::ModulePath, "SetModulePath",
     [](Host& host) {
         host.module.SetModulePath("KVETMHostCheck.so"), host.module.SetAPI(&host.rest.api);
         host.control = static_cast<IOrnKVETMCtrl*>(host.module.CreateRowObject(0));
         host.Attach(), host.control->Init(0), host.End();
     }},
    {Rule::ModulePath, "InitBoardFile",
     [](Host& host) {
         host.control = static_cast<IOrnKVETMCtrl*>(host.module.CreateRowObject(0));
         host.module.SetAPI(&host.rest.api);
         host.Attach(), host.control->Init(0), host.InitBoardFile(), host.End();
     }},
    {Rule::CallOrder, "Apply",
     [](Host& host) { host.Begin(), host.Attach(), host.control->Apply(), host.End(); }},
    {Rule::CallOrder, "InitBoardFile",
     [](Host& host) {
         host.trace.value = [](uint32_t*) -> OrnBool { return 0; };
         host.Start(), host.InitBoardFile(), host.End();
     }},
    {Rule::OtherThread, "Apply",
     [](Host& host) {
         host.Start();
         std::thread([&] { host.control->Apply(); }).join();
         host.End();
     }},
    {Rule::AttachmentMissing, ORN_API,
     [](Host& host) { host.Object(ORN_API) = nullptr, host.Live(); }},
    {Rule::AttachmentMissing, ORN_XTRACE_CLIENT,
     [](Host& host) {
         host.Start(), host.control->DetachInterface(ORN_XTRACE_CLIENT), host.control->Apply();
         host.End();
     }},
    {Rule::WrongObject, ORN_EMU,
     [](Host& host) { host.Object(ORN_EMU) = &host.rest.xTrace, host.Live(); }},
    {Rule::WrongObject, ORN_VETM_TRACE,
     [](Host& host) {
         host.Object(ORN_VETM_TRACE) = &host.rest.xTrace;
         host.Start(), host.End();
     }},
    {Rule::WrongObject, ORN_API,
     [](Host& host) { host.module.SetAPI(&host.rest.emu), host.Live(); }},
    {Rule::NamelessObject, "IOrnEmu.GetInterfaceName (asked by the checker)",
     [](Host& host) { host.rest.emu.m_Name = "", host.Live(); }},
    {Rule::NamelessObject, ORN_EMU,
     [](Host& host) { host.rest.emu.m_Name = nullptr, host.Live(); }},
    {Rule::MissingOperation, ORN_EMU,
     [](Host& host) {
         OwnTable emu(&host.rest.emu);
         emu.words[2 + 5] = nullptr, host.Live();
     }},
    {Rule::MissingOperation, ORN_EMU,
     [](Host& host) { host.Object(ORN_EMU) = Nowhere<IOrnInterface>(), host.Live(); }},
    {Rule::ObjectGone, ORN_EMU,
     [](Host& host) {
         host.Start();
         const OwnTable emu(&host.rest.emu);
         host.End();
     }},
    {Rule::Exception, "GetValue(0x0)",
     [](Host& host) {
         host.trace.value = [](uint32_t*) -> OrnBool { throw std::runtime_error("no target"); };
         host.Start(), host.End();
     }},
    {Rule::BadText, "GetSettingsLine",
     [](Host& host) {
         host.trace.line = [](uint32_t index) {
             return index == 0 ? Nowhere<const char>() : nullptr;
         };
         host.Live();
     }},
    {Rule::BadText, "AttachInterface",
     [](Host& host) {
         host.Start();
         host.control->AttachInterface(Nowhere<const char>(), nullptr);
         host.End();
     }},
    {Rule::ShortLivedText, "GetSettingsLine",
     [](Host& host) {
         host.trace.line = [](uint32_t index) { return index == 0 ? FromTheStack() : nullptr; };
         host.Live();
     }},
    {Rule::ChangedText, "GetInterfaceName",
     [](Host& host) {
         char name[] = "IOrnEmu";
         host.rest.emu.m_Name = name;
         host.Start(), name[0] = 'i', host.End();
     }},
    {Rule::EmptyRefusal, "Command(\"capability\")",
     [](Host& host) {
         host.trace.command = [](std::ostream*) { return ""; };
         host.Live();
     }},
    {Rule::ReportEnd, "Command", [](Host& host) { Report(host, RecordingHost::kReport); }},
    {Rule::ReportEnd, "Command", [](Host& host) { Report(host, ""); }},
    {Rule::ReportEnd, "Command",
     [](Host& host) { Report(host, std::string("Sequencer present: yes\n\0more\0", 29)); }},
    {Rule::ReportValue, "Command",
     [](Host& host) { Report(host, std::string("Sequencer present: 1\n\0", 22)); }},
    {Rule::LinesEnd, "GetSettingsLine",
     [](Host& host) {
         Lines(host, {"ETM PC = all", ""});
     }},
    {Rule::LinesEnd, "GetSettingsLine",
     [](Host& host) {
         host.trace.line = [](uint32_t) { return ""; };
         host.Live();
     }},
#ifndef __clang__ // with which the sanitizers are built: too slow for a million calls
    {Rule::LinesEnd, "GetSettingsLine",
     [](Host& host) {
         host.trace.line = [](uint32_t) { return "a remark"; };
         host.Start(), host.End();
     }},
#endif
    {Rule::LineBreak, "GetSettingsLine", [](Host& host) { Lines(host, {"ETM PC = all\r\n"}); }},
    {Rule::ValueNotWritten, "GetValue(0x0)",
     [](Host& host) { Value(host, [](uint32_t*) -> OrnBool { return 1; }); }},
    {Rule::ValueNotWritten, "GetValue(0x0)",
     [](Host& host) {
         Value(host, [](uint32_t* word) -> OrnBool {
             std::memset(word, 0, 2);
             return 1;
         });
     }},
    {Rule::ValueNotWritten, "ReadSetting",
     [](Host& host) {
         host.settings.read = [](char*) -> OrnBool { return 1; };
         host.Live();
     }},
    {Rule::BufferOverrun, "GetValue(0x0)",
     [](Host& host) {
         Value(host, [](uint32_t* word) -> OrnBool {
             std::memset(word, 0, 8);
             return 1;
         });
     }},
    {Rule::SettingEnd, "ReadSetting",
     [](Host& host) {
         host.settings.read = [](char* buffer) -> OrnBool {
             std::memset(buffer, 'x', 260);
             return 1;
         };
         host.Start(), host.End();
     }},
    {Rule::SettingLost, "ReadSetting",
     [](Host& host) {
         ChooseBoard(host);
         host.settings.kept = "";
         host.control->Init(0), host.End();
     }},
    {Rule::AfterDestroy, "GetRequiredCount",
     [](Host& host) { host.Live(), host.control->GetRequiredCount(); }},
    {Rule::AfterDestroy, "IOrnKVETMSupp.CanInitBoardFile",
     [](Host& host) {
         host.Start();
         IOrnKVETMSupp& support = host.Support();
         host.End(), support.CanInitBoardFile();
     }},
    {Rule::WrongDestroy, "DestroyRowObject",
     [](Host& host) { host.Live(), host.module.DestroyRowObject(0, host.control); }},
    {Rule::WrongDestroy, "DestroyRowObject",
     [](Host& host) { host.Start(), host.module.DestroyRowObject(1, host.control), host.End(); }},
    {Rule::DetachForgotten, "DestroyRowObject",
     [](Host& host) { host.Start(), host.module.DestroyRowObject(0, host.control); }},
    {Rule::DestroyForgotten, "DestroyRowObject", [](Host& host) { host.Start(), host.Detach(); }},
    {Rule::TrueNotOne, "GetValue(0x0)",
     [](Host& host) {
         Value(host, [](uint32_t* word) -> OrnBool {
             *word = 0;
             return 0x80;
         });
     }},
    {Rule::OldVersion, ORN_XTRACE_CLIENT,
     [](Host& host) { host.settings.m_Version = 110, host.Live(); }},
    {Rule::AttachmentAbsent, ORN_EMU,
     [](Host& host) { host.Object(ORN_EMU) = nullptr, host.Live(); }},
    {Rule::OtherLibrarysStream, "Command",
     [](Host& host) {
         const etmhost::Library other(built::kOtherLibrarysHost);
         host.Object(ORN_VETM_TRACE) =
             reinterpret_cast<IOrnInterface* (*)()>(other.Find("MakeTrace"))();
         host.Start(), host.End();
     }},
};

bool g_InChild = false;

template <class Life> [[noreturn]] void LiveAndExit(Life&& live) {
    g_InChild = true;
    alarm(60);
    {
        Host host;
        live(host);
    }
    std::exit(0);
}

TEST(BrokenHost, IsNamedByItsRuleAlone) {
    std::set<Rule> proved;
    for (const Row& row : kRows) {
        const hostcheck::RuleText& rule = TextOf(row.rule);
        SCOPED_TRACE(std::string(rule.name) + " at " + row.place);
        const bool breach = rule.kind == hostcheck::Kind::Breach;
        const std::string told = std::string(breach ? "breach " : "remark ") + rule.name + ": ";
        EXPECT_EXIT(
            LiveAndExit(row.live), ExitedWithCode(0),
            AllOf(HasSubstr(told), HasSubstr(row.place),
                  EndsWith(breach ? ": 1 breach, 0 remarks\n" : ": 0 breaches, 1 remark\n")));
        proved.insert(row.rule);
    }
    EXPECT_EQ(proved.size(), std::size(hostcheck::kRules));
}

TEST(BrokenHost, IsToldOfARuleTenTimesAtMost) {
    const auto callOn = [](Host& host) {
        host.Live();
        IOrnKVETMCtrl& gone = *host.control;
        gone.GetInterfaceName(), gone.GetInterfaceVersion(), gone.GetComponentName();
        gone.GetComponentVersion(), gone.GetInterface(""), gone.ReleaseInterface(nullptr);
        gone.GetParamCount(), gone.GetParam(0, 0), gone.SetParam(0, 0), gone.CheckParam(0, 0);
        gone.GetImplementedCount(), gone.GetImplementedName(0);
    };
    EXPECT_EXIT(LiveAndExit(callOn), ExitedWithCode(0),
                AllOf(HasSubstr("CheckParam: its component has been destroyed; it is not called "
                                "(more of these are counted only)\nKVETMHostCheck: 12 breaches"),
                      EndsWith(": 12 breaches, 0 remarks\n")));
}

TEST(CorrectHost, DrawsNothingInAnyOrderThatIsAllowed) {
    const std::function<void(Host&)> lives[] = {
        [](Host& host) { ChooseBoard(host), host.control->Init(0), host.End(); },
        [](Host& host) { host.Live(), host.Live(); },
        // Two components; the first goes from inside a call of the host's.
        [](Host& host) {
            host.Start();
            auto* const second = static_cast<IOrnKVETMCtrl*>(host.module.CreateRowObject(0));
            host.trace.line = [&](uint32_t) {
                host.module.DestroyRowObject(0, std::exchange(host.control, second));
                host.trace.line = nullptr;
                return nullptr;
            };
            second->Init(0), host.InitBoardFile(), host.End();
        },
        // All is given up from inside a call: what is attached cannot be detached any more.
        [](Host& host) {
            host.Begin(), host.Attach();
            host.trace.line = [&](uint32_t) {
                host.module.DestroyRowObject(0, host.control);
                return nullptr;
            };
            host.control->Init(0);
        },
        // What the module answers is what it would answer without the checker.
        [](Host& host) {
            host.Start();
            if (host.control->GetAttachedInterface(ORN_EMU) != &host.rest.emu ||
                host.control->AttachInterface("IOrnemu", &host.rest.emu) != -1 ||
                host.control->GetInterface(ORN_KVETM_SUPP) != &host.Support() ||
                std::strcmp(host.module.GetModulePath(), built::kChecker) != 0 ||
                host.module.GetRowCount() != 1 || host.module.CreateRowObject(1) != nullptr)
                std::abort();
            const etmhost::Library real(built::kModule); // which has been told where it lies itself
            IOrnAPIBase* const module = reinterpret_cast<decltype(&OrnDLL)>(real.Find("OrnDLL"))();
            if (std::strcmp(module->GetModulePath(), built::kModule) != 0) std::abort();
            host.End();
        },
    };
    for (const auto& live : lives)
        EXPECT_EXIT(LiveAndExit(live), ExitedWithCode(0),
                    "KVETMHostCheck: 0 breaches, 0 remarks\n$");
}

TEST(Checker, WithoutAModuleHasNoRowsAndSaysWhy) {
    for (const std::string file :
         {"/nowhere/module.so", built::kChecker, built::kOtherLibrarysHost}) {
        const auto live = [](Host& host) {
            host.module.SetModulePath(built::kChecker);
            host.module.SetAPI(&host.rest.api);
            if (host.module.GetRowCount() != 0 || host.module.CreateRowObject(0) != nullptr ||
                *host.module.GetRowInterfaceName(0) != '\0')
                std::abort();
        };
        EXPECT_EXIT((setenv("KVETM_MODULE", file.c_str(), 1), LiveAndExit(live)), ExitedWithCode(0),
                    AllOf(HasSubstr("KVETMHostCheck: cannot load the module: "), HasSubstr(file),
                          EndsWith(": 0 breaches, 0 remarks\n")));
    }
}

} // namespace

// Asked by the leak checker, where the compiler has added one: in processes that were forked and
// have loaded libraries since, it crashes now and then. Whole sessions behind the checker end with
// it in the tests of the command line.
extern "C" int LeakCheckIsOff() __asm__("__lsan_is_turned_off");
extern "C" int LeakCheckIsOff() {
    return g_InChild ? 1 : 0;
}
