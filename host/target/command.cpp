#include "host/target/command.h"

#include <algorithm>
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
        *stream << CapabilityReport(m_Target.etm()) << '\0';
        return {};
    }
    const std::string_view line = Trim(text);
    if (EqualNoCase(line, "start")) return m_Target.Start();
    if (EqualNoCase(line, "stop")) return m_Target.Stop();
    if (EqualNoCase(word, "trigger") && EqualNoCase(Trim(rest), "force"))
        return m_Target.ForceTrigger();
    if (EqualNoCase(line, "enable")) return m_Target.Enable(true);
    if (EqualNoCase(line, "disable")) return m_Target.Enable(false);
    if (EqualNoCase(word, "dwt")) return Dwt(rest);
    return UnknownCommand(line);
}

Refusal CommandLanguage::Macro(std::string_view value) {
    if (value.empty()) value = ORN_BOARD_NONE;
    TargetState& state = m_Target.state;
    m_Target.ForgetPins();
    state.macro = value;
    if (EqualNoCase(value, ORN_BOARD_NONE)) return {};
    if (EqualNoCase(value, ORN_BOARD_STARTUP)) return m_Target.PreparePins();
    return RunBoardFile(
        state.macro, [this](int number, std::string_view line) { return BoardLine(number, line); });
}

Refusal CommandLanguage::BoardLine(int number, std::string_view line) {
    std::string_view rest = line;
    const std::string_view word = TakeWord(rest);
    if (EqualNoCase(word, "trace")) {
        std::string_view behind = rest;
        const std::string_view verb = TakeWord(behind);
        if (EqualNoCase(verb, "etm")) return Etm(behind);
        if (EqualNoCase(rest, "clear")) return m_Target.ClearBuffer();
        if (EqualNoCase(rest, "enable")) {
            m_Target.state.pinsReady = true;
            return {};
        }
        if (EqualNoCase(rest, "update")) return {}; // each setting is taken at once
        return UnknownCommand(line);
    }
    Address first, second;
    if (EqualNoCase(word, "mem_init")) {
        if (const Refusal refusal = Parse(rest, first)) return refusal;
        if (m_Target.IsSimulated()) return {};
        return "mem_init: this host knows no memory of the board that it could initialize";
    }
    if (EqualNoCase(word, "mem_write")) {
        if (const Refusal refusal = Parse(TakeWord(rest), first)) return refusal;
        if (const Refusal refusal = Parse(rest, second)) return refusal;
        if (!m_Target.IsSimulated()) {
            if (first.value % 4 != 0) return "Address " + Hex(first.value) + " is no multiple of 4";
            m_Target.TellPerson("line " + std::to_string(number) + ": writing " +
                                Hex(second.value) + " to " + Hex(first.value));
        }
        return m_Target.WriteMemory(first.value, second.value);
    }
    return UnknownCommand(line);
}

Refusal CommandLanguage::Etm(std::string_view text) {
    std::string_view rest = text;
    const std::string_view key = TakeWord(rest, "=");
    if (EqualNoCase(key, "trigger")) return Trigger(rest);
    if (EqualNoCase(key, "complex")) {
        if (const Refusal refusal = ExpectEnd(rest)) return refusal;
        return m_Target.TracePc(PcTrace::Complex);
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

Refusal CommandLanguage::Pc(std::string_view word, std::string_view text) {
    if (EqualNoCase(word, "none") || EqualNoCase(word, "all")) {
        if (const Refusal refusal = ExpectEnd(text)) return refusal;
        return m_Target.TracePc(EqualNoCase(word, "all") ? PcTrace::All : PcTrace::None);
    }
    const bool start = EqualNoCase(word, "start");
    const bool from = EqualNoCase(word, "from");
    const bool range = from || EqualNoCase(word, "to");
    if (!start && !range && !EqualNoCase(word, "stop"))
        return "Unknown PC trace mode " + Quoted(word);
    const EtmResources& etm = m_Target.etm();
    if (range ? etm.addressPairs == 0 : !etm.startStop)
        return "This chip cannot limit PC trace by addresses";
    Address address;
    if (const Refusal refusal =
            etm.TakesIndexes() && !range ? ParseComparator(text, address) : Parse(text, address))
        return refusal;
    return start    ? m_Target.StartPcAt(address)
           : !range ? m_Target.StopPcAt(address)
           : from   ? m_Target.TracePcFrom(address)
                    : m_Target.TracePcTo(address);
}

Refusal CommandLanguage::Data(std::string_view word, std::string_view text) {
    constexpr DataTrace kKinds[] = {DataTrace::None, DataTrace::Addresses, DataTrace::Values,
                                    DataTrace::All};
    for (const DataTrace kind : kKinds) {
        if (!EqualNoCase(word, DataTraceName(kind))) continue;
        if (const Refusal refusal = ExpectEnd(text)) return refusal;
        if (kind != DataTrace::None && !m_Target.etm().HasData())
            return "This chip has no data trace";
        return m_Target.TraceData(kind);
    }
    const bool from = EqualNoCase(word, "from");
    if (!from && !EqualNoCase(word, "to")) return "Unknown data trace mode " + Quoted(word);
    if (m_Target.etm().addressPairs == 0)
        return "This chip has no address comparators for a data range";
    Address address;
    if (const Refusal refusal = Parse(text, address)) return refusal;
    return from ? m_Target.TraceDataFrom(address) : m_Target.TraceDataTo(address);
}

Refusal CommandLanguage::Trigger(std::string_view text) {
    const EtmResources& etm = m_Target.etm();
    if (etm.addressPairs == 0 && !etm.TakesIndexes())
        return "This chip has no address comparators for a trigger";
    Address address;
    if (const Refusal refusal =
            etm.TakesIndexes() ? ParseComparator(text, address) : Parse(text, address))
        return refusal;
    return m_Target.SetTrigger(address);
}

Refusal CommandLanguage::PortSize(std::string_view value) {
    uint32_t size = 0;
    const char* end = value.data() + value.size();
    const auto [last, error] = std::from_chars(value.data(), end, size);
    if (error != std::errc() || last != end) return "Port size expected, not " + Quoted(value);
    return m_Target.SetPortSize(size);
}

Refusal CommandLanguage::HalfRate(std::string_view value) {
    const bool on = EqualNoCase(value, "on");
    if (!on && !EqualNoCase(value, "off"))
        return "\"on\" or \"off\" expected, not " + Quoted(value);
    return m_Target.SetHalfRate(on);
}

Refusal CommandLanguage::Dwt(std::string_view text) {
    std::string_view rest = text;
    Address index, address;
    if (const Refusal refusal = ParseComparator(TakeWord(rest), index)) return refusal;
    if (EqualNoCase(Trim(rest), "off")) return m_Target.ClearDwt(index.value);
    if (const Refusal refusal = Parse(rest, address)) return refusal;
    return m_Target.SetDwt(index.value, address.value);
}

Refusal CommandLanguage::Parse(std::string_view text, Address& address) const {
    const Evaluation result = Evaluate(text, m_Symbols);
    address = {std::string(text), result.value};
    return result.error.empty() ? Refusal() : "Bad address: " + result.ErrorText();
}

Refusal CommandLanguage::ParseComparator(std::string_view text, Address& address) const {
    const Evaluation result = Evaluate(text, m_Symbols);
    address = {std::string(text), result.value};
    const uint32_t count = std::max(m_Target.etm().watchInputs, 1u);
    if (result.error.empty() && result.value < count) return {};
    return "DWT comparator 0 to " + std::to_string(count - 1) + " expected, not " + Quoted(text);
}

} // namespace etmhost
