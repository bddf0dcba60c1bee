#include "check/module_proxies.h"

#include <algorithm>
#include <optional>
#include <vector>

#include "check/Checker.h"
#include "check/HostSide.h"
#include "check/system.h"
#include "check/texts.h"
#include "frame/interfaces/IOrnAPI.h"
#include "frame/interfaces/IOrnAPIBase.h"
#include "frame/interfaces/IOrnKVETMCtrl.h"
#include "frame/interfaces/IOrnKVETMSupp.h"

namespace hostcheck {

namespace {

using record::Fields;
using record::Text;
using record::Value;

/// Makes a result what a record has.
Value ToValue(const char* text) {
    return Text(text);
}
Value ToValue(bool truth) {
    return truth;
}
Value ToValue(int32_t number) {
    return number;
}

/// A call of the host. Records it ahead of it and behind it, if it `reaches` the module; nothing
/// that fails meanwhile in here gets out to the host.
class ModuleCall {
public:
    template <class MakeArguments> ModuleCall(const std::string& object, const char* operation,
                                              bool reaches, MakeArguments&& makeArguments)
        : m_Reaches(reaches) {
        Quietly([&] {
            m_Place = object + '.' + operation;
            HostCall::HostCallsBack();
            Checker::Get().Called(m_Place);
            if (!m_Reaches) return;
            m_Event.direction = record::Event::Direction::ToModule;
            m_Event.phase = record::Event::Phase::Call;
            m_Event.object = object;
            m_Event.operation = operation;
            m_Event.arguments = makeArguments();
            Checker::Get().Record(m_Event);
        });
    }
    ~ModuleCall() {
        if (!m_Reaches) return;
        Quietly([&] {
            m_Event.phase = record::Event::Phase::Return;
            m_Event.arguments.clear();
            Checker::Get().Record(m_Event);
        });
    }
    ModuleCall(const ModuleCall&) = delete;
    ModuleCall& operator=(const ModuleCall&) = delete;

    template <class Given> void Result(const char* name, Given value) {
        Quietly([&] { m_Event.results.emplace_back(name, ToValue(value)); });
    }
    int32_t Returned(int32_t value) {
        Result("return", value);
        return value;
    }
    void Tell(Rule rule, const char* what) {
        Quietly([&] { Checker::Get().findings.Tell(rule, m_Place, what); });
    }

