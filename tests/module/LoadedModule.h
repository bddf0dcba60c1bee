// LoadedModule: the built library beside the program, loaded by path as a host does it.

#pragma once

#include "host/module_session.h"
#include "testkit/RecordingHost.h"

class LoadedModule {
    etmhost::LoadedModule m_Library{etmhost::ExecutableFile().replace_filename(
        std::string("KVETMControl") + etmhost::LibraryExtension())};

public:
    /// `boardDirectory` is where the module believes to lie.
    explicit LoadedModule(const std::filesystem::path& boardDirectory = "/opt/debugger") {
        module.SetModulePath((boardDirectory / "KVETMControl.so").string().c_str());
        module.SetAPI(&host.api);
        host.Attach(*control);
    }
    ~LoadedModule() { Destroy(); }
    void Destroy() {
        if (control == nullptr) return;
        host.Detach(*control);
        module.DestroyRowObject(0, std::exchange(control, nullptr));
    }
    LoadedModule(const LoadedModule&) = delete;
    LoadedModule& operator=(const LoadedModule&) = delete;

    std::string LastError() { return RecordingHost::LastError(*control); }

    RecordingHost host;
    IOrnAPIBase& module = m_Library.object();
    IOrnKVETMCtrl* control = static_cast<IOrnKVETMCtrl*>(module.CreateRowObject(0));
};
