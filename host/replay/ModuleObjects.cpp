#include "host/replay/ModuleObjects.h"

#include <algorithm>
#include <optional>
#include <vector>

#include "frame/interfaces/IOrnKVETMCtrl.h"
#include "frame/interfaces/IOrnKVETMSupp.h"
#include "host/record/operations.h"

namespace etmhost {

namespace {

using record::Fields;
using record::Value;

constexpr int64_t kLargestBuffer = 1 << 20;

Fields Returned(Value value) {
    return {{"return", std::move(value)}};
}

Fields Returned(const char* text) {
    return Returned(record::Text(text));
}

} // namespace

/// What a call was made on and with.
class ModuleObjects::Arguments {
public:
    Arguments(IOrnInterface& object, const record::Event& call) : m_Object(object), m_Call(call) {}

    template <class Interface> Interface& Object() const {
        return static_cast<Interface&>(m_Object);
    }
    IOrnAPIBase& Module() const { return Object<IOrnAPIBase>(); }
    IOrnKVETMCtrl& Control() const { return Object<IOrnKVETMCtrl>(); }
    IOrnKVETMSupp& Support() const { return Object<IOrnKVETMSupp>(); }
    const std::string& ObjectName() const { return m_Call.object; }

    const char* Text(const char* name) const {
        const auto* text = std::get_if<std::string>(record::Find(m_Call.arguments, name));
        return text != nullptr ? text->c_str() : nullptr;
    }
    int32_t Signed(const char* name) const { return static_cast<int32_t>(Number(name)); }
    uint32_t Unsigned(const char* name) const { return static_cast<uint32_t>(Number(name)); }
    bool Is(const char* name) const { return record::IsTrue(m_Call.arguments, name); }

    /// Room for a result, as much as the recorded host had.
    std::vector<char> Buffer() const {
        return std::vector<char>(
            static_cast<size_t>(std::clamp<int64_t>(Number("size"), 0, kLargestBuffer) + 1));
    }

private:
    int64_t Number(const char* name) const {
        return std::get<int64_t>(*record::Find(m_Call.arguments, name));
    }

