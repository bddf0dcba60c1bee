// The module's objects by the names that they have in a recording, and its operations by theirs.

#pragma once

#include <map>
#include <string>

#include "frame/interfaces/IOrnAPIBase.h"
#include "host/module/answered_objects.h"
#include "host/record/Event.h"

namespace etmhost {

class ModuleObjects {
public:
    /// `host` answers the module's calls. Both must outlive this.
    ModuleObjects(IOrnAPIBase& module, Answerer& host);

    /// Takes back and destroys what is left.
    ~ModuleObjects();
    ModuleObjects(const ModuleObjects&) = delete;
    ModuleObjects& operator=(const ModuleObjects&) = delete;

    /// Returns whether there is an object of that name now.
    bool Has(const std::string& object) const { return m_Objects.contains(object); }

    /// Makes a call to the module and returns the results.
    /// REQUIRES: `call` fits its operation, and Has(call.object).
    record::Fields Make(const record::Event& call);

private:
    struct Entry {
        IOrnInterface* object;
        std::string owner; ///< with which it goes; empty: nobody's
        int32_t row = 0;   ///< from which it was made
    };
    class Arguments;
    struct Maker;
    static const std::map<std::string, record::Fields (*)(ModuleObjects&, const Arguments&)>&
    Makers();

    AnsweredHost& HostOf(const std::string& suffix);
    IOrnInterface* HostObject(const std::string& name);
    std::string NameOfHostObject(const IOrnInterface* object);
    record::Value Named(IOrnInterface* object, const std::string& owner, int32_t row);
    void Forget(const std::string& name);

    IOrnAPIBase& m_Module;
    Answerer& m_Answerer;
    std::map<std::string, Entry> m_Objects;
    std::map<std::string, AnsweredHost> m_Hosts; // by what stands behind their objects' names
    bool m_HasAPI = false;
};

} // namespace etmhost
