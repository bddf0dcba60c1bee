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

enum class Where {
    Command, // of its own
    Board,   // in a board file
    Both,    // in a board file behind "trace"
};

// Returns what follows `literal` in `text`, if that begins so: word by word, blanks between them
// and around "=" do not matter.
std::optional<std::string_view> Behind(std::string_view literal, std::string_view text) {
    while (!literal.empty()) {
        const bool equals = literal.front() == '=';
        if (equals && (text.empty() || text.front() != '=')) return std::nullopt;
        if (equals) {
            literal.remove_prefix(1);
            text = SkipBlanks(text.substr(1));
            continue;
        }
        const std::string_view word = TakeWord(literal, "=");
        if (!EqualNoCase(word, TakeWord(text, literal.starts_with('=') ? "=" : "")))
            return std::nullopt;
    }
    return text;
}

// Refuses what stands behind a command that takes nothing more.
Refusal ExpectEnd(std::string_view rest) {
    return Trim(rest).empty() ? Refusal() : Refusal("Unexpected text: " + Escape(rest));
}

} // namespace

struct CommandLanguage::Row {
    Where where;
    const char* words;     // what a command begins with
    const char* arguments; // what stands behind; empty: nothing may
    const char* meaning;   // for people; null: this row tells what is wrong
    Refusal (*run)(CommandLanguage& self, std::string_view rest, std::ostream* stream);

    std::string Text() const {
        const std::string text = words;
        return text + (*arguments == '\0' || text.ends_with('=') ? "" : " ") + arguments;
    }
};

std::span<const CommandLanguage::Row> CommandLanguage::Rows() {
    using Self = CommandLanguage;
    using Text = std::string_view;
    using Stream = std::ostream*;
    using enum Where;
    static constexpr Row kRows[] = {
        {Command, "enable", "", "switch trace on",
         [](Self& self, Text, Stream) { return self.m_Target.Enable(true); }},
        {Command, "disable", "", "switch trace off",
         [](Self& self, Text, Stream) { return self.m_Target.Enable(false); }},
        {Command, "start", "", "start a capture",
         [](Self& self, Text, Stream) { return self.m_Target.Start(); }},
        {Command, "stop", "", "stop it",
         [](Self& self, Text, Stream) { return self.m_Target.Stop(); }},
        {Command, "trigger force", "", "have the trigger occur now",
         [](Self& self, Text, Stream) { return self.m_Target.ForceTrigger(); }},
        {Command, "capability", "", "report what the ETM has",
         [](Self& self, Text, Stream stream) { return self.Capability(stream); }},
        {Command, "macro", "FILE|/startup|/none",
         "prepare the board: by a board file; by the means of the debug server; not at all",
         [](Self& self, Text value, Stream) { return self.Macro(value); }},
        {Both, "etm pc=none", "", "trace no instructions",
         [](Self& self, Text, Stream) { return self.m_Target.TracePc(PcTrace::None); }},
        {Both, "etm pc=all", "", "trace all instructions",
         [](Self& self, Text, Stream) { return self.m_Target.TracePc(PcTrace::All); }},
        {Both, "etm pc=start", "ADDRESS", "trace instructions once this one was reached",
         [](Self& self, Text text, Stream) { return self.PcAt(&Target::StartPcAt, text); }},
        {Both, "etm pc=stop", "ADDRESS", "until this one is reached",
         [](Self& self, Text text, Stream) { return self.PcAt(&Target::StopPcAt, text); }},
        {Both, "etm pc=from", "ADDRESS", "trace a range of instructions: its first address",
         [](Self& self, Text text, Stream) { return self.PcEnd(&Target::TracePcFrom, text); }},
        {Both, "etm pc=to", "ADDRESS", "and its last; each end waits for the other",
         [](Self& self, Text text, Stream) { return self.PcEnd(&Target::TracePcTo, text); }},
        {Both, "etm pc=", "", nullptr,
         [](Self&, Text text, Stream) {
             return Refusal("Unknown PC trace mode " + Quoted(TakeWord(text)));
         }},
        {Both, "etm complex", "", "leave PC trace as others have programmed it",
         [](Self& self, Text, Stream) { return self.m_Target.TracePc(PcTrace::Complex); }},
        {Both, "etm data=none", "", "trace no data",
         [](Self& self, Text, Stream) { return self.Data(DataTrace::None); }},
        {Both, "etm data=addr", "", "trace the addresses of data",
         [](Self& self, Text, Stream) { return self.Data(DataTrace::Addresses); }},
        {Both, "etm data=value", "", "trace the values of data",
         [](Self& self, Text, Stream) { return self.Data(DataTrace::Values); }},
        {Both, "etm data=all", "", "trace both",
         [](Self& self, Text, Stream) { return self.Data(DataTrace::All); }},
        {Both, "etm data=from", "ADDRESS", "trace a range of data: its first address",
         [](Self& self, Text text, Stream) { return self.DataEnd(&Target::TraceDataFrom, text); }},
        {Both, "etm data=to", "ADDRESS", "and its last; each end waits for the other",
         [](Self& self, Text text, Stream) { return self.DataEnd(&Target::TraceDataTo, text); }},
        {Both, "etm data=", "", nullptr,
         [](Self&, Text text, Stream) {
             return Refusal("Unknown data trace mode " + Quoted(TakeWord(text)));
         }},
        {Both, "etm trigger", "ADDRESS", "have the trigger occur at this address",
         [](Self& self, Text text, Stream) { return self.Trigger(text); }},
        {Both, "etm portsize=", "BITS", "set the width of the trace port",
         [](Self& self, Text text, Stream) { return self.PortSize(Trim(text)); }},
        {Both, "etm halfrate=on", "", "clock the trace port at half the rate",
         [](Self& self, Text, Stream) { return self.m_Target.SetHalfRate(true); }},
        {Both, "etm halfrate=off", "", "clock it at the full rate",
         [](Self& self, Text, Stream) { return self.m_Target.SetHalfRate(false); }},
        {Both, "etm halfrate=", "", nullptr,
         [](Self&, Text text, Stream) {
             return Refusal("\"on\" or \"off\" expected, not " + Quoted(Trim(text)));
         }},
        {Command, "dwt", "N ADDRESS|off", "set DWT comparator N of a Cortex-M; free it",
         [](Self& self, Text text, Stream) { return self.Dwt(text); }},
        {Command, "set control=", "WORD", "set the general control word, whose bits \"show\" tells",
         [](Self& self, Text text, Stream) { return self.Value(&Target::SetControl, text); }},
        {Command, "set triggercount=", "WORDS", "how much to capture behind the trigger",
         [](Self& self, Text text, Stream) { return self.Value(&Target::SetTriggerCount, text); }},
        {Command, "setting", "SECTION/KEY=VALUE", "keep a named setting",
         [](Self& self, Text text, Stream) { return self.Setting(text); }},
        {Board, "trace clear", "", "forget what was captured",
         [](Self& self, Text, Stream) { return self.m_Target.ClearBuffer(); }},
        {Board, "trace enable", "", "the trace pins are switched on",
         [](Self& self, Text, Stream) {
             self.m_Target.state.pinsReady = true;
             return Refusal();
         }},
        {Board, "trace update", "", "take the settings over; they already are",
         [](Self&, Text, Stream) { return Refusal(); }},
        {Board, "mem_init", "N", "initialize the board's memory",
         [](Self& self, Text text, Stream) { return self.InitMemory(text); }},
        {Board, "mem_write", "ADDRESS VALUE", "write a word of 32 bits",
         [](Self& self, Text text, Stream) { return self.WriteMemory(text); }},
    };
    return kRows;
}

