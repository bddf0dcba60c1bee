#include "host/target/command.h"

#include <charconv>
#include <ostream>

#include "frame/interfaces/IOrnXTraceClient.h"
#include "host/support/words.h"
#include "host/target/board_file.h"
#include "host/target/report.h"

namespace etmhost {

namespace {

std::string Quoted(std::string_view text) {
    return "\"" + Escape(text) + "\"";
}

Refusal UnknownCommand(std::string_view text) {
    return text.empty() ? "Empty command" : "Unknown command: " + Escape(text);
}

// Refuses what stands behind a command that takes nothing more.
Refusal ExpectEnd(std::string_view rest) {
    return Trim(rest).empty() ? Refusal() : Refusal("Unexpected text: " + Escape(rest));
}

} // namespace

Refusal CommandLanguage::Execute(std::string_view text, std::ostream* stream) {
    std::string_view rest = text;
    const std::string_view word = TakeWord(rest);
    if (EqualNoCase(word, "etm")) return Etm(rest);
    if (EqualNoCase(word, "macro")) return Macro(rest);
    if (EqualNoCase(word, "capability") && rest.empty()) {
        if (stream == nullptr) return "capability needs a stream to write to";
        *stream << CapabilityReport(m_Target.chip()) << '\0';
        return {};
    }
    const std::string_view line = Trim(text);
    if (EqualNoCase(line, "start")) return m_Target.Start();
    if (EqualNoCase(line, "stop")) return m_Target.Stop();
    if (EqualNoCase(word, "trigger") && EqualNoCase(Trim(rest), "force"))
        return m_Target.ForceTrigger();
    const uint32_t control = m_Target.state.control;
    if (EqualNoCase(line, "enable")) {
        m_Target.SetControl(control | ORN_CONTROL_ENABLE);
        return {};
    }
    if (EqualNoCase(line, "disable")) {
        m_Target.SetControl(control & ~ORN_CONTROL_ENABLE);
        return {};
    }
    return UnknownCommand(line);
}

Refusal CommandLanguage::Macro(std::string_view value) {
    if (value.empty()) value = ORN_BOARD_NONE;
    if (EqualNoCase(value, ORN_BOARD_NONE) || EqualNoCase(value, ORN_BOARD_STARTUP)) {
        m_Target.state.pinsReady = EqualNoCase(value, ORN_BOARD_STARTUP);
        m_Target.state.macro = value;
        return {};
    }
    m_Target.state.pinsReady = false;
    m_Target.state.macro = value;
    return RunBoardFile(m_Target.state.macro,
                        [this](std::string_view line) { return BoardLine(line); });
}

Refusal CommandLanguage::BoardLine(std::string_view line) {
    std::string_view rest = line;
    const std::string_view word = TakeWord(rest);
    if (EqualNoCase(word, "trace")) {
        std::string_view behind = rest;
        const std::string_view verb = TakeWord(behind);
        if (EqualNoCase(verb, "etm")) return Etm(behind);
        if (EqualNoCase(rest, "clear")) {
            m_Target.state.capture.captured = 0;
            return {};
        }
        if (EqualNoCase(rest, "enable")) {
            m_Target.state.pinsReady = true;
            return {};
        }
        if (EqualNoCase(rest, "update"))
            return {}; // the simulated target takes each setting at once
        return UnknownCommand(line);
    }
    if (EqualNoCase(word, "mem_init")) return CheckAddress(rest);
    if (EqualNoCase(word, "mem_write")) {
        const Refusal address = CheckAddress(TakeWord(rest));
        return address ? address : CheckAddress(rest);
    }
    return UnknownCommand(line);
}

Refusal CommandLanguage::Etm(std::string_view text) {
    std::string_view rest = text;
    const std::string_view key = TakeWord(rest, "=");
    if (EqualNoCase(key, "trigger")) return Trigger(rest);
    if (EqualNoCase(key, "complex")) {
        if (const Refusal refusal = ExpectEnd(rest)) return refusal;
        m_Target.state.trace.pc = PcTrace::Complex;
        return {};
    }
    if (rest.empty() || rest.front() != '=') return UnknownCommand("etm " + std::string(text));
    rest.remove_prefix(1);
    const std::string_view value = Trim(rest);
    const std::string_view word = TakeWord(rest);
    if (EqualNoCase(key, "pc")) return Pc(word, rest);
    if (EqualNoCase(key, "data")) return Data(word, rest);
    if (EqualNoCase(key, "portsize")) return PortSize(value);
    if (EqualNoCase(key, "halfrate")) return HalfRate(value);
    return UnknownCommand("etm " + std::string(text));
}

Refusal CommandLanguage::Pc(std::string_view word, std::string_view address) {
    TraceSettings& trace = m_Target.state.trace;
    if (EqualNoCase(word, "none") || EqualNoCase(word, "all")) {
        if (const Refusal refusal = ExpectEnd(address)) return refusal;
        trace.pc = EqualNoCase(word, "all") ? PcTrace::All : PcTrace::None;
        return {};
    }
    const bool start = EqualNoCase(word, "start");
    const bool from = EqualNoCase(word, "from");
    const bool range = from || EqualNoCase(word, "to");
    if (!start && !range && !EqualNoCase(word, "stop"))
        return "Unknown PC trace mode " + Quoted(word);
    const EtmResources& etm = m_Target.etm();
    const bool comparators = etm.addressPairs > 0 && etm.archMajor * 10 + etm.archMinor >= 12;
    if (!comparators && (range || !m_Target.chip().cortexM3))
        return "This chip cannot limit PC trace by addresses";
    if (const Refusal refusal = comparators ? CheckAddress(address) : CheckComparator(address))
        return refusal;
    const PcTrace mode = range ? PcTrace::Range : PcTrace::StartStop;
    // "start" alone traces from there on, so it takes back a stop; "stop", "from" and "to" join the
    // other address of their own mode.
    if (start || trace.pc != mode) {
        trace.pcBegin.clear();
        trace.pcEnd.clear();
    }
    trace.pc = mode;
    (start || from ? trace.pcBegin : trace.pcEnd) = address;
    return {};
}

Refusal CommandLanguage::Data(std::string_view word, std::string_view address) {
    TraceSettings& trace = m_Target.state.trace;
    const EtmResources& etm = m_Target.etm();
    constexpr DataTrace kKinds[] = {DataTrace::None, DataTrace::Addresses, DataTrace::Values,
                                    DataTrace::All};
    for (const DataTrace kind : kKinds) {
        if (!EqualNoCase(word, DataTraceName(kind))) continue;
        if (const Refusal refusal = ExpectEnd(address)) return refusal;
        if (kind != DataTrace::None && etm.dataComparators == 0 && etm.addressPairs == 0)
            return "This chip has no data trace";
        trace.data = kind; // the kind stands for all data until a range follows
        trace.dataBegin.clear();
        trace.dataEnd.clear();
        return {};
    }
    const bool from = EqualNoCase(word, "from");
    if (!from && !EqualNoCase(word, "to")) return "Unknown data trace mode " + Quoted(word);
    if (etm.addressPairs == 0) return "This chip has no address comparators for a data range";
    if (const Refusal refusal = CheckAddress(address)) return refusal;
    (from ? trace.dataBegin : trace.dataEnd) = address;
    return {};
}

Refusal CommandLanguage::Trigger(std::string_view address) {
    if (m_Target.etm().addressPairs == 0)
        return "This chip has no address comparators for a trigger";
    if (const Refusal refusal = CheckAddress(address)) return refusal;
    m_Target.state.trace.trigger = address;
    return {};
}

Refusal CommandLanguage::PortSize(std::string_view value) {
    uint32_t size = 0;
    const char* end = value.data() + value.size();
    const auto [last, error] = std::from_chars(value.data(), end, size);
    if (error != std::errc() || last != end) return "Port size expected, not " + Quoted(value);
    for (const uint32_t width : PortSizes(m_Target.chip())) {
        if (width == size) {
            m_Target.state.trace.portSize = size;
            return {};
        }
    }
    return "This chip has no trace port of " + std::to_string(size) + " bits";
}

Refusal CommandLanguage::HalfRate(std::string_view value) {
    const bool on = EqualNoCase(value, "on");
    if (!on && !EqualNoCase(value, "off"))
        return "\"on\" or \"off\" expected, not " + Quoted(value);
    if (on && !m_Target.etm().halfRate) return "This chip has no half-rate clocking";
    m_Target.state.trace.halfRate = on;
    return {};
}

Refusal CommandLanguage::CheckAddress(std::string_view address) const {
    const Evaluation result = Evaluate(address, m_Symbols);
    return result.error.empty() ? Refusal() : "Bad address: " + result.ErrorText();
}

Refusal CommandLanguage::CheckComparator(std::string_view address) const {
    const Evaluation result = Evaluate(address, m_Symbols);
    return result.error.empty() && result.value <= 3
               ? Refusal()
               : "DWT comparator 0 to 3 expected, not " + Quoted(address);
}

} // namespace etmhost
