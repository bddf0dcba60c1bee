// LoadedModule: the built library, loaded by path as a host does it.

#pragma once

#include <dlfcn.h>

#include <stdexcept>
#include <string>

#include "frame/interfaces/IOrnAPIBase.h"
#include "frame/interfaces/IOrnKVETMCtrl.h"
#include "tests/support/RecordingHost.h"

class LoadedModule {
public:
    /// `boardDirectory` is where the module believes to lie.
    explicit LoadedModule(const std::string& boardDirectory = "/opt/debugger") {
        m_Library = dlopen(MODULE_PATH, RTLD_NOW | RTLD_LOCAL);
        if (m_Library == nullptr) throw std::runtime_error(dlerror());
        const auto entry = reinterpret_cast<IOrnAPIBase* (*)()>(dlsym(m_Library, "OrnDLL"));
        if (entry == nullptr) throw std::runtime_error(dlerror());
        module = entry();
        module->SetModulePath((boardDirectory + "/KVETMControl.so").c_str());
        module->SetAPI(&host.api);
        control = static_cast<IOrnKVETMCtrl*>(module->CreateRowObject(0));
        host.Attach(*control);
    }
    ~LoadedModule() {
        for (int32_t i = 0; i < control->GetRequiredCount(); ++i)
            control->DetachInterface(control->GetRequiredName(i));
        module->DestroyRowObject(0, control);
        dlclose(m_Library);
    }
    LoadedModule(const LoadedModule&) = delete;
    LoadedModule& operator=(const LoadedModule&) = delete;

    std::string LastError() {
        char text[260];
        control->GetLastError(text, sizeof text);
        return text;
    }

    RecordingHost host;
    IOrnAPIBase* module = nullptr;
    IOrnKVETMCtrl* control = nullptr;

private:
    void* m_Library = nullptr;
};