std::vector<CommandForm> CommandForms() {
    std::vector<CommandForm> forms;
    for (const CommandLanguage::Row& row : CommandLanguage::Rows())
        if (row.where != Where::Board && row.meaning != nullptr)
            forms.push_back({row.Text(), row.meaning});
    return forms;
}

std::vector<CommandForm> BoardForms() {
    std::vector<CommandForm> forms;
    for (const CommandLanguage::Row& row : CommandLanguage::Rows())
        if (row.where == Where::Board) forms.push_back({row.Text(), row.meaning});
    return forms;
}

Refusal CommandLanguage::Execute(std::string_view text, std::ostream* stream) {
    return Run(SkipBlanks(text), false, stream);
}

Refusal CommandLanguage::Run(std::string_view text, bool inBoardFile, std::ostream* stream) {
    for (const Row& row : Rows()) {
        if (row.where == (inBoardFile ? Where::Command : Where::Board)) continue;
        const bool prefixed = inBoardFile && row.where == Where::Both;
        const auto inner = prefixed ? Behind("trace", text) : std::optional(text);
        const auto rest = inner ? Behind(row.words, *inner) : std::nullopt;
        if (!rest) continue;
        if (*row.arguments == '\0' && row.meaning != nullptr)
            if (const Refusal refusal = ExpectEnd(*rest)) return refusal;
        return row.run(*this, *rest, stream);
    }
    const std::string_view line = Trim(text);
    if (line.empty()) return "Empty command";
    std::vector<std::string> known;
    for (const Row& row : Rows())
        if (row.meaning != nullptr && row.where != (inBoardFile ? Where::Command : Where::Board))
            known.push_back((inBoardFile && row.where == Where::Both ? "trace " : "") +
                            std::string(row.words));
    return "Unknown command: " + Escape(line) + DidYouMean(line, known);
}

