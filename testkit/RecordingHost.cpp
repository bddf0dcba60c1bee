#include "testkit/RecordingHost.h"

#include <cstdio>
#include <cstring>

std::string RecordingHost::Hex(uint32_t value) {
    char text[16];
    std::snprintf(text, sizeof text, "0x%X", value);
    return text;
}

const char* const RecordingHost::kReport = "ETM protocol version: 3\n"
                                           "ETM architecture version: 1.3\n"
                                           "Number of address comparator pairs: 4\n"
                                           "Number of data comparators: 2\n"
                                           "Number of memory map decoders: 8\n"
                                           "Number of counters: 2\n"
                                           "Sequencer present: yes\n"
                                           "Number of external inputs: 4\n"
                                           "Number of external outputs: 1\n"
                                           "FIFOFULL logic present: yes\n"
                                           "Half-rate clocking supported: yes\n"
                                           "Full-rate clocking supported: no\n"
                                           "Normal format supported: yes\n"
                                           "Multiplexed  format  supported: no\n"
                                           "Demultiplexed format supported: no\n";

RecordingHost::RecordingHost() {
    values = {{ORN_VALUE_ETMCCR, 0x00194824}, {ORN_VALUE_ETMSCR, 0x2A},
              {ORN_VALUE_PORT_SIZES, 0x8088}, {ORN_VALUE_CONTROL, 0},
              {ORN_VALUE_BUFFER_SIZE, 2048},  {ORN_VALUE_TRIGGER_COUNT, 1024}};
}

void RecordingHost::Attach(IOrnKVETMCtrl& control) {
    control.AttachInterface("IOrnAPI", &api);
    control.AttachInterface("IOrnVETMTrace", &trace);
    control.AttachInterface("IOrnTraceClient", &traceClient);
    control.AttachInterface("IOrnXTraceClient", &xTraceClient);
    control.AttachInterface("IOrnXTrace", &xTrace);
    control.AttachInterface("IOrnEmu", &emu);
}

void RecordingHost::Detach(IOrnKVETMCtrl& control) {
    for (int32_t i = 0; i < control.GetRequiredCount(); ++i)
        control.DetachInterface(control.GetRequiredName(i));
}

void RecordingHost::Record(const std::string& call) {
    calls.push_back(call);
    if (onCall) onCall(call);
}

std::vector<std::string> RecordingHost::TakeChanges() {
    std::vector<std::string> changes;
    for (std::string& call : TakeCalls())
        if (call.starts_with("Command(") || call.starts_with("SetValue(") ||
            call.starts_with("WriteSetting("))
            changes.push_back(std::move(call));
    return changes;
}

const char* RecordingHost::Trace::Command(const char* text, std::ostream* stream) {
    m_Host.Record(std::string("Command(") + text + ")");
    if (!m_Host.refuseAllCommands.empty()) return m_Host.refuseAllCommands.c_str();
    const auto refusal = m_Host.refusals.find(text);
    if (refusal != m_Host.refusals.end()) return refusal->second.c_str();
    if (stream != nullptr) {
        stream->write(m_Host.report.data(), static_cast<std::streamsize>(m_Host.report.size()));
        if (m_Host.reportEndsWithNul) stream->put('\0');
    }
    return nullptr;
}

OrnBool RecordingHost::XTraceClient::ReadSetting(const char* section, const char* key, int32_t size,
                                                 char* buffer) {
    m_Host.Record(std::string("ReadSetting(") + section + "," + key + ")");
    if (!m_Host.boardFile) return 0;
    std::strncpy(buffer, m_Host.boardFile->c_str(), static_cast<size_t>(size));
    return 1;
}

OrnBool RecordingHost::TraceClient::Action(const char* action, const char* argument) {
    m_Host.Record(std::string("Action(") + action + "," +
                  (argument != nullptr ? argument : "null") + ")");
    if (std::strcmp(action, "CheckAction") == 0) return static_cast<OrnBool>(m_Host.evaluates);
    const std::string expression = std::string(action).substr(5); // behind "Eval "
    return static_cast<OrnBool>(m_Host.validExpressions.empty() ||
                                m_Host.validExpressions.contains(expression));
}
