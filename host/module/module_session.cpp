#include "host/module/module_session.h"

#include "host/support/host_error.h"

namespace etmhost {

namespace {

std::string TextOf(const char* text) {
    return text != nullptr ? text : "";
}

std::filesystem::path ExistingFile(const std::filesystem::path& file) {
    std::error_code error;
    const std::filesystem::path full = std::filesystem::canonical(file, error);
    if (error || !std::filesystem::is_regular_file(full, error))
        throw HostError("there is no module \"" + PathText(file) + "\"");
    return full;
}

} // namespace

LoadedModule::LoadedModule(const std::filesystem::path& file)
    : m_File(ExistingFile(file)), m_Library(m_File) {
    const auto entry = reinterpret_cast<decltype(&OrnDLL)>(m_Library.Find("OrnDLL"));
    m_Object = entry != nullptr ? entry() : nullptr;
    if (m_Object == nullptr) throw HostError("\"" + path() + "\" is no module: it has no OrnDLL");
}

ModuleSession::ModuleSession(IOrnAPIBase& module, const std::string& path, SimulatedHost& host)
    : m_Module(module), m_Host(host) {
    Call(ORN_API_BASE, "SetModulePath", {{"path", path}}, [&] {
        m_Module.SetModulePath(path.c_str());
        return record::Fields();
    });
    m_Host.TellInterfaces();
    SetAPI(m_Host.Find(ORN_API));
    FindRow();
    if (m_Control == nullptr) {
        SetAPI(nullptr);
        throw HostError("the module offers no control component");
    }
    try {
        Attach();
        if (!Ask(ORN_KVETM_CTRL, "Init", {{"option", 0}}, [&] { return m_Control->Init(0); }))
            throw HostError("the module failed in Init: " + LastError());
    } catch (...) {
        TearDown();
        throw;
    }
}

ModuleSession::~ModuleSession() {
    TearDown();
}

void ModuleSession::Call(const char* object, const char* operation, record::Fields arguments,
                         const std::function<record::Fields()>& make) {
    record::Event event{.direction = record::Event::Direction::ToModule,
                        .phase = record::Event::Phase::Call,
                        .object = object,
                        .operation = operation,
                        .arguments = std::move(arguments)};
    m_Host.events.Write(event);
    event.results = make();
    event.phase = record::Event::Phase::Return;
    event.arguments.clear();
    m_Host.events.Write(event);
}

void ModuleSession::SetAPI(IOrnInterface* api) {
    const char* const name = api != nullptr ? ORN_API : nullptr;
    Call(ORN_API_BASE, "SetAPI", {{"api", record::Text(name)}}, [&] {
        m_Module.SetAPI(api);
        return record::Fields();
    });
}

void ModuleSession::FindRow() {
    const int32_t rows =
        Ask(ORN_API_BASE, "GetRowCount", {}, [&] { return m_Module.GetRowCount(); });
    for (m_Row = 0; m_Row < rows; ++m_Row)
        if (Ask(ORN_API_BASE, "GetRowInterfaceName", {{"row", m_Row}},
                [&] { return TextOf(m_Module.GetRowInterfaceName(m_Row)); }) == ORN_KVETM_CTRL)
            break;
    if (m_Row == rows) return;
    Ask(ORN_API_BASE, "CreateRowObject", {{"row", m_Row}}, [&] {
        m_Control = static_cast<IOrnKVETMCtrl*>(m_Module.CreateRowObject(m_Row));
        return record::Text(m_Control != nullptr ? ORN_KVETM_CTRL : nullptr);
    });
}

std::vector<std::string> ModuleSession::Required() {
    const int32_t count =
        Ask(ORN_KVETM_CTRL, "GetRequiredCount", {}, [&] { return m_Control->GetRequiredCount(); });
    std::vector<std::string> names;
    for (int32_t index = 0; index < count; ++index)
        names.push_back(Ask(ORN_KVETM_CTRL, "GetRequiredName", {{"index", index}},
                            [&] { return TextOf(m_Control->GetRequiredName(index)); }));
    return names;
}

void ModuleSession::Attach() {
    for (const std::string& name : Required()) {
        IOrnInterface* object = m_Host.Find(name);
        const record::Value given = object != nullptr ? record::Value(name) : nullptr;
        if (object == nullptr ||
            Ask(ORN_KVETM_CTRL, "AttachInterface", {{"name", name}, {"object", given}},
                [&] { return m_Control->AttachInterface(name.c_str(), object); }) != 0)
            throw HostError("the module requires \"" + name + "\", which this host lacks");
    }
}

void ModuleSession::TearDown() {
    for (const std::string& name : Required())
        Ask(ORN_KVETM_CTRL, "DetachInterface", {{"name", name}},
            [&] { return m_Control->DetachInterface(name.c_str()); });
    Call(ORN_API_BASE, "DestroyRowObject", {{"row", m_Row}, {"object", ORN_KVETM_CTRL}}, [&] {
        m_Module.DestroyRowObject(m_Row, m_Control);
        return record::Fields();
    });
    SetAPI(nullptr);
}

template <class Component>
std::string ModuleSession::LastErrorOf(Component& component, const char* name) {
    char text[260] = "";
    constexpr int32_t kSize = sizeof text;
    Call(name, "GetLastError", {{"buffer", true}, {"size", kSize}}, [&] {
        component.GetLastError(text, kSize);
        return record::Fields{{"buffer", record::Text(text)}};
    });
    return text;
}

std::string ModuleSession::LastError() {
    return LastErrorOf(*m_Control, ORN_KVETM_CTRL);
}

bool ModuleSession::Open() {
    return Ask(
        ORN_KVETM_CTRL, "Open", {}, [&] { return m_Control->Open(); });
}

bool ModuleSession::Apply() {
    return Ask(
        ORN_KVETM_CTRL, "Apply", {}, [&] { return m_Control->Apply(); });
}

BoardFileAnswer ModuleSession::InitBoardFile(const std::string& directory) {
    IOrnKVETMSupp* support = nullptr;
    Ask(ORN_KVETM_CTRL, "GetInterface", {{"name", ORN_KVETM_SUPP}}, [&] {
        support = static_cast<IOrnKVETMSupp*>(m_Control->GetInterface(ORN_KVETM_SUPP));
        return record::Text(support != nullptr ? ORN_KVETM_SUPP : nullptr);
    });
    if (support == nullptr) throw HostError("the module offers no support component");
    BoardFileAnswer answer;
    char value[260] = "";
    constexpr uint32_t kSize = sizeof value;
    Call(ORN_KVETM_SUPP, "InitBoardFile",
         {{"directory", directory}, {"value", true}, {"size", kSize}, {"mode", true}}, [&] {
             answer.settled = support->InitBoardFile(directory.c_str(), value, kSize, &answer.mode);
             return record::Fields{
                 {"return", answer.settled}, {"value", record::Text(value)}, {"mode", answer.mode}};
         });
    answer.value = value;
    answer.error = LastErrorOf(*support, ORN_KVETM_SUPP);
    return answer;
}

} // namespace etmhost
