// The six interfaces that the module requires, on top of the simulated target.

#pragma once

#include <functional>
#include <string>
#include <vector>

#include "frame/interfaces/IOrnAPI.h"
#include "frame/interfaces/IOrnEmu.h"
#include "frame/interfaces/IOrnTraceClient.h"
#include "frame/interfaces/IOrnVETMTrace.h"
#include "frame/interfaces/IOrnXTrace.h"
#include "frame/interfaces/IOrnXTraceClient.h"
#include "host/module/faults.h"
#include "host/record/Event.h"
#include "host/support/words.h"
#include "host/target/command.h"
#include "host/target/target.h"
#include "testkit/HostObject.h"

namespace etmhost {

/// Calls what it gets, once and to its end. Whoever keeps the target and the settings elsewhere too
/// does around that call what keeping them takes.
using Transaction = std::function<void(const std::function<void()>& change)>;

/// What all objects of this host share: whoever asks what they are is told of in the record too.
template <class Interface> class RecordedObject : public HostObject<Interface> {
public:
    RecordedObject(const char* name, int32_t version, record::EventStream& events)
        : HostObject<Interface>(name, version, kComponent, kComponentVersion), m_Events(events) {}

    const char* GetInterfaceName() override {
        Tell("GetInterfaceName", {}, {{"return", this->m_Name}});
        return this->m_Name;
    }
    int32_t GetInterfaceVersion() override {
        Tell("GetInterfaceVersion", {}, {{"return", this->m_Version}});
        return this->m_Version;
    }
    const char* GetComponentName() override {
        const char* name = HostObject<Interface>::GetComponentName();
        Tell("GetComponentName", {}, {{"return", name}});
        return name;
    }
    int32_t GetComponentVersion() override {
        const int32_t version = HostObject<Interface>::GetComponentVersion();
        Tell("GetComponentVersion", {}, {{"return", version}});
        return version;
    }
    IOrnInterface* GetInterface(const char* name) override {
        Tell("GetInterface", {{"name", record::Text(name)}}, {{"return", nullptr}});
        return nullptr;
    }
    void ReleaseInterface(IOrnInterface* object) override {
        Tell("ReleaseInterface", {{"object", object != nullptr}}, {});
    }

    /// Returns what the six operations answer to who asks, without being asked.
    record::Fields Described() const {
        return {{"object", this->m_Name},
                {"name", this->m_Name},
                {"version", this->m_Version},
                {"component", kComponent},
                {"componentVersion", kComponentVersion}};
    }

protected:
    static constexpr const char* kComponent = "etmhost";
    static constexpr int32_t kComponentVersion = 100;

    /// Tells of a call of the module, when it is done.
    void Tell(const char* operation, record::Fields arguments, record::Fields results,
              Refusal refusal = {}) {
        m_Events.Write({.direction = record::Event::Direction::ToHost,
                        .object = this->m_Name,
                        .operation = operation,
                        .arguments = std::move(arguments),
                        .results = std::move(results),
                        .refusal = std::move(refusal)});
    }

    record::EventStream& m_Events;
};

class HostVETMTrace final : public RecordedObject<IOrnVETMTrace> {
public:
    HostVETMTrace(Target& target, const Symbols& symbols, NamedSettings& settings,
                  const Transaction& transaction, record::EventStream& events);

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
};

class HostTraceClient final : public RecordedObject<IOrnTraceClient> {
public:
    HostTraceClient(const Symbols& symbols, record::EventStream& events);

    OrnBool Action(const char* action, const char* argument) override;

private:
    const Symbols& m_Symbols;
};

class HostXTraceClient final : public RecordedObject<IOrnXTraceClient> {
public:
    HostXTraceClient(NamedSettings& settings, const Transaction& transaction,
                     record::EventStream& events);

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
    /// With a simulated chip as its target, or with a real one behind `bus`. `events` hears of each
    /// call of the module, and must outlive the host; what a real target does beside what it was
    /// asked for goes to `tell`.
    explicit SimulatedHost(const Chip& chip, Symbols symbols = {},
                           record::EventStream& events = Unheard());
    SimulatedHost(std::unique_ptr<RegisterBus> bus, const TraceHardware& hardware, Symbols symbols,
                  record::EventStream& events, Tell tell);
    SimulatedHost(const SimulatedHost&) = delete;
    SimulatedHost& operator=(const SimulatedHost&) = delete;

    /// Returns the interface `name`, or null: what stands in front of the object, if there is
    /// something.
    IOrnInterface* Find(const std::string& name);

    /// Tells what the objects are that Find gives.
    void TellInterfaces();

    /// Has whoever comes from now on meet `faults` ahead of the objects. It must outlive the host.
    void PutInFront(Faults& faults);

    const Symbols symbols;
    record::EventStream& events;
    Target target;
    NamedSettings settings;

    /// Around each change of the target and of the settings, which the module makes through the
    /// interfaces; initially there is nothing around it. Must not throw: its callers return into
    /// the module.
    Transaction transaction = [](const std::function<void()>& change) { change(); };

    RecordedObject<IOrnAPI> api;
    HostVETMTrace trace;
    HostTraceClient traceClient;
    HostXTraceClient xTraceClient;
    RecordedObject<IOrnXTrace> xTrace;
    RecordedObject<IOrnEmu> emu;

private:
    IOrnInterface* FindOwn(const std::string& name);
    static record::EventStream& Unheard(); ///< nobody listens

    std::unique_ptr<AnsweredHost> m_Front;
};

} // namespace etmhost
