// RecordingHost: a debugger host for tests. It answers from plain fields, which a
// test sets, and writes down every call of the module in order.
//
//     GetValue(0x1000004)   Command(etm pc=all)   SetValue(0x0,0x101)
//     GetSettingsLine(0)    HasFeature(0x4000000) WriteSetting(KVETM,BoardFile,/none)
//     ReadSetting(KVETM,BoardFile)   Action(CheckAction,Eval)   HasCommand(ExecuteCmd)
//     GetTraceState         GetInfoText(0)

#pragma once

#include <functional>
#include <map>
#include <optional>
#include <ostream>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "IOrnAPI.h"
#include "IOrnEmu.h"
#include "IOrnKVETMCtrl.h"
#include "IOrnTraceClient.h"
#include "IOrnVETMTrace.h"
#include "IOrnXTrace.h"
#include "IOrnXTraceClient.h"
#include "testkit/HostObject.h"

class RecordingHost {
public:
    RecordingHost();
    RecordingHost(const RecordingHost&) = delete;
    RecordingHost& operator=(const RecordingHost&) = delete;

    /// Attaches all six interfaces to a control component.
    void Attach(IOrnKVETMCtrl& control);
    /// Takes back what a control component requires.
    static void Detach(IOrnKVETMCtrl& control);
    static std::string LastError(IOrnKVETMCtrl& control) {
        char text[260];
        control.GetLastError(text, sizeof text);
        return text;
    }

    /// The calls so far, emptied by this.
    std::vector<std::string> TakeCalls() { return std::exchange(calls, {}); }
    /// Those among them that change the target: Command, SetValue, WriteSetting.
    std::vector<std::string> TakeChanges();

    // --- What the target answers -------------------------------------------------

    /// GetValue; an id that is missing gives false. SetValue stores here.
    std::map<uint32_t, uint32_t> values;
    std::set<uint32_t> refusedSetValues;
    std::vector<std::string> lines; // GetSettingsLine
    std::optional<std::string> boardFile;
    std::string report = kReport;
    bool reportEndsWithNul = true;
    std::map<std::string, std::string> refusals; // command: error text
    std::string refuseAllCommands;               // an error text for every command
    std::set<uint32_t> features;
    uint32_t state = 0;
    std::optional<std::string> info;
    bool evaluates = false;
    std::set<std::string> validExpressions; // empty: all are valid
    bool offersExecuteCmd = false;

    /// A chip with four comparator pairs, architecture 1.2 and ports of 4, 8 and 16
    /// bits; what the constructor sets up. `values` has a buffer of 2048 units, 1024
    /// of them behind the trigger, and the control word 0.
    static const char* const kReport;

    // --- The interfaces ---------------------------------------------------------------

    struct Trace final : HostObject<IOrnVETMTrace> {
        explicit Trace(RecordingHost& host) : HostObject(ORN_VETM_TRACE), m_Host(host) {}
        const char* Command(const char* text, std::ostream* stream) override;
        const char* GetInfoText(uint32_t which) override {
            m_Host.Record("GetInfoText(" + std::to_string(which) + ")");
            return m_Host.info ? m_Host.info->c_str() : nullptr;
        }
        uint32_t GetTraceState(uint32_t* detail) override {
            m_Host.Record("GetTraceState");
            if (detail != nullptr) *detail = 0xFFFFFFFF;
            return m_Host.state;
        }
        OrnBool HasFeature(uint32_t feature) override {
            m_Host.Record("HasFeature(" + Hex(feature) + ")");
            return m_Host.features.contains(feature);
        }
        OrnBool SetValue(uint32_t id, uint32_t value) override {
            m_Host.Record("SetValue(" + Hex(id) + "," + Hex(value) + ")");
            if (m_Host.refusedSetValues.contains(id)) return false;
            m_Host.values[id] = value;
            return true;
        }
        OrnBool GetValue(uint32_t id, uint32_t* value) override {
            m_Host.Record("GetValue(" + Hex(id) + ")");
            if (!m_Host.values.contains(id)) return false;
            *value = m_Host.values[id];
            return true;
        }
        const char* GetSettingsLine(uint32_t index) override {
            m_Host.Record("GetSettingsLine(" + std::to_string(index) + ")");
            return index < m_Host.lines.size() ? m_Host.lines[index].c_str() : nullptr;
        }
        RecordingHost& m_Host;
    };
    struct XTraceClient final : HostObject<IOrnXTraceClient> {
        explicit XTraceClient(RecordingHost& host)
            : HostObject(ORN_XTRACE_CLIENT, ORN_VERSION_WITH_HAS_COMMAND), m_Host(host) {}
        OrnBool HasCommand(const char* name) override {
            m_Host.Record(std::string("HasCommand(") + name + ")");
            return m_Host.offersExecuteCmd;
        }
        OrnBool WriteSetting(const char* section, const char* key, const char* value) override {
            m_Host.Record(std::string("WriteSetting(") + section + "," + key + "," + value + ")");
            m_Host.boardFile = value;
            return true;
        }
        OrnBool ReadSetting(const char* section, const char* key, int32_t size,
                            char* buffer) override;
        RecordingHost& m_Host;
    };
    struct TraceClient final : HostObject<IOrnTraceClient> {
        explicit TraceClient(RecordingHost& host) : HostObject(ORN_TRACE_CLIENT), m_Host(host) {}
        OrnBool Action(const char* action, const char* argument) override;
        RecordingHost& m_Host;
    };

    HostObject<IOrnAPI> api{ORN_API};
    Trace trace{*this};
    TraceClient traceClient{*this};
    XTraceClient xTraceClient{*this};
    HostObject<IOrnXTrace> xTrace{ORN_XTRACE};
    HostObject<IOrnEmu> emu{ORN_EMU};

    std::vector<std::string> calls;
    /// Runs behind each recorded call, inside the module's call.
    std::function<void(const std::string& call)> onCall;
    void Record(const std::string& call);

private:
    static std::string Hex(uint32_t value);
};
