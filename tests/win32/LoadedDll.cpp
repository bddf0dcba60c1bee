#include "tests/win32/LoadedDll.h"

#include <windows.h>

#include <stdexcept>

namespace {

HMODULE Load() {
    std::string path(32768, '\0');
    path.resize(GetModuleFileNameA(nullptr, path.data(), static_cast<DWORD>(path.size())));
    path.replace(path.rfind('\\') + 1, std::string::npos, "KVETMControl.dll");
    const HMODULE library = LoadLibraryA(path.c_str());
    if (library == nullptr) throw std::runtime_error("cannot load " + path);
    return library;
}

} // namespace

LoadedDll::LoadedDll(const std::string& boardDirectory) : library(Load()) {
    const auto entry = reinterpret_cast<IOrnAPIBase* (*)()>(
        reinterpret_cast<void (*)()>(GetProcAddress(static_cast<HMODULE>(library), "OrnDLL")));
    if (entry == nullptr) throw std::runtime_error("the library does not export OrnDLL");
    module = entry();
    module->SetModulePath((boardDirectory + "\\KVETMControl.dll").c_str());
    module->SetAPI(&host.api);
    control = static_cast<IOrnKVETMCtrl*>(module->CreateRowObject(0));
    host.Attach(*control);
}

LoadedDll::~LoadedDll() {
    for (int32_t i = 0; i < control->GetRequiredCount(); ++i)
        control->DetachInterface(control->GetRequiredName(i));
    module->DestroyRowObject(0, control);
    FreeLibrary(static_cast<HMODULE>(library));
}

std::string LoadedDll::LastError() {
    char text[260];
    control->GetLastError(text, sizeof text);
    return text;
}
