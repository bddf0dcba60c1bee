#include "host/module/host_interfaces.h"

#include <utility>

namespace etmhost {

namespace {

const char* OrEmpty(const char* text) {
    return text != nullptr ? text : "";
}

} // namespace

// --- IOrnVETMTrace ---------------------------------------------------------------------

HostVETMTrace::HostVETMTrace(Target& target, const Symbols& symbols, const Transaction& transaction,
                             Journal& journal)
    : JournalledObject(ORN_VETM_TRACE, 100, journal), m_Target(target), m_Transaction(transaction),
      m_Language(target, symbols) {}

const char* HostVETMTrace::Command(const char* text, std::ostream* stream) {
    Refusal refusal;
    m_Transaction([&] { refusal = m_Language.Execute(OrEmpty(text), stream); });
    m_Refusal = refusal.value_or("");
    m_Journal.Call("Command " + Quote(text), refusal ? Quote(m_Refusal.c_str()) : "ok");
    if (!refusal) return nullptr;
    m_Journal.Refused(OrEmpty(text), m_Refusal);
    return m_Refusal.c_str();
}

const char* HostVETMTrace::GetInfoText(uint32_t which) {
    const char* text = which == 0 ? m_Target.hardware().info.c_str() : nullptr;
    m_Journal.Call("GetInfoText " + std::to_string(which), Quote(text));
    return text;
}

uint32_t HostVETMTrace::GetTraceState(uint32_t* detail) {
    Refusal refusal;
    m_Transaction([&] { refusal = m_Target.Poll(); });
    // A target that does not answer says so once, not with each look.
    if (refusal && refusal != m_PollRefusal) m_Journal.Refused("GetTraceState", *refusal);
    m_PollRefusal = refusal;
    const uint32_t state = m_Target.StateWord();
    if (detail != nullptr) *detail = m_Target.state.capture.captured;
    // The dialog polls by its clock. Only news goes into the journal, so that it does not depend on
    // how fast the machine and its user are.
    if (!m_StateKnown || state != m_LastState) m_Journal.Call("GetTraceState", Hex(state));
    m_StateKnown = true;
    m_LastState = state;
    return state;
}

OrnBool HostVETMTrace::HasFeature(uint32_t feature) {
    const TraceHardware& hardware = m_Target.hardware();
    const bool buffer = hardware.sink == SinkKind::Buffer;
    const bool has = (feature == ORN_FEATURE_ETB && buffer) ||
                     (feature == ORN_FEATURE_TPIU && !buffer && hardware.tpiuBase) ||
                     (feature == ORN_FEATURE_CORTEX_M3 && hardware.etm.TakesIndexes());
    m_Journal.Call("HasFeature " + Hex(feature), YesNo(has));
    return static_cast<OrnBool>(has);
}

OrnBool HostVETMTrace::SetValue(uint32_t id, uint32_t value) {
    Refusal refusal = "There is no such value to set";
    if (id == ORN_VALUE_CONTROL || id == ORN_VALUE_TRIGGER_COUNT) {
        m_Transaction([&] {
            refusal = id == ORN_VALUE_CONTROL ? m_Target.SetControl(value)
                                              : m_Target.SetTriggerCount(value);
        });
    }
    const std::string call = "SetValue " + Hex(id) + " " + Hex(value);
    m_Journal.Call(call, refusal ? "refused" : "ok");
    if (refusal) m_Journal.Refused(call, *refusal);
    return static_cast<OrnBool>(!refusal);
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
    uint32_t read = 0;
    std::string refusal = "There is no such value to read";
    bool known = false;
    try {
        known = value != nullptr && Read(id, read);
    } catch (const BusError& error) {
        refusal = error.what();
    }
    if (known) *value = read;
    const std::string call = "GetValue " + Hex(id);
    m_Journal.Call(call, known ? Hex(read) : "refused");
    if (!known) m_Journal.Refused(call, refusal);
    return static_cast<OrnBool>(known);
}

const char* HostVETMTrace::GetSettingsLine(uint32_t index) {
    if (index == 0) {
        m_Lines.clear();
        try {
            m_Lines = m_Target.SettingsLines();
        } catch (const BusError& error) {
            m_Journal.Refused("GetSettingsLine 0", error.what());
        }
    }
    const char* line = index < m_Lines.size() ? m_Lines[index].c_str() : nullptr;
    m_Journal.Call("GetSettingsLine " + std::to_string(index), Quote(line));
    return line;
}

// --- IOrnTraceClient -----------------------------------------------------------------

HostTraceClient::HostTraceClient(const Symbols& symbols, Journal& journal)
    : JournalledObject(ORN_TRACE_CLIENT, 100, journal), m_Symbols(symbols) {}

OrnBool HostTraceClient::Action(const char* action, const char* argument) {
    std::string_view expression = OrEmpty(action);
    const std::string_view word = TakeWord(expression);
    std::string_view refused = OrEmpty(action); // the whole call, or the expression in it
    Refusal refusal = "There is no such action";
    bool done = false;
    if (EqualNoCase(word, "CheckAction")) {
        refusal.reset(); // a question, to which no is an answer
        done = EqualNoCase(OrEmpty(argument), "Eval");
    } else if (EqualNoCase(word, "Eval")) {
        const Evaluation result = Evaluate(expression, m_Symbols);
        refused = Trim(expression).empty() ? refused : Trim(expression);
        refusal = result.where == refused ? result.error : result.ErrorText();
        done = result.error.empty();
    }
    m_Journal.Call("Action " + Quote(action) + " " + Quote(argument), YesNo(done));
    if (!done && refusal) m_Journal.Refused(refused, *refusal);
    return static_cast<OrnBool>(done);
}

// --- IOrnXTraceClient ----------------------------------------------------------------

HostXTraceClient::HostXTraceClient(NamedSettings& settings, const Transaction& transaction,
                                   Journal& journal)
    : JournalledObject(ORN_XTRACE_CLIENT, ORN_VERSION_WITH_HAS_COMMAND, journal),
      m_Settings(settings), m_Transaction(transaction) {}

OrnBool HostXTraceClient::HasCommand(const char* name) {
    const bool has = EqualNoCase(OrEmpty(name), "ExecuteCmd");
    m_Journal.Call("HasCommand " + Quote(name), YesNo(has));
    return static_cast<OrnBool>(has);
}

OrnBool HostXTraceClient::WriteSetting(const char* section, const char* key, const char* value) {
    const bool complete = section != nullptr && key != nullptr && value != nullptr;
    if (complete) m_Transaction([&] { m_Settings[section][key] = value; });
    const std::string call =
        "WriteSetting " + Quote(section) + " " + Quote(key) + " " + Quote(value);
    m_Journal.Call(call, complete ? "ok" : "refused");
    if (!complete) m_Journal.Refused(call, "A section, a key and a value are needed");
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
    m_Journal.Call("ReadSetting " + Quote(section) + " " + Quote(key) + " " + std::to_string(size),
                   found ? Quote(buffer) : "none");
    return static_cast<OrnBool>(found);
}

// --- The host --------------------------------------------------------------------------

SimulatedHost::SimulatedHost(const Chip& chip, Symbols addresses, Journal log)
    : symbols(std::move(addresses)), journal(log), target(chip, symbols),
      api(ORN_API, 100, journal), trace(target, symbols, transaction, journal),
      traceClient(symbols, journal), xTraceClient(settings, transaction, journal),
      xTrace(ORN_XTRACE, 100, journal), emu(ORN_EMU, 100, journal) {}

SimulatedHost::SimulatedHost(std::unique_ptr<RegisterBus> bus, const TraceHardware& hardware,
                             Symbols addresses, Journal log)
    : symbols(std::move(addresses)), journal(log),
      target(std::move(bus), hardware, symbols,
             [this](const std::string& text) { journal.Tell(text); }),
      api(ORN_API, 100, journal), trace(target, symbols, transaction, journal),
      traceClient(symbols, journal), xTraceClient(settings, transaction, journal),
      xTrace(ORN_XTRACE, 100, journal), emu(ORN_EMU, 100, journal) {}

IOrnInterface* SimulatedHost::Find(const std::string& name) {
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