    /// Returns `text`, which the host has passed; null if it is none, which is told.
    const char* Checked(const char* text) {
        bool isText = text == nullptr;
        Quietly([&] { isText = isText || CopyText(text).has_value(); });
        if (isText) return text;
        Tell(Rule::BadText, "an argument is no text that can be read; the module gets null");
        return nullptr;
    }

private:
    const bool m_Reaches;
    std::string m_Place;
    record::Event m_Event;
};

constexpr auto kNoArguments = [] { return Fields(); };

/// Init, Open, Apply or InitBoardFile.
class Work {
public:
    explicit Work(const char* operation) {
        Quietly([&] { Checker::Get().BeginWork(operation); });
    }
    ~Work() {
        Quietly([] { Checker::Get().EndWork(); });
    }
    Work(const Work&) = delete;
    Work& operator=(const Work&) = delete;
};

/// One object of the module.
template <class Interface> class ModuleProxy : public Interface {
public:
    ModuleProxy(std::string label, Interface* real) : label(std::move(label)), m_Real(real) {}

    const std::string label; ///< in the record: the interface, with "#2" behind it for a second one

    const char* GetInterfaceName() override {
        return Ask(
            "GetInterfaceName", kNoArguments,
            [](Interface& real) { return real.GetInterfaceName(); });
    }
    int32_t GetInterfaceVersion() override {
        return Ask(
            "GetInterfaceVersion", kNoArguments,
            [](Interface& real) { return real.GetInterfaceVersion(); });
    }
    const char* GetComponentName() override {
        return Ask(
            "GetComponentName", kNoArguments,
            [](Interface& real) { return real.GetComponentName(); });
    }
    int32_t GetComponentVersion() override {
        return Ask(
            "GetComponentVersion", kNoArguments,
            [](Interface& real) { return real.GetComponentVersion(); });
    }
    IOrnInterface* GetInterface(const char* name) override {
        ModuleCall call(label, "GetInterface", CanBeCalled(), [&] {
            return Fields{{"name", Shown(name)}};
        });
        name = call.Checked(name);
        IOrnInterface* const found =
            CanBeCalled(call) ? Offered(m_Real->GetInterface(name)) : nullptr;
        call.Result("return", found != nullptr ? name : nullptr);
        return found;
    }
    void ReleaseInterface(IOrnInterface* object) override {
        ModuleCall call(label, "ReleaseInterface", CanBeCalled(), [&] {
            return Fields{{"object", object != nullptr}};
        });
        if (CanBeCalled(call)) m_Real->ReleaseInterface(nullptr); // which does nothing
    }

    /// The host has given it up.
    void SetDestroyed() { m_IsDestroyed = true; }
    bool IsDestroyed() const { return m_IsDestroyed; }

protected:
    /// What GetInterface hands out.
    virtual IOrnInterface* Offered(IOrnInterface* found) { return found; }

    bool CanBeCalled() const { return !m_IsDestroyed && m_Real != nullptr; }
    bool CanBeCalled(ModuleCall& call) const {
        if (m_IsDestroyed)
            call.Tell(Rule::AfterDestroy, "its component has been destroyed; it is not called");
        return CanBeCalled();
    }

    /// Makes a call that has nothing but what it returns.
    template <class MakeArguments, class Make>
    auto Ask(const char* operation, MakeArguments&& makeArguments, Make&& make) {
        ModuleCall call(label, operation, CanBeCalled(), makeArguments);
        decltype(make(*m_Real)) answer{};
        if (CanBeCalled(call)) answer = make(*m_Real);
        call.Result("return", answer);
        return answer;
    }

    /// The text of GetLastError, of either component.
    void TellLastError(char* buffer, int32_t size) {
        ModuleCall call(label, "GetLastError", CanBeCalled(), [&] {
            return Fields{{"buffer", buffer != nullptr}, {"size", size}};
        });
        if (!CanBeCalled(call)) return;
        m_Real->GetLastError(buffer, size);
        if (buffer != nullptr && size > 0) call.Result("buffer", static_cast<const char*>(buffer));
    }

    /// A text that the host has passed, for the record.
    static Value Shown(const char* text) {
        if (text == nullptr) return nullptr;
        const std::optional<std::string> copy = CopyText(text);
        return copy ? Value(*copy) : Value(nullptr);
    }

    Interface* const m_Real;

private:
    bool m_IsDestroyed = false;
};

// --- The support component ----------------------------------------------------------------

class SuppProxy final : public ModuleProxy<IOrnKVETMSupp> {
public:
    explicit SuppProxy(IOrnKVETMSupp* real) : ModuleProxy(ORN_KVETM_SUPP, real) {}

    bool InitBoardFile(const char* directory, char* value, uint32_t size, int32_t* mode) override {
        ModuleCall call(label, "InitBoardFile", CanBeCalled(), [&] {
            return Fields{{"directory", Shown(directory)},
                          {"value", value != nullptr},
                          {"size", size},
                          {"mode", mode != nullptr}};
        });
        directory = call.Checked(directory);
        if (!CanBeCalled(call)) return false;
        const Work work("InitBoardFile");
        const bool settled = m_Real->InitBoardFile(directory, value, size, mode);
        call.Result("return", settled);
        if (value != nullptr && size > 0) call.Result("value", static_cast<const char*>(value));
        if (mode != nullptr) call.Result("mode", *mode);
        return settled;
    }
    bool CanInitBoardFile() override {
        return Ask(
            "CanInitBoardFile", kNoArguments,
            [](IOrnKVETMSupp& real) { return real.CanInitBoardFile(); });
    }
    void GetLastError(char* buffer, int32_t size) override { TellLastError(buffer, size); }
};

// --- The control component ----------------------------------------------------------------

class CtrlProxy final : public ModuleProxy<IOrnKVETMCtrl> {
public:
    CtrlProxy(std::string label, int32_t row, IOrnKVETMCtrl* real)
        : ModuleProxy(std::move(label), real), row(row) {}