Refusal CommandLanguage::Capability(std::ostream* stream) {
    if (stream == nullptr) return "capability needs a stream to write to";
    *stream << CapabilityReport(m_Target.etm()) << '\0';
    return {};
}

Refusal CommandLanguage::Macro(std::string_view value) {
    if (value.empty()) value = ORN_BOARD_NONE;
    TargetState& state = m_Target.state;
    m_Target.ForgetPins();
    state.macro = value;
    if (EqualNoCase(value, ORN_BOARD_NONE)) return {};
    if (EqualNoCase(value, ORN_BOARD_STARTUP)) return m_Target.PreparePins();
    return RunBoardFile(state.macro, [this](int number, std::string_view line) {
        m_BoardLine = number;
        return Run(line, true, nullptr);
    });
}

Refusal CommandLanguage::InitMemory(std::string_view text) {
    Address number;
    if (const Refusal refusal = Parse(text, number)) return refusal;
    if (m_Target.IsSimulated()) return {};
    return "mem_init: this host knows no memory of the board that it could initialize";
}

Refusal CommandLanguage::WriteMemory(std::string_view text) {
    Address address, value;
    if (const Refusal refusal = Parse(TakeWord(text), address)) return refusal;
    if (const Refusal refusal = Parse(text, value)) return refusal;
    if (!m_Target.IsSimulated()) {
        if (address.value % 4 != 0) return "Address " + Hex(address.value) + " is no multiple of 4";
        m_Target.TellPerson("line " + std::to_string(m_BoardLine) + ": writing " +
                            Hex(value.value) + " to " + Hex(address.value));
    }
    return m_Target.WriteMemory(address.value, value.value);
}

Refusal CommandLanguage::PcAt(Refusal (Target::*set)(const Address&), std::string_view text) {
    if (!m_Target.etm().startStop) return "This chip cannot limit PC trace by addresses";
    Address address;
    if (const Refusal refusal =
            m_Target.etm().TakesIndexes() ? ParseComparator(text, address) : Parse(text, address))
        return refusal;
    return (m_Target.*set)(address);
}

Refusal CommandLanguage::PcEnd(Refusal (Target::*set)(const Address&), std::string_view text) {
    if (m_Target.etm().addressPairs == 0) return "This chip cannot limit PC trace by addresses";
    Address address;
    if (const Refusal refusal = Parse(text, address)) return refusal;
    return (m_Target.*set)(address);
}

Refusal CommandLanguage::Data(DataTrace kind) {
    if (kind != DataTrace::None && !m_Target.etm().HasData()) return "This chip has no data trace";
    return m_Target.TraceData(kind);
}

Refusal CommandLanguage::DataEnd(Refusal (Target::*set)(const Address&), std::string_view text) {
    if (m_Target.etm().addressPairs == 0)
        return "This chip has no address comparators for a data range";
    Address address;
    if (const Refusal refusal = Parse(text, address)) return refusal;
    return (m_Target.*set)(address);
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

Refusal CommandLanguage::Value(Refusal (Target::*set)(uint32_t), std::string_view text) {
    const Evaluation result = Evaluate(text, m_Symbols);
    if (!result.error.empty()) return "Bad value: " + result.ErrorText();
    return (m_Target.*set)(result.value);
}

// The value is everything behind the "=": a path may have blanks wherever it likes.
Refusal CommandLanguage::Setting(std::string_view text) {
    const size_t slash = text.find('/'), equals = text.find('=');
    if (equals == std::string_view::npos || slash > equals)
        return "SECTION/KEY=VALUE expected, not " + Quoted(text);
    if (m_Settings == nullptr) return "There are no named settings here";
    const std::string section(text.substr(0, slash));
    (*m_Settings)[section][std::string(text.substr(slash + 1, equals - slash - 1))] =
        text.substr(equals + 1);
    return {};
}

Refusal CommandLanguage::Dwt(std::string_view text) {
    if (!m_Target.etm().TakesIndexes())
        return "This chip has no DWT comparators that its ETM listens to";
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
    const uint32_t count = m_Target.hardware().IndexLimit();
    if (count == 0) return "This chip has no DWT comparators that its ETM listens to";
    const Evaluation result = Evaluate(text, m_Symbols);
    address = {std::string(text), result.value};
    if (result.error.empty() && result.value < count) return {};
    return "DWT comparator 0 to " + std::to_string(count - 1) + " expected, not " + Quoted(text);
}

} // namespace etmhost
