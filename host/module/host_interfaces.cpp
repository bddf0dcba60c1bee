#include "host/module/host_interfaces.h"

#include <sstream>
#include <utility>

namespace etmhost {

namespace {

const char* OrEmpty(const char* text) {
    return text != nullptr ? text : "";
}

} // namespace

// --- IOrnVETMTrace ---------------------------------------------------------------------

HostVETMTrace::HostVETMTrace(Target& target, const Symbols& symbols, NamedSettings& settings,
                             const Transaction& transaction, record::EventStream& events)
    : RecordedObject(ORN_VETM_TRACE, ORN_VETM_TRACE_VERSION, events), m_Target(target),
      m_Transaction(transaction), m_Language(target, symbols, &settings) {}

const char* HostVETMTrace::Command(const char* text, std::ostream* stream) {
    const auto lock = m_Events.Lock();
    std::ostringstream report; // which the record wants to have too
    Refusal refusal;
    m_Transaction([&] {
        refusal = m_Language.Execute(OrEmpty(text), stream != nullptr ? &report : nullptr);
    });
    m_Refusal = refusal.value_or("");
    const char* answer = refusal ? m_Refusal.c_str() : nullptr;
    record::Fields results = {{"return", record::Text(answer)}};
    if (stream != nullptr) {
        *stream << report.str();
        results.emplace_back("report", report.str());
    }
    Tell("Command", {{"text", record::Text(text)}, {"stream", stream != nullptr}},
         std::move(results), std::move(refusal));
    return answer;
}

const char* HostVETMTrace::GetInfoText(uint32_t which) {
    const char* text = which == 0 ? m_Target.hardware().info.c_str() : nullptr;
    Tell("GetInfoText", {{"which", which}}, {{"return", record::Text(text)}});
    return text;
}

uint32_t HostVETMTrace::GetTraceState(uint32_t* detail) {
    const auto lock = m_Events.Lock();
    Refusal refusal;
    m_Transaction([&] { refusal = m_Target.Poll(); });
    const uint32_t state = m_Target.StateWord();
    record::Fields results = {{"return", state}};
    if (detail != nullptr) {
        *detail = m_Target.state.capture.captured;
        results.emplace_back("detail", *detail);
    }
    Tell("GetTraceState", {{"detail", detail != nullptr}}, std::move(results), std::move(refusal));
    return state;
}

OrnBool HostVETMTrace::HasFeature(uint32_t feature) {
    const TraceHardware& hardware = m_Target.hardware();
    const bool buffer = hardware.sink == SinkKind::Buffer;
    const bool has = (feature == ORN_FEATURE_ETB && buffer) ||
                     (feature == ORN_FEATURE_TPIU && !buffer && hardware.tpiuBase) ||
                     (feature == ORN_FEATURE_CORTEX_M3 && hardware.etm.TakesIndexes());
    Tell("HasFeature", {{"feature", feature}}, {{"return", has}});
    return static_cast<OrnBool>(has);
}

OrnBool HostVETMTrace::SetValue(uint32_t id, uint32_t value) {
    const auto lock = m_Events.Lock();
    Refusal refusal = "There is no such value to set";
    if (id == ORN_VALUE_CONTROL || id == ORN_VALUE_TRIGGER_COUNT) {
        m_Transaction([&] {
            refusal = id == ORN_VALUE_CONTROL ? m_Target.SetControl(value)
                                              : m_Target.SetTriggerCount(value);
        });
    }
    const bool done = !refusal;
    Tell("SetValue", {{"id", id}, {"value", value}}, {{"return", done}}, std::move(refusal));
    return static_cast<OrnBool>(done);
}

bool HostVETMTrace::Read(uint32_t id, uint32_t& value) {
    const TraceHardware& hardware = m_Target.hardware();
    switch (id) {
    case ORN_VALUE_CONTROL:
        value = m_Target.Control();
        return true;
    case ORN_VALUE_BUFFER_SIZE:
        value = hardware.capacity;
        return true;
    case ORN_VALUE_TRIGGER_COUNT:
        value = m_Target.TriggerCount();
        return true;
    case ORN_VALUE_PORT_SIZES:
        value = hardware.portSizes;
        return true;
    case ORN_VALUE_ETMCCR:
        value = hardware.ids.configCode;
        return true;
    case ORN_VALUE_ETMSCR:
        value = hardware.ids.systemConfig;
        return true;
    case ORN_VALUE_ETMIDR:
        value = hardware.ids.id;
        return (hardware.ids.configCode & ORN_ETMCCR_HAS_ID) != 0;
    default:
        return false;
    }
}

OrnBool HostVETMTrace::GetValue(uint32_t id, uint32_t* value) {
    const auto lock = m_Events.Lock();
    uint32_t read = 0;
    std::string reason = "There is no such value to read";
    bool known = false;
    try {
        known = value != nullptr && Read(id, read);
    } catch (const BusError& error) {
        reason = error.what();
    }
    record::Fields results = {{"return", known}};
    if (known) {
        *value = read;
        results.emplace_back("value", read);
    }
    Tell("GetValue", {{"id", id}, {"value", value != nullptr}}, std::move(results),
         known ? Refusal() : Refusal(reason));
    return static_cast<OrnBool>(known);
}

const char* HostVETMTrace::GetSettingsLine(uint32_t index) {
    const auto lock = m_Events.Lock();
    Refusal refusal;
    if (index == 0) {
        m_Lines.clear();
        try {
            m_Lines = m_Target.SettingsLines();
        } catch (const BusError& error) {
            refusal = error.what();
        }
    }
    const char* line = index < m_Lines.size() ? m_Lines[index].c_str() : nullptr;
    Tell("GetSettingsLine", {{"index", index}}, {{"return", record::Text(line)}},
         std::move(refusal));
    return line;
}

// --- IOrnTraceClient -----------------------------------------------------------------

HostTraceClient::HostTraceClient(const Symbols& symbols, record::EventStream& events)
    : RecordedObject(ORN_TRACE_CLIENT, ORN_TRACE_CLIENT_VERSION, events), m_Symbols(symbols) {}

OrnBool HostTraceClient::Action(const char* action, const char* argument) {
    std::string_view expression = OrEmpty(action);
    const std::string_view word = TakeWord(expression);
    Refusal refusal = "There is no such action";
    bool done = false;
    if (EqualNoCase(word, "CheckAction")) {
        refusal.reset(); // a question, to which no is an answer
        done = EqualNoCase(OrEmpty(argument), "Eval");
    } else if (EqualNoCase(word, "Eval")) {
        const Evaluation result = Evaluate(expression, m_Symbols);
        const std::string_view whole = Trim(expression); // which a refusal names itself
        done = result.error.empty();
        if (done)
            refusal.reset();
        else
            refusal = !whole.empty() && result.where == whole ? result.error : result.ErrorText();
    }
    Tell("Action", {{"action", record::Text(action)}, {"argument", record::Text(argument)}},
         {{"return", done}}, std::move(refusal));
    return static_cast<OrnBool>(done);
}

// --- IOrnXTraceClient ----------------------------------------------------------------

HostXTraceClient::HostXTraceClient(NamedSettings& settings, const Transaction& transaction,
                                   record::EventStream& events)
    : RecordedObject(ORN_XTRACE_CLIENT, ORN_XTRACE_CLIENT_VERSION, events), m_Settings(settings),
      m_Transaction(transaction) {}

OrnBool HostXTraceClient::HasCommand(const char* name) {
    const bool has = EqualNoCase(OrEmpty(name), "ExecuteCmd");
    Tell("HasCommand", {{"name", record::Text(name)}}, {{"return", has}});
    return static_cast<OrnBool>(has);
}

OrnBool HostXTraceClient::WriteSetting(const char* section, const char* key, const char* value) {
    const auto lock = m_Events.Lock();
    const bool complete = section != nullptr && key != nullptr && value != nullptr;
    if (complete) m_Transaction([&] { m_Settings[section][key] = value; });
    Tell("WriteSetting",
         {{"section", record::Text(section)},
          {"key", record::Text(key)},
          {"value", record::Text(value)}},
         {{"return", complete}},
         complete ? Refusal() : Refusal("A section, a key and a value are needed"));
    return static_cast<OrnBool>(complete);
}

OrnBool HostXTraceClient::ReadSetting(const char* section, const char* key, int32_t size,
                                      char* buffer) {
    const auto group = m_Settings.find(OrEmpty(section));
    bool found = false;
    if (group != m_Settings.end() && size > 0 && buffer != nullptr) {
        if (const auto entry = group->second.find(OrEmpty(key)); entry != group->second.end()) {
            const size_t length = entry->second.copy(buffer, static_cast<size_t>(size) - 1);
            buffer[length] = '\0';
            found = true;
        }
    }
    record::Fields results = {{"return", found}};
    if (found) results.emplace_back("buffer", record::Text(buffer));
    Tell("ReadSetting",
         {{"section", record::Text(section)},
          {"key", record::Text(key)},
          {"size", size},
          {"buffer", buffer != nullptr}},
         std::move(results));
    return static_cast<OrnBool>(found);
}

// --- The host --------------------------------------------------------------------------

SimulatedHost::SimulatedHost(const Chip& chip, Symbols addresses, record::EventStream& listeners)
    : symbols(std::move(addresses)), events(listeners), target(chip, symbols),
      api(ORN_API, ORN_API_VERSION, events), trace(target, symbols, settings, transaction, events),
      traceClient(symbols, events), xTraceClient(settings, transaction, events),
      xTrace(ORN_XTRACE, ORN_XTRACE_VERSION, events), emu(ORN_EMU, ORN_EMU_VERSION, events) {}

SimulatedHost::SimulatedHost(std::unique_ptr<RegisterBus> bus, const TraceHardware& hardware,
                             Symbols addresses, record::EventStream& listeners, Tell tell)
    : symbols(std::move(addresses)), events(listeners),
      target(std::move(bus), hardware, symbols, std::move(tell)),
      api(ORN_API, ORN_API_VERSION, events), trace(target, symbols, settings, transaction, events),
      traceClient(symbols, events), xTraceClient(settings, transaction, events),
      xTrace(ORN_XTRACE, ORN_XTRACE_VERSION, events), emu(ORN_EMU, ORN_EMU_VERSION, events) {}

record::EventStream& SimulatedHost::Unheard() {
    static record::EventStream stream;
    return stream;
}

void SimulatedHost::TellInterfaces() {
    for (const record::Fields& fields :
         std::vector{api.Described(), trace.Described(), traceClient.Described(),
                     xTraceClient.Described(), xTrace.Described(), emu.Described()})
        events.Tell("interface", fields);
}

void SimulatedHost::PutInFront(Faults& faults) {
    m_Front = std::make_unique<AnsweredHost>(
        faults, [this](const std::string& name) { return FindOwn(name); });
}

IOrnInterface* SimulatedHost::Find(const std::string& name) {
    return m_Front != nullptr ? m_Front->Find(name) : FindOwn(name);
}

IOrnInterface* SimulatedHost::FindOwn(const std::string& name) {
    const struct {
        const char* name;
        IOrnInterface* object;
    } interfaces[] = {{ORN_API, &api},
                      {ORN_VETM_TRACE, &trace},
                      {ORN_TRACE_CLIENT, &traceClient},
                      {ORN_XTRACE_CLIENT, &xTraceClient},
                      {ORN_XTRACE, &xTrace},
                      {ORN_EMU, &emu}};
    for (const auto& entry : interfaces)
        if (name == entry.name) return entry.object;
    return nullptr;
}

} // namespace etmhost
