// The module at work in this host.

#pragma once

#include <filesystem>
#include <string>

#include "frame/interfaces/IOrnAPIBase.h"
#include "frame/interfaces/IOrnKVETMCtrl.h"
#include "frame/interfaces/IOrnKVETMSupp.h"
#include "host/module/host_interfaces.h"
#include "host/support/system.h"

namespace etmhost {

/// A module library in memory.
class LoadedModule {
public:
    /// Loads the library `file`. Throws HostError if there is none or it is no module.
    explicit LoadedModule(const std::filesystem::path& file);

    IOrnAPIBase& object() { return *m_Object; }

    /// Returns the full path of the module's file as text.
    std::string path() const { return PathText(m_File); }

private:
    std::filesystem::path m_File;
    Library m_Library;
    IOrnAPIBase* m_Object;
};

/// What the support component says of the board file.
struct BoardFileAnswer {
    bool settled = false;
    int32_t mode = ORN_MODE_NONE;
    std::string value, error;
};

/// One control component of a module, from its creation to its destruction, attached to a host.
/// Each call of the module is an event of the host's.
class ModuleSession {
public:
    /// Goes through the steps that a host owes the module, up to a successful Init. Both `module`
    /// and `host` must outlive the session. Throws HostError if the module offers no control
    /// component, requires an interface that this host does not have, or fails in Init.
    ModuleSession(IOrnAPIBase& module, const std::string& path, SimulatedHost& host);

    /// Takes the interfaces back and destroys the component.
    ~ModuleSession();

    ModuleSession(const ModuleSession&) = delete;
    ModuleSession& operator=(const ModuleSession&) = delete;

    /// Operations of the control component.
    bool Open();
    bool Apply();

    /// Returns the text of the last failure of the control component.
    std::string LastError();

    /// Has the support component settle the board file. Throws HostError if the module does not
    /// offer it.
    BoardFileAnswer InitBoardFile(const std::string& directory);

private:
    /// Makes a call of the module, and tells of it ahead and behind. `make` returns the results.
    void Call(const char* object, const char* operation, record::Fields arguments,
              const std::function<record::Fields()>& make);

    /// The same for one that has nothing but what it returns.
    template <class Make> auto Ask(const char* object, const char* operation,
                                   record::Fields arguments, const Make& make) {
        decltype(make()) answer{};
        Call(object, operation, std::move(arguments), [&] {
            answer = make();
            return record::Fields{{"return", answer}};
        });
        return answer;
    }

    void SetAPI(IOrnInterface* api);
    void FindRow();
    std::vector<std::string> Required();
    void Attach();
    void TearDown();
    template <class Component> std::string LastErrorOf(Component& component, const char* name);

    IOrnAPIBase& m_Module;
    SimulatedHost& m_Host;
    int32_t m_Row = 0;
    IOrnKVETMCtrl* m_Control = nullptr;
};

} // namespace etmhost