    const int32_t row;
    IOrnKVETMCtrl* Real() const { return m_Real; }

    int32_t GetParamCount() override {
        return Ask(
            "GetParamCount", kNoArguments,
            [](IOrnKVETMCtrl& real) { return real.GetParamCount(); });
    }
    int32_t GetParam(uint32_t id, uint32_t argument) override {
        return Ask(
            "GetParam",
            [&] {
                return Fields{{"id", id}, {"argument", argument}};
            },
            [&](IOrnKVETMCtrl& real) { return real.GetParam(id, argument); });
    }
    int32_t SetParam(uint32_t id, uint32_t value) override {
        return Ask(
            "SetParam",
            [&] {
                return Fields{{"id", id}, {"value", value}};
            },
            [&](IOrnKVETMCtrl& real) { return real.SetParam(id, value); });
    }
    int32_t CheckParam(uint32_t id, uint32_t value) override {
        return Ask(
            "CheckParam",
            [&] {
                return Fields{{"id", id}, {"value", value}};
            },
            [&](IOrnKVETMCtrl& real) { return real.CheckParam(id, value); });
    }

    int32_t AttachInterface(const char* name, IOrnInterface* object) override {
        HostSide* side = nullptr;
        Quietly([&] {
            const std::optional<std::string> text = name != nullptr ? CopyText(name) : std::nullopt;
            if (text) side = Checker::Get().Wrap(*text, object);
        });
        ModuleCall call(label, "AttachInterface", CanBeCalled(), [&] {
            return Fields{{"name", Shown(name)},
                          {"object", side != nullptr     ? Value(side->label)
                                     : object != nullptr ? Shown(name)
                                                         : nullptr}};
        });
        name = call.Checked(name);
        return call.Returned(CanBeCalled(call) ? Attach(name, object, side) : -1);
    }
    int32_t DetachInterface(const char* name) override {
        ModuleCall call(label, "DetachInterface", CanBeCalled(), [&] {
            return Fields{{"name", Shown(name)}};
        });
        name = call.Checked(name);
        return call.Returned(CanBeCalled(call) ? Attach(name, nullptr, nullptr) : -1);
    }
    int32_t GetImplementedCount() override {
        return Ask(
            "GetImplementedCount", kNoArguments,
            [](IOrnKVETMCtrl& real) { return real.GetImplementedCount(); });
    }
    const char* GetImplementedName(int32_t index) override {
        return Ask(
            "GetImplementedName",
            [&] {
                return Fields{{"index", index}};
            },
            [&](IOrnKVETMCtrl& real) { return real.GetImplementedName(index); });
    }
    int32_t GetRequiredCount() override {
        return Ask(
            "GetRequiredCount", kNoArguments,
            [](IOrnKVETMCtrl& real) { return real.GetRequiredCount(); });
    }
    const char* GetRequiredName(int32_t index) override {
        return Ask(
            "GetRequiredName",
            [&] {
                return Fields{{"index", index}};
            },
            [&](IOrnKVETMCtrl& real) { return real.GetRequiredName(index); });
    }
    int32_t GetRequiredOption(int32_t index) override {
        return Ask(
            "GetRequiredOption",
            [&] {
                return Fields{{"index", index}};
            },
            [&](IOrnKVETMCtrl& real) { return real.GetRequiredOption(index); });
    }
    IOrnInterface* GetAttachedInterface(const char* name) override {
        ModuleCall call(label, "GetAttachedInterface", CanBeCalled(), [&] {
            return Fields{{"name", Shown(name)}};
        });
        name = call.Checked(name);
        if (!CanBeCalled(call)) return nullptr;
        IOrnInterface* attached = m_Real->GetAttachedInterface(name);
        Quietly([&] {
            HostSide* const side = Checker::Get().Find(attached);
            call.Result("return", side != nullptr ? side->label.c_str() : nullptr);
            if (side != nullptr) attached = side->object;
        });
        return attached;
    }

