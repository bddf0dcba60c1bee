// The six interfaces that the module requires, on top of the simulated target.

#pragma once

#include <functional>
#include <map>
#include <string>
#include <vector>

#include "frame/interfaces/IOrnAPI.h"
#include "frame/interfaces/IOrnEmu.h"
#include "frame/interfaces/IOrnTraceClient.h"
#include "frame/interfaces/IOrnVETMTrace.h"
#include "frame/interfaces/IOrnXTrace.h"
#include "frame/interfaces/IOrnXTraceClient.h"
#include "host/module/journal.h"
#include "host/support/words.h"
#include "host/target/command.h"
#include "host/target/target.h"
#include "testkit/HostObject.h"

namespace etmhost {

/// Named settings: section, key, value.
using NamedSettings = std::map<std::string, std::map<std::string, std::string>>;

/// Calls what it gets, once and to its end. Whoever keeps the target and the settings elsewhere too
/// does around that call what keeping them takes.
using Transaction = std::function<void(const std::function<void()>& change)>;

/// What all objects of this host share: whoever asks what they are stands in the journal.
template <class Interface> class JournalledObject : public HostObject<Interface> {
public:
    JournalledObject(const char* name, int32_t version, Journal& journal)
        : HostObject<Interface>(name, version, "etmhost", 100), m_Journal(journal) {}

    const char* GetInterfaceName() override {
        m_Journal.Call(this->m_Name + std::string(".GetInterfaceName"), Quote(this->m_Name));
        return this->m_Name;
    }
    int32_t GetInterfaceVersion() override {
        m_Journal.Call(this->m_Name + std::string(".GetInterfaceVersion"),
                       std::to_string(this->m_Version));
        return this->m_Version;
    }

protected:
    Journal& m_Journal;
};

class HostVETMTrace final : public JournalledObject<IOrnVETMTrace> {
public:
    HostVETMTrace(Target& target, const Symbols& symbols, const Transaction& transaction,
                  Journal& journal);

    const char* Command(const char* text, std::ostream* stream) override;
    const char* GetInfoText(uint32_t which) override;
    uint32_t GetTraceState(uint32_t* detail) override;
    OrnBool HasFeature(uint32_t feature) override;
    OrnBool SetValue(uint32_t id, uint32_t value) override;
    OrnBool GetValue(uint32_t id, uint32_t* value) override;
    const char* GetSettingsLine(uint32_t index) override;

private:
    bool Read(uint32_t id, uint32_t& value);

    Target& m_Target;
    const Transaction& m_Transaction;
    CommandLanguage m_Language;
    std::string m_Refusal;            // keeps the text that Command returned
    std::vector<std::string> m_Lines; // of the pass that runs
    Refusal m_PollRefusal;            // why the last look at the capture failed
    bool m_StateKnown = false;
    uint32_t m_LastState = 0; // the answer that the journal showed last
};

class HostTraceClient final : public JournalledObject<IOrnTraceClient> {
public:
    HostTraceClient(const Symbols& symbols, Journal& journal);

    OrnBool Action(const char* action, const char* argument) override;

private:
    const Symbols& m_Symbols;
};

class HostXTraceClient final : public JournalledObject<IOrnXTraceClient> {
public:
    HostXTraceClient(NamedSettings& settings, const Transaction& transaction, Journal& journal);

    OrnBool HasCommand(const char* name) override;
    OrnBool WriteSetting(const char* section, const char* key, const char* value) override;
    OrnBool ReadSetting(const char* section, const char* key, int32_t size, char* buffer) override;

private:
    NamedSettings& m_Settings;
    const Transaction& m_Transaction;
};

/// A debugger host with one target. The interfaces borrow its members and live as long as it.
class SimulatedHost {
public:
    /// With a simulated chip as its target, or with a real one behind `bus`.
    SimulatedHost(const Chip& chip, Symbols symbols, Journal journal);
    SimulatedHost(std::unique_ptr<RegisterBus> bus, const TraceHardware& hardware, Symbols symbols,
                  Journal journal);
    SimulatedHost(const SimulatedHost&) = delete;
    SimulatedHost& operator=(const SimulatedHost&) = delete;

    /// Returns the interface `name`, or null.
    IOrnInterface* Find(const std::string& name);

    const Symbols symbols;
    Journal journal;
    Target target;
    NamedSettings settings;

    /// Around each change of the target and of the settings, which the module makes through the
    /// interfaces; initially there is nothing around it. Must not throw: its callers return into
    /// the module.
    Transaction transaction = [](const std::function<void()>& change) { change(); };

    JournalledObject<IOrnAPI> api;
    HostVETMTrace trace;
    HostTraceClient traceClient;
    HostXTraceClient xTraceClient;
    JournalledObject<IOrnXTrace> xTrace;
    JournalledObject<IOrnEmu> emu;
};

} // namespace etmhost
