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
    m_Module.SetModulePath(path.c_str());
    m_Module.SetAPI(&m_Host.api);
    const int32_t rows = m_Module.GetRowCount();
    while (m_Row < rows && TextOf(m_Module.GetRowInterfaceName(m_Row)) != ORN_KVETM_CTRL) ++m_Row;
    if (m_Row < rows) m_Control = static_cast<IOrnKVETMCtrl*>(m_Module.CreateRowObject(m_Row));
    if (m_Control == nullptr) {
        m_Module.SetAPI(nullptr);
        throw HostError("the module offers no control component");
    }
    try {
        Attach();
        m_Host.journal.Step("Init");
        if (!m_Control->Init(0)) throw HostError("the module failed in Init: " + LastError());
    } catch (...) {
        TearDown();
        throw;
    }
}

ModuleSession::~ModuleSession() {
    TearDown();
}

void ModuleSession::Attach() {
    const int32_t count = m_Control->GetRequiredCount();
    for (int32_t index = 0; index < count; ++index) {
        const std::string name = TextOf(m_Control->GetRequiredName(index));
        IOrnInterface* object = m_Host.Find(name);
        if (object == nullptr || m_Control->AttachInterface(name.c_str(), object) != 0)
            throw HostError("the module requires \"" + name + "\", which this host lacks");
    }
}

void ModuleSession::TearDown() {
    const int32_t count = m_Control->GetRequiredCount();
    for (int32_t index = 0; index < count; ++index)
        m_Control->DetachInterface(TextOf(m_Control->GetRequiredName(index)).c_str());
    m_Module.DestroyRowObject(m_Row, m_Control);
    m_Module.SetAPI(nullptr);
}

std::string ModuleSession::LastError() {
    char text[260] = "";
    m_Control->GetLastError(text, sizeof text);
    return text;
}

IOrnKVETMSupp& ModuleSession::support() {
    auto* object = static_cast<IOrnKVETMSupp*>(m_Control->GetInterface(ORN_KVETM_SUPP));
    if (object == nullptr) throw HostError("the module offers no support component");
    return *object;
}

} // namespace etmhost