    bool Init(uint32_t option) override {
        return Ask(
            "Init",
            [&] {
                return Fields{{"option", option}};
            },
            [&](IOrnKVETMCtrl& real) {
                const Work work("Init");
                const bool done = real.Init(option);
                Quietly([&] { Checker::Get().InitEnded(done); });
                return done;
            });
    }
    bool Open() override {
        return Ask(
            "Open", kNoArguments,
            [](IOrnKVETMCtrl& real) {
                const Work work("Open");
                return real.Open();
            });
    }
    bool Apply() override {
        return Ask(
            "Apply", kNoArguments,
            [](IOrnKVETMCtrl& real) {
                const Work work("Apply");
                return real.Apply();
            });
    }
    void GetLastError(char* buffer, int32_t size) override { TellLastError(buffer, size); }

protected:
    IOrnInterface* Offered(IOrnInterface* found) override;

private:
    int32_t Attach(const char* name, IOrnInterface* object, HostSide* side) {
        Quietly([&] {
            if (side != nullptr) side->Introduce();
        });
        // What the module does not know it gets as it is, and refuses.
        const int32_t result =
            m_Real->AttachInterface(name, side != nullptr ? side->Proxy() : object);
        if (result == 0) Quietly([&] { Checker::Get().Attached(name, side); });
        return result;
    }
};

// --- The module object --------------------------------------------------------------------

class ApiBaseProxy final : public ModuleProxy<IOrnAPIBase> {
public:
    explicit ApiBaseProxy(RealModule module)
        : ModuleProxy(ORN_API_BASE, module.object), m_File(std::move(module.file)) {}

    int32_t GetRowCount() override {
        return Ask(
            "GetRowCount", kNoArguments, [](IOrnAPIBase& real) { return real.GetRowCount(); });
    }
    const char* GetRowComponentName(int32_t row) override {
        return NameOf("GetRowComponentName", row, &IOrnAPIBase::GetRowComponentName);
    }
    const char* GetRowInterfaceName(int32_t row) override {
        return NameOf("GetRowInterfaceName", row, &IOrnAPIBase::GetRowInterfaceName);
    }

    IOrnInterface* CreateRowObject(int32_t row) override {
        ModuleCall call(label, "CreateRowObject", m_Real != nullptr, [&] {
            return Fields{{"row", row}};
        });
        IOrnInterface* const made = m_Real != nullptr ? m_Real->CreateRowObject(row) : nullptr;
        CtrlProxy* proxy = nullptr;
        Quietly([&] {
            if (made == nullptr) return;
            const std::lock_guard lock(m_Mutex);
            proxy = new CtrlProxy(FreeLabel(), row, static_cast<IOrnKVETMCtrl*>(made));
            m_Components.push_back(proxy);
            Checker::Get().ComponentMade();
        });
        call.Result("return", proxy != nullptr ? proxy->label.c_str() : nullptr);
        return proxy;
    }

    void DestroyRowObject(int32_t row, IOrnInterface* object) override {
        CtrlProxy* proxy = nullptr;
        bool last = false;
        Quietly([&] { proxy = TakeComponent(row, object, last); });
        ModuleCall call(label, "DestroyRowObject", proxy != nullptr, [&] {
            return Fields{{"row", row},
                          {"object", proxy != nullptr ? Value(proxy->label) : nullptr}};
        });
        if (proxy == nullptr) {
            if (object != nullptr && m_Real != nullptr)
                call.Tell(Rule::WrongDestroy, "this is no component that CreateRowObject has made "
                                              "from that row and that is there; nothing is done");
            return;
        }
        Quietly([&] { Checker::Get().ComponentGone(last); });
        m_Real->DestroyRowObject(row, proxy->Real());
        if (last) Quietly([] { Checker::Get().findings.Summarize(); });
    }

