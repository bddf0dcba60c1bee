// LoadedModule: the built library, that beside the program or another, loaded by path as a host
// does it.

#pragma once

#include "host/module/module_session.h"
#include "testkit/RecordingHost.h"

class LoadedModule {
    etmhost::Library m_Library;

    static std::filesystem::path BesideTheProgram() {
        return etmhost::ExecutableFile().replace_filename(std::string("KVETMControl") +
                                                          etmhost::LibraryExtension());
    }

public:
    /// `boardDirectory` is where the module believes to lie.
    explicit LoadedModule(const std::filesystem::path& boardDirectory = "/opt/debugger",
                          const std::filesystem::path& file = BesideTheProgram())
        : m_Library(file) {
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
    IOrnAPIBase& module = *reinterpret_cast<decltype(&OrnDLL)>(m_Library.Find("OrnDLL"))();
    IOrnKVETMCtrl* control = static_cast<IOrnKVETMCtrl*>(module.CreateRowObject(0));
};