    IOrnInterface& m_Object;
    const record::Event& m_Call;
};

namespace {

template <class Component, class Arguments>
Fields LastErrorOf(Component& component, const Arguments& call) {
    std::vector<char> text = call.Buffer();
    const int32_t size = std::min(call.Signed("size"), static_cast<int32_t>(text.size()));
    component.GetLastError(call.Is("buffer") ? text.data() : nullptr, size);
    if (!call.Is("buffer") || size <= 0) return {};
    return {{"buffer", record::Text(text.data())}};
}

template <class Arguments> Fields InitBoardFileOf(const Arguments& call) {
    std::vector<char> text = call.Buffer();
    const uint32_t size = std::min(call.Unsigned("size"), static_cast<uint32_t>(text.size()));
    int32_t mode = 0;
    Fields results = Returned(call.Support().InitBoardFile(
        call.Text("directory"), call.Is("value") ? text.data() : nullptr, size,
        call.Is("mode") ? &mode : nullptr));
    if (call.Is("value") && size > 0) results.emplace_back("value", record::Text(text.data()));
    if (call.Is("mode")) results.emplace_back("mode", mode);
    return results;
}

} // namespace

// clang-format off
const std::map<std::string, Fields (*)(ModuleObjects&, const ModuleObjects::Arguments&)>&
ModuleObjects::Makers() {
    using Objects = ModuleObjects;
    using Call = ModuleObjects::Arguments;
    static const std::map<std::string, Fields (*)(Objects&, const Call&)> makers = {
        {"GetInterfaceName", [](Objects&, const Call& call) { return Returned(call.Object<IOrnInterface>().GetInterfaceName()); }},
        {"GetInterfaceVersion", [](Objects&, const Call& call) { return Returned(call.Object<IOrnInterface>().GetInterfaceVersion()); }},
        {"GetComponentName", [](Objects&, const Call& call) { return Returned(call.Object<IOrnInterface>().GetComponentName()); }},
        {"GetComponentVersion", [](Objects&, const Call& call) { return Returned(call.Object<IOrnInterface>().GetComponentVersion()); }},
        {"GetInterface", [](Objects& objects, const Call& call) {
             return Returned(objects.Named(call.Object<IOrnInterface>().GetInterface(call.Text("name")), call.ObjectName(), 0)); }},
        {"ReleaseInterface", [](Objects&, const Call& call) { call.Object<IOrnInterface>().ReleaseInterface(nullptr); return Fields(); }},

        {"IOrnAPIBase.GetRowCount", [](Objects&, const Call& call) { return Returned(call.Module().GetRowCount()); }},
        {"IOrnAPIBase.GetRowComponentName", [](Objects&, const Call& call) { return Returned(call.Module().GetRowComponentName(call.Signed("row"))); }},
        {"IOrnAPIBase.GetRowInterfaceName", [](Objects&, const Call& call) { return Returned(call.Module().GetRowInterfaceName(call.Signed("row"))); }},
        {"IOrnAPIBase.CreateRowObject", [](Objects& objects, const Call& call) {
             return Returned(objects.Named(call.Module().CreateRowObject(call.Signed("row")), "", call.Signed("row"))); }},
        {"IOrnAPIBase.DestroyRowObject", [](Objects& objects, const Call& call) {
             const char* const name = call.Text("object");
             const auto found = objects.m_Objects.find(name != nullptr ? name : "");
             const bool known = found != objects.m_Objects.end();
             call.Module().DestroyRowObject(call.Signed("row"), known ? found->second.object : nullptr);
             if (known && found->second.row == call.Signed("row")) objects.Forget(name);
             return Fields(); }},
        {"IOrnAPIBase.SetModulePath", [](Objects&, const Call& call) { call.Module().SetModulePath(call.Text("path")); return Fields(); }},
        {"IOrnAPIBase.GetModulePath", [](Objects&, const Call& call) { return Returned(call.Module().GetModulePath()); }},
        {"IOrnAPIBase.SetAPI", [](Objects& objects, const Call& call) {
             const char* const name = call.Text("api");
             objects.m_HasAPI = name != nullptr;
             call.Module().SetAPI(name != nullptr ? objects.HostObject(name) : nullptr);
             return Fields(); }},

        {"IOrnKVETMCtrl.GetParamCount", [](Objects&, const Call& call) { return Returned(call.Control().GetParamCount()); }},
        {"IOrnKVETMCtrl.GetParam", [](Objects&, const Call& call) { return Returned(call.Control().GetParam(call.Unsigned("id"), call.Unsigned("argument"))); }},
        {"IOrnKVETMCtrl.SetParam", [](Objects&, const Call& call) { return Returned(call.Control().SetParam(call.Unsigned("id"), call.Unsigned("value"))); }},
        {"IOrnKVETMCtrl.CheckParam", [](Objects&, const Call& call) { return Returned(call.Control().CheckParam(call.Unsigned("id"), call.Unsigned("value"))); }},
        {"IOrnKVETMCtrl.AttachInterface", [](Objects& objects, const Call& call) {
             const char *const name = call.Text("name"), *const object = call.Text("object");
             // An object of another interface under this name would not be safe to call.
             const bool fits = object != nullptr && name != nullptr && record::InterfaceOf(object) == name;
             IOrnInterface* const given = object != nullptr && name != nullptr ? objects.HostObject(fits ? object : name) : nullptr;
             return Returned(call.Control().AttachInterface(name, given)); }},
        {"IOrnKVETMCtrl.DetachInterface", [](Objects&, const Call& call) { return Returned(call.Control().DetachInterface(call.Text("name"))); }},
        {"IOrnKVETMCtrl.GetImplementedCount", [](Objects&, const Call& call) { return Returned(call.Control().GetImplementedCount()); }},
        {"IOrnKVETMCtrl.GetImplementedName", [](Objects&, const Call& call) { return Returned(call.Control().GetImplementedName(call.Signed("index"))); }},
        {"IOrnKVETMCtrl.GetRequiredCount", [](Objects&, const Call& call) { return Returned(call.Control().GetRequiredCount()); }},
        {"IOrnKVETMCtrl.GetRequiredName", [](Objects&, const Call& call) { return Returned(call.Control().GetRequiredName(call.Signed("index"))); }},
        {"IOrnKVETMCtrl.GetRequiredOption", [](Objects&, const Call& call) { return Returned(call.Control().GetRequiredOption(call.Signed("index"))); }},
        {"IOrnKVETMCtrl.GetAttachedInterface", [](Objects& objects, const Call& call) {
             IOrnInterface* const object = call.Control().GetAttachedInterface(call.Text("name"));
             return Returned(object != nullptr ? Value(objects.NameOfHostObject(object)) : Value(nullptr)); }},
        {"IOrnKVETMCtrl.Init", [](Objects&, const Call& call) { return Returned(call.Control().Init(call.Unsigned("option"))); }},
        {"IOrnKVETMCtrl.Open", [](Objects&, const Call& call) { return Returned(call.Control().Open()); }},
        {"IOrnKVETMCtrl.Apply", [](Objects&, const Call& call) { return Returned(call.Control().Apply()); }},
        {"IOrnKVETMCtrl.GetLastError", [](Objects&, const Call& call) { return LastErrorOf(call.Control(), call); }},
        {"IOrnKVETMSupp.InitBoardFile", [](Objects&, const Call& call) { return InitBoardFileOf(call); }},
        {"IOrnKVETMSupp.CanInitBoardFile", [](Objects&, const Call& call) { return Returned(call.Support().CanInitBoardFile()); }},
        {"IOrnKVETMSupp.GetLastError", [](Objects&, const Call& call) { return LastErrorOf(call.Support(), call); }},
    };
    return makers;
}
// clang-format on

ModuleObjects::ModuleObjects(IOrnAPIBase& module, Answerer& host)
    : m_Module(module), m_Answerer(host) {
    m_Objects.emplace(ORN_API_BASE, Entry{&module, ""});
}

ModuleObjects::~ModuleObjects() {
    for (const auto& [name, entry] : m_Objects) {
        if (record::InterfaceOf(name) != ORN_KVETM_CTRL) continue;
        auto& control = static_cast<IOrnKVETMCtrl&>(*entry.object);
        const int32_t count = control.GetRequiredCount();
        for (int32_t index = 0; index < count; ++index)
            control.DetachInterface(control.GetRequiredName(index));
        m_Module.DestroyRowObject(entry.row, entry.object);
    }
    if (m_HasAPI) m_Module.SetAPI(nullptr);
}

Fields ModuleObjects::Make(const record::Event& call) {
    const auto& makers = Makers();
    auto maker = makers.find(call.operation);
    if (maker == makers.end())
        maker = makers.find(std::string(record::InterfaceOf(call.object)) + "." + call.operation);
    return maker->second(*this, Arguments(*m_Objects.at(call.object).object, call));
}

AnsweredHost& ModuleObjects::HostOf(const std::string& suffix) {
    return m_Hosts.try_emplace(suffix, m_Answerer, nullptr, suffix).first->second;
}

IOrnInterface* ModuleObjects::HostObject(const std::string& name) {
    const std::string_view interface = record::InterfaceOf(name);
    return HostOf(name.substr(interface.size())).Find(interface);
}

std::string ModuleObjects::NameOfHostObject(const IOrnInterface* object) {
    for (auto& [suffix, host] : m_Hosts)
        for (const char* name : {"IOrnAPI", "IOrnVETMTrace", "IOrnTraceClient", "IOrnXTraceClient",
                                 "IOrnXTrace", "IOrnEmu"})
            if (host.Find(name) == object) return name + suffix;
    return "an object of nobody";
}

// The name of an object that the module has given, which is its interface; "#2" and so on tells
// several apart.
Value ModuleObjects::Named(IOrnInterface* object, const std::string& owner, int32_t row) {
    if (object == nullptr) return nullptr;
    for (const auto& [name, entry] : m_Objects)
        if (entry.object == object) return name;
    const std::string interface = object->GetInterfaceName();
    std::string name = interface;
    for (int number = 2; Has(name); ++number) name = interface + "#" + std::to_string(number);
    m_Objects.emplace(name, Entry{object, owner, row});
    return name;
}

void ModuleObjects::Forget(const std::string& name) {
    std::erase_if(
        m_Objects,
        [&name](const auto& object) {
            return object.first == name || object.second.owner == name;
        });
}

} // namespace etmhost
