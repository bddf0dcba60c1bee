// Of Target: what it traces.

#include <algorithm>

#include "frame/interfaces/IOrnVETMTrace.h"
#include "host/support/words.h"
#include "host/target/etm_programming.h"
#include "host/target/etm_registers.h"
#include "host/target/target.h"

namespace etmhost {

std::string Target::TextOf(const std::string& typed, uint32_t value) const {
    const Evaluation evaluation = Evaluate(typed, m_Symbols);
    if (evaluation.error.empty() && evaluation.value == value) return typed;
    return m_Hardware.etm.TakesIndexes() ? std::to_string(value) : Hex(value);
}

std::optional<Address> Target::Typed(const std::string& text) const {
    const Evaluation evaluation = Evaluate(text, m_Symbols);
    if (text.empty() || !evaluation.error.empty()) return std::nullopt;
    return Address{text, evaluation.value};
}

TraceSettings Target::Settings() {
    const EtmSettings held = DecodeSettings(m_Hardware.etm, ReadImage());
    const TraceSettings& asked = state.trace;
    const auto text = [this](const std::string& typed, const std::optional<uint32_t>& value) {
        return value ? TextOf(typed, *value) : std::string();
    };
    TraceSettings settings;
    // What is complex by a command stays so until another command says otherwise.
    settings.pc = asked.pc == PcTrace::Complex || held.dataForeign ? PcTrace::Complex : held.pc;
    settings.pcPending = asked.pcPending;
    settings.dataPending = asked.dataPending;
    if (asked.pcPending) {
        settings.pc = PcTrace::Range;
        settings.pcBegin = asked.pcBegin;
        settings.pcEnd = asked.pcEnd;
    } else if (settings.pc != PcTrace::Complex) {
        settings.pcBegin = text(asked.pcBegin, held.pcBegin);
        settings.pcEnd = text(asked.pcEnd, held.pcEnd);
    }
    settings.data = held.data;
    settings.dataBegin =
        asked.dataPending ? asked.dataBegin : text(asked.dataBegin, held.dataBegin);
    settings.dataEnd = asked.dataPending ? asked.dataEnd : text(asked.dataEnd, held.dataEnd);
    settings.trigger = text(asked.trigger, held.trigger);
    settings.halfRate = held.halfRate;
    settings.portSize = held.portSize;
    if (m_Hardware.tpiuBase)
        settings.portSize = DecodePortSize(m_Bus->Read(*m_Hardware.tpiuBase + TPIU_CURRENT));
    return settings;
}

std::vector<std::string> Target::SettingsLines() {
    const TraceSettings trace = Settings();
    std::vector<std::string> lines;
    const auto line = [&lines](const char* what, const std::string& value) {
        lines.push_back(std::string("ETM ") + what + value);
    };
    const auto address = [&line](const char* what, const std::string& value) {
        if (!value.empty()) line(what, value);
    };
    switch (trace.pc) {
    case PcTrace::None:
        line("PC = ", "none");
        break;
    case PcTrace::All:
        line("PC = ", "all");
        break;
    case PcTrace::StartStop: // the reader takes the last line's mode: stop belongs behind start
        address("PC = start ", trace.pcBegin);
        address("PC = stop ", trace.pcEnd);
        break;
    case PcTrace::Range:
        address("PC = from ", trace.pcBegin);
        address("PC = to ", trace.pcEnd);
        break;
    case PcTrace::Complex:
        line("COMPLEX", "");
        break;
    }
    line("DATA = ", DataTraceName(trace.data)); // ahead of the range, which it would clear
    address("DATA = from ", trace.dataBegin);
    address("DATA = to ", trace.dataEnd);
    address("TRIGGER ", trace.trigger);
    if (trace.portSize != 0) line("PORTSIZE = ", std::to_string(trace.portSize));
    if (m_Hardware.etm.halfRate) // a chip without the choice has nothing to report
        line("HALFRATE = ", trace.halfRate ? "on" : "off");
    return lines;
}

Refusal Target::ProgramPc(const EtmImage& image, EtmSettings wanted) {
    if (const Refusal refusal = CheckDwt({wanted.pcBegin, wanted.pcEnd})) return refusal;
    EtmPlan plan = EncodePc(m_Hardware.etm, image, wanted);
    if (plan.refusal && wanted.dataBegin) {
        // The comparators of the range of data are needed. Whoever sets the PC trace sets the data
        // behind it, and hears there if both can't be.
        wanted.dataBegin = wanted.dataEnd = std::nullopt;
        const EtmPlan everywhere = EncodeData(m_Hardware.etm, image, wanted);
        plan = EncodePc(m_Hardware.etm, WithWrites(image, everywhere.writes), wanted);
        plan.writes.insert(plan.writes.begin(), everywhere.writes.begin(), everywhere.writes.end());
    }
    if (plan.refusal) return plan.refusal;
    Program(plan.writes);
    return {};
}

Refusal Target::TracePc(PcTrace mode) {
    return Try([&]() -> Refusal {
        if (mode != PcTrace::Complex) {
            const EtmImage image = ReadImage();
            EtmSettings wanted = DecodeSettings(m_Hardware.etm, image);
            wanted.pc = mode;
            wanted.pcBegin = wanted.pcEnd = std::nullopt;
            if (const Refusal refusal = ProgramPc(image, wanted)) return refusal;
        }
        state.trace.pc = mode;
        state.trace.pcPending = false;
        return {};
    });
}

Refusal Target::ProgramPcEnds(PcTrace mode, const std::optional<Address>& begin,
                              const std::optional<Address>& end) {
    const EtmImage image = ReadImage();
    EtmSettings wanted = DecodeSettings(m_Hardware.etm, image);
    wanted.pc = mode;
    wanted.pcBegin = begin ? std::optional(begin->value) : std::nullopt;
    wanted.pcEnd = end ? std::optional(end->value) : std::nullopt;
    if (const Refusal refusal = ProgramPc(image, wanted)) return refusal;
    state.trace.pc = mode;
    state.trace.pcBegin = begin ? begin->text : "";
    state.trace.pcEnd = end ? end->text : "";
    state.trace.pcPending = false;
    return {};
}

Refusal Target::StartPcAt(const Address& address) {
    return Try([&] { return ProgramPcEnds(PcTrace::StartStop, address, std::nullopt); });
}

Refusal Target::StopPcAt(const Address& address) {
    return Try([&] {
        const EtmSettings held = DecodeSettings(m_Hardware.etm, ReadImage());
        std::optional<Address> begin;
        if (held.pc == PcTrace::StartStop && held.pcBegin)
            begin = Address{TextOf(state.trace.pcBegin, *held.pcBegin), *held.pcBegin};
        return ProgramPcEnds(PcTrace::StartStop, begin, address);
    });
}

Refusal Target::PcRangeEnd(const Address& address, bool isEnd) {
    if (m_Hardware.etm.addressPairs == 0) return "This chip cannot limit PC trace by addresses";
    TraceSettings& trace = state.trace;
    const std::string& otherText = isEnd ? trace.pcBegin : trace.pcEnd;
    std::optional<Address> other;
    if (trace.pcPending) {
        other = Typed(otherText);
    } else if (isEnd) { // a new end of the range that is
        const EtmSettings held = DecodeSettings(m_Hardware.etm, ReadImage());
        if (held.pc == PcTrace::Range)
            other = Address{TextOf(otherText, *held.pcBegin), *held.pcBegin};
    }
    if (other) {
        return isEnd ? ProgramPcEnds(PcTrace::Range, other, address)
                     : ProgramPcEnds(PcTrace::Range, address, other);
    }
    trace.pc = PcTrace::Range;
    trace.pcPending = true;
    trace.pcBegin = isEnd ? "" : address.text;
    trace.pcEnd = isEnd ? address.text : "";
    return {};
}

Refusal Target::TracePcFrom(const Address& address) {
    return Try([&] { return PcRangeEnd(address, false); });
}

Refusal Target::TracePcTo(const Address& address) {
    return Try([&] { return PcRangeEnd(address, true); });
}

Refusal Target::TraceData(DataTrace kind) {
    return Try([&]() -> Refusal {
        const EtmImage image = ReadImage();
        EtmSettings wanted = DecodeSettings(m_Hardware.etm, image);
        // An area that others have programmed stays as long as PC trace is left to them too, and
        // the kind of data is theirs.
        if (!wanted.dataForeign || wanted.data != kind || state.trace.pc != PcTrace::Complex) {
            wanted.data = kind;
            wanted.dataBegin = wanted.dataEnd = std::nullopt;
            const EtmPlan plan = EncodeData(m_Hardware.etm, image, wanted);
            if (plan.refusal) return plan.refusal;
            Program(plan.writes);
        }
        state.trace.data = kind;
        state.trace.dataBegin.clear();
        state.trace.dataEnd.clear();
        state.trace.dataPending = false;
        return {};
    });
}

Refusal Target::ProgramDataRange(const Address& begin, const Address& end) {
    const EtmImage image = ReadImage();
    EtmSettings wanted = DecodeSettings(m_Hardware.etm, image);
    if (wanted.data == DataTrace::None) wanted.data = DataTrace::All;
    wanted.dataBegin = begin.value;
    wanted.dataEnd = end.value;
    const EtmPlan plan = EncodeData(m_Hardware.etm, image, wanted);
    if (plan.refusal) return plan.refusal;
    Program(plan.writes);
    state.trace.data = wanted.data;
    state.trace.dataBegin = begin.text;
    state.trace.dataEnd = end.text;
    state.trace.dataPending = false;
    return {};
}

Refusal Target::DataRangeEnd(const Address& address, bool isEnd) {
    if (m_Hardware.etm.addressPairs == 0)
        return "This chip has no address comparators for a data range";
    TraceSettings& trace = state.trace;
    const std::string& otherText = isEnd ? trace.dataBegin : trace.dataEnd;
    std::optional<Address> other;
    if (trace.dataPending) {
        other = Typed(otherText);
    } else if (isEnd) {
        const EtmSettings held = DecodeSettings(m_Hardware.etm, ReadImage());
        if (held.dataBegin) other = Address{TextOf(otherText, *held.dataBegin), *held.dataBegin};
    }
    if (other) return isEnd ? ProgramDataRange(*other, address) : ProgramDataRange(address, *other);
    trace.dataPending = true;
    trace.dataBegin = isEnd ? "" : address.text;
    trace.dataEnd = isEnd ? address.text : "";
    return {};
}

Refusal Target::TraceDataFrom(const Address& address) {
    return Try([&] { return DataRangeEnd(address, false); });
}

Refusal Target::TraceDataTo(const Address& address) {
    return Try([&] { return DataRangeEnd(address, true); });
}

Refusal Target::SetTrigger(const Address& address) {
    return Try([&]() -> Refusal {
        const EtmImage image = ReadImage();
        EtmSettings wanted = DecodeSettings(m_Hardware.etm, image);
        wanted.trigger = address.value;
        if (const Refusal refusal = CheckDwt({wanted.trigger})) return refusal;
        const EtmPlan plan = EncodeTrigger(m_Hardware.etm, image, wanted);
        if (plan.refusal) return plan.refusal;
        Program(plan.writes);
        state.trace.trigger = address.text;
        return {};
    });
}

void Target::Disarm() {
    const EtmImage image = ReadImage();
    EtmSettings wanted = DecodeSettings(m_Hardware.etm, image);
    if (!wanted.trigger) return; // none, or one that others have made
    wanted.trigger = std::nullopt;
    Program(EncodeTrigger(m_Hardware.etm, image, wanted).writes);
    state.trace.trigger.clear();
}

Refusal Target::SetPortSize(uint32_t bits) {
    const std::vector<uint32_t> sizes = PortSizes(m_Hardware.portSizes);
    if (std::ranges::find(sizes, bits) == sizes.end())
        return "This chip has no trace port of " + std::to_string(bits) + " bits";
    return Try([&]() -> Refusal {
        if (m_Hardware.tpiuBase) {
            const RegisterWrite size = EncodePortSize(bits);
            const uint32_t address = *m_Hardware.tpiuBase + size.offset;
            const uint32_t before = m_Bus->Read(address);
            if (before != size.value) {
                Unlock(*m_Bus, *m_Hardware.tpiuBase, "TPIU");
                OrRestore(*m_Bus, {{address, before}}, [&] {
                    WriteChecked(*m_Bus, "the TPIU's current port size", address, size.value);
                });
            }
        } else {
            EtmSettings wanted = DecodeSettings(m_Hardware.etm, ReadImage());
            wanted.portSize = bits;
            const EtmPlan plan = EncodePort(m_Hardware.etm, wanted);
            if (plan.refusal) return plan.refusal;
            Program(plan.writes);
        }
        state.trace.portSize = bits;
        // The pins were prepared ahead of the size: the server's own preparation once more.
        if (!IsSimulated() && m_PreparedSize != 0 && m_PreparedSize != bits) return PreparePins();
        return {};
    });
}

Refusal Target::SetHalfRate(bool on) {
    if (!m_Hardware.etm.halfRate)
        return on ? Refusal("This chip has no half-rate clocking") : Refusal();
    return Try([&]() -> Refusal {
        EtmSettings wanted = DecodeSettings(m_Hardware.etm, ReadImage());
        wanted.halfRate = on;
        wanted.portSize = 0; // stays
        Program(EncodePort(m_Hardware.etm, wanted).writes);
        state.trace.halfRate = on;
        return {};
    });
}

// Brings the registers about to what `state` says was asked for.
void Target::Reprogram() {
    const TraceSettings trace = state.trace;
    const auto begin = Typed(trace.pcBegin);
    const auto end = Typed(trace.pcEnd);
    if (trace.pc == PcTrace::StartStop) {
        Try([&] { return ProgramPcEnds(PcTrace::StartStop, begin, end); });
    } else if (trace.pc == PcTrace::Range) {
        if (begin) TracePcFrom(*begin);
        if (end) TracePcTo(*end);
    } else {
        TracePc(trace.pc);
    }
    TraceData(trace.data);
    if (const auto from = Typed(trace.dataBegin)) TraceDataFrom(*from);
    if (const auto to = Typed(trace.dataEnd)) TraceDataTo(*to);
    if (const auto trigger = Typed(trace.trigger)) SetTrigger(*trigger);
    SetPortSize(trace.portSize);
    SetHalfRate(trace.halfRate);
    Enable((state.control & ORN_CONTROL_ENABLE) != 0);
}

} // namespace etmhost
