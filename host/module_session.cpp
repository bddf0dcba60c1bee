#include "host/module_session.h"

#include "host/host_error.h"

namespace etmhost {

namespace {

std::string OrEmpty(const char* text) {
    return text != nullptr ? text : "";
}

std::filesystem::path ExistingFile(const std::filesystem::path& file) {
    std::error_code error;
    const std::filesystem::path full = std::filesystem::canonical(file, error);
    if (error || !std::filesystem::is_regular_file(full, error)) {
        throw HostError("there is no module \"" + PathText(file) + "\"");
    }
    return full;
}

} // namespace

LoadedModule::LoadedModule(const std::filesystem::path& file)
    : file_(ExistingFile(file)), library_(file_) {
    const auto entry = reinterpret_cast<decltype(&OrnDLL)>(library_.Find("OrnDLL"));
    object_ = entry != nullptr ? entry() : nullptr;
    if (object_ == nullptr) {
        throw HostError("\"" + path() + "\" is no module: it has no OrnDLL");
    }
}

ModuleSession::ModuleSession(IOrnAPIBase& module, const std::string& path, SimulatedHost& host)
    : module_(module), host_(host) {
    module_.SetModulePath(path.c_str());
    module_.SetAPI(&host_.api);
    const int32_t rows = module_.GetRowCount();
    while (row_ < rows && OrEmpty(module_.GetRowInterfaceName(row_)) != ORN_KVETM_CTRL) {
        ++row_;
    }
    if (row_ < rows) {
        control_ = static_cast<IOrnKVETMCtrl*>(module_.CreateRowObject(row_));
    }
    if (control_ == nullptr) {
        module_.SetAPI(nullptr);
        throw HostError("the module offers no control component");
    }
    try {
        Attach();
        host_.journal.Step("Init");
        if (!control_->Init(0)) {
            throw HostError("the module failed in Init: " + LastError());
        }
    } catch (...) {
        TearDown();
        throw;
    }
}

ModuleSession::~ModuleSession() {
    TearDown();
}

void ModuleSession::Attach() {
    const int32_t count = control_->GetRequiredCount();
    for (int32_t index = 0; index < count; ++index) {
        const std::string name = OrEmpty(control_->GetRequiredName(index));
        IOrnInterface* object = host_.Find(name);
        if (object == nullptr || control_->AttachInterface(name.c_str(), object) != 0) {
            throw HostError("the module requires \"" + name + "\", which this host lacks");
        }
    }
}

void ModuleSession::TearDown() {
    const int32_t count = control_->GetRequiredCount();
    for (int32_t index = 0; index < count; ++index) {
        control_->DetachInterface(OrEmpty(control_->GetRequiredName(index)).c_str());
    }
    module_.DestroyRowObject(row_, control_);
    module_.SetAPI(nullptr);
}

std::string ModuleSession::LastError() {
    char text[260] = "";
    control_->GetLastError(text, sizeof text);
    return text;
}

IOrnKVETMSupp& ModuleSession::support() {
    auto* object = static_cast<IOrnKVETMSupp*>(control_->GetInterface(ORN_KVETM_SUPP));
    if (object == nullptr) {
        throw HostError("the module offers no support component");
    }
    return *object;
}

} // namespace etmhost