    void SetModulePath(const char* path) override {
        // The host means the file that it has loaded. What else it says it says to the module.
        const char* told = path;
        Quietly([&] {
            m_Path = path != nullptr ? CopyText(path).value_or("") : "";
            const bool isOwn = IsSameFile(m_Path, OwnFile());
            Checker::Get().PathTold(m_Path,
                                    IsFullPath(m_Path) && (isOwn || IsSameFile(m_Path, m_File)));
            if (isOwn || SplitPath(m_Path).name == SplitPath(OwnFile()).name) told = m_File.c_str();
        });
        ModuleCall call(label, "SetModulePath", m_Real != nullptr, [&] {
            return Fields{{"path", Shown(told)}};
        });
        told = call.Checked(told);
        if (m_Real != nullptr) m_Real->SetModulePath(told);
    }
    const char* GetModulePath() override {
        Ask("GetModulePath", kNoArguments, [](IOrnAPIBase& real) { return real.GetModulePath(); });
        return m_Path.empty() ? nullptr : m_Path.c_str();
    }

    void SetAPI(IOrnInterface* api) override {
        HostSide* side = nullptr;
        Quietly([&] { side = Checker::Get().Wrap(ORN_API, api); });
        ModuleCall call(label, "SetAPI", m_Real != nullptr, [&] {
            return Fields{{"api", side != nullptr ? Value(side->label) : nullptr}};
        });
        Quietly([&] {
            if (side == nullptr) return;
            Checker::Get().ApiTold();
            side->Look(); // the module asks it for its name
        });
        if (m_Real != nullptr) m_Real->SetAPI(side != nullptr ? side->Proxy() : nullptr);
    }

    /// Returns what stands in for the support component `real`.
    SuppProxy* Support(IOrnKVETMSupp* real) {
        const std::lock_guard lock(m_Mutex);
        if (m_Supports.empty() || m_Supports.back()->IsDestroyed())
            m_Supports.push_back(new SuppProxy(real));
        return m_Supports.back();
    }

private:
    /// Returns the component that the host gives up, or null.
    CtrlProxy* TakeComponent(int32_t row, IOrnInterface* object, bool& last) {
        const std::lock_guard lock(m_Mutex);
        CtrlProxy* taken = nullptr;
        last = true;
        for (CtrlProxy* made : m_Components) {
            if (made->IsDestroyed()) continue;
            if (made == object && made->row == row)
                taken = made;
            else
                last = false;
        }
        if (taken == nullptr) return nullptr;
        taken->SetDestroyed();
        if (last && !m_Supports.empty()) m_Supports.back()->SetDestroyed();
        return taken;
    }

    /// Returns a label that no component has that is there.
    std::string FreeLabel() const {
        std::string free = ORN_KVETM_CTRL;
        const auto isTaken = [&](const CtrlProxy* made) {
            return !made->IsDestroyed() && made->label == free;
        };
        for (int number = 2; std::ranges::any_of(m_Components, isTaken); ++number)
            free = ORN_KVETM_CTRL + ("#" + std::to_string(number));
        return free;
    }

    const char* NameOf(const char* operation, int32_t row,
                       const char* (IOrnAPIBase::*ask)(int32_t)) {
        const char* const name = Ask(
            operation,
            [&] {
                return Fields{{"row", row}};
            },
            [&](IOrnAPIBase& real) { return (real.*ask)(row); });
        return name != nullptr ? name : ""; // without a module too
    }

    const std::string m_File;
    std::string m_Path;                   // as the host has told it
    std::mutex m_Mutex;                   // for these
    std::vector<CtrlProxy*> m_Components; // all that there were: a host may still call them
    std::vector<SuppProxy*> m_Supports;   // the last one may be in use
};

ApiBaseProxy& Base() {
    static ApiBaseProxy& base =
        *new ApiBaseProxy(LoadModule(reinterpret_cast<const void*>(&OrnDLL)));
    return base;
}

IOrnInterface* CtrlProxy::Offered(IOrnInterface* found) {
    IOrnInterface* offered = nullptr;
    Quietly([&] {
        if (found != nullptr) offered = Base().Support(static_cast<IOrnKVETMSupp*>(found));
    });
    return offered;
}

} // namespace

IOrnAPIBase* ModuleObject() {
    return &Base();
}

} // namespace hostcheck
