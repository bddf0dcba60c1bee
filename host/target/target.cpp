#include "host/target/target.h"

#include <algorithm>

#include "frame/interfaces/IOrnVETMTrace.h"
#include "host/support/words.h"
#include "host/target/etm_programming.h"
#include "host/target/etm_registers.h"

namespace etmhost {

namespace {

/// All bits of the control word that the target has.
constexpr uint32_t kControlBits = ORN_CONTROL_ENABLE | ORN_CONTROL_STOP_WHEN_FULL |
                                  ORN_CONTROL_ACCUMULATE | ORN_CONTROL_MANUAL | ORN_CONTROL_KEPT |
                                  ORN_CONTROL_TRIGGER_PIN | ORN_CONTROL_TRIGGER_ADDRESS;

// A trace ID that a formatted stream may have: 0 and what lies from 0x70 on is reserved there.
constexpr uint32_t kTraceId = 1;
constexpr uint32_t kFirstReservedId = 0x70;

std::string Bits(uint32_t count) {
    return std::to_string(count) + (count == 1 ? " bit" : " bits");
}

std::string Capitalized(std::string text) {
    if (!text.empty() && text[0] >= 'a' && text[0] <= 'z')
        text[0] = static_cast<char>(text[0] - 'a' + 'A');
    return text;
}

} // namespace

const Symbols& Target::NoSymbols() {
    static const Symbols none;
    return none;
}

Target::Target(const Chip& chip, const Symbols& symbols) : m_Symbols(symbols) {
    auto simulated = std::make_unique<SimulatedChip>(chip, state.registers);
    m_Simulated = simulated.get();
    m_Bus = std::move(simulated);
    m_Hardware = HardwareOf(chip, *m_Bus);
    Prepare();
}

Target::Target(std::unique_ptr<RegisterBus> bus, TraceHardware hardware, const Symbols& symbols,
               Tell tell)
    : m_Symbols(symbols), m_Tell(std::move(tell)), m_Bus(std::move(bus)),
      m_Hardware(std::move(hardware)) {
    Prepare();
}

void Target::Prepare() {
    switch (m_Hardware.sink) {
    case SinkKind::Buffer:
        m_Sink = MakeBufferSink(*m_Bus, m_Hardware, state.triggerCount);
        state.triggerCount = m_Sink->TriggerCount();
        break;
    case SinkKind::Emulator:
        m_Sink = MakeEmulatorSink(*m_Simulated, m_Hardware, state.capture, state.triggerCount);
        state.triggerCount = m_Hardware.capacity / 2;
        break;
    case SinkKind::Port:
        m_Sink = MakePortSink(*m_Bus, m_Hardware);
        break;
    }
    const TraceSettings settings = Settings();
    state.trace.portSize = settings.portSize;
    state.trace.halfRate = settings.halfRate;
    if (m_Hardware.sink != SinkKind::Emulator) Look();
    // An armed trigger is all that the chip knows of a stop mode.
    if (!settings.trigger.empty()) state.control |= ORN_CONTROL_TRIGGER_ADDRESS;
}

Refusal Target::Catch(const std::function<Refusal()>& action) {
    try {
        return action();
    } catch (const BusLost& error) {
        m_Lost = error.what();
        return Capitalized(m_Lost);
    } catch (const BusError& error) {
        return Capitalized(error.what());
    }
}

Refusal Target::Try(const std::function<Refusal()>& action) {
    return Catch([&] {
        PowerTrace();
        return action();
    });
}

// A reset of the chip takes the power from its trace hardware.
void Target::PowerTrace() {
    if (!m_Hardware.hasTracePower) return;
    const uint32_t demcr = m_Bus->Read(DEMCR);
    if ((demcr & DEMCR_TRCENA) != 0) return;
    m_Tell("trace has lost its power: setting TRCENA, bit 24 of DEMCR (" + Hex(DEMCR) + ")");
    WriteChecked(*m_Bus, "DEMCR", DEMCR, demcr | DEMCR_TRCENA, DEMCR_TRCENA);
}

EtmImage Target::ReadImage() {
    return ReadEtm(*m_Bus, m_Hardware, SettingRegisters(m_Hardware.etm));
}

bool Target::IsEnabled() {
    return (m_Bus->Read(m_Hardware.Etm(ETMCR)) & ETMCR_POWER_DOWN) == 0;
}

void Target::Program(const std::vector<EtmWrite>& writes) {
    if (!writes.empty()) ProgramEtm(*m_Bus, m_Hardware, writes);
}

void Target::TakeOver(const TargetState& kept, bool hasRegisters) {
    const uint32_t control = state.control; // an armed trigger shows in it
    const bool running = state.capture.running;
    state = kept;
    if (!IsSimulated()) {
        // The file knows a connection by its name alone: there may be another chip behind it, or
        // the same one after a reset.
        const uint32_t stored = kept.control & kControlBits & ~ORN_CONTROL_TRIGGER_ADDRESS;
        state.control = (m_Sink->CheckControl(stored) ? 0 : stored) | control;
        state.capture.running = running;
        state.pinsReady = false;
        if (state.trace.pc == PcTrace::Complex) state.trace.pc = PcTrace::All;
    } else if (!hasRegisters) {
        Reprogram();
    }
}

// --- Comparators of the DWT ------------------------------------------------------------------

std::vector<DwtComparator> Target::DwtComparators() {
    std::vector<DwtComparator> comparators;
    if (!m_Hardware.dwtBase || m_Hardware.dwtComparators == 0) return comparators;
    std::vector<uint32_t> addresses;
    for (uint32_t index = 0; index < m_Hardware.dwtComparators; ++index)
        for (const uint32_t offset : {DWT_COMP, DWT_FUNCTION})
            addresses.push_back(*m_Hardware.dwtBase + offset + 16 * index);
    const std::vector<uint32_t> words = m_Bus->Read(addresses);
    for (uint32_t index = 0; index < m_Hardware.dwtComparators; ++index) {
        DwtComparator comparator;
        static_cast<DwtState&>(comparator) = DecodeDwt(words[2 * index], words[2 * index + 1]);
        if (const auto entry = state.dwt.find(index); entry != state.dwt.end()) {
            comparator.setHere = true;
            comparator.lost = !comparator.TellsTheEtm() || comparator.address != entry->second;
        }
        comparators.push_back(comparator);
    }
    return comparators;
}

// Debug servers clear comparators when they examine the core again. One that was never set here may
// be somebody else's business, and is taken as it is.
Refusal Target::CheckDwt(std::initializer_list<std::optional<uint32_t>> indexes) {
    if (!m_Hardware.etm.TakesIndexes() || state.dwt.empty()) return {};
    const std::vector<DwtComparator> comparators = DwtComparators();
    for (const std::optional<uint32_t>& index : indexes) {
        if (!index || *index >= comparators.size() || !comparators[*index].lost) continue;
        const std::string number = std::to_string(*index);
        return "DWT comparator " + number + " no longer watches " + Hex(state.dwt.at(*index)) +
               ": its function reads " + Hex(comparators[*index].function) + ", its address " +
               Hex(comparators[*index].address) +
               "; debug servers clear it when they examine "
               "the core again. Set it anew: dwt " +
               number + " " + Hex(state.dwt.at(*index));
    }
    return {};
}

Refusal Target::SetDwt(uint32_t index, uint32_t address) {
    if (!m_Hardware.etm.TakesIndexes() || !m_Hardware.dwtBase || m_Hardware.dwtComparators == 0)
        return "This chip has no DWT comparators that its ETM listens to";
    if (index >= m_Hardware.IndexLimit())
        return "This chip has DWT comparators 0 to " + std::to_string(m_Hardware.IndexLimit() - 1);
    if (address % 2 != 0) return "Address " + Hex(address) + " is odd, which no instruction's is";
    return Try([&]() -> Refusal {
        const uint32_t base = *m_Hardware.dwtBase;
        const std::vector<RegisterWrite> writes = EncodeDwt(index, address);
        std::vector<uint32_t> places; // function, address, mask, function
        for (const RegisterWrite& write : writes) places.push_back(base + write.offset);
        const std::vector<uint32_t> before = m_Bus->Read(std::span(places).first(3));
        if (const DwtState present = DecodeDwt(0, before[0]); present.IsTaken())
            return "DWT comparator " + std::to_string(index) + " is in use: its function reads " +
                   Hex(present.function);
        Unlock(*m_Bus, base, "DWT");
        const uint32_t off = writes[0].Over(before[0]);
        const uint32_t held = off | (before[0] & writes[3].mask); // without what is read only
        const std::pair<uint32_t, uint32_t> back[] = {
            {places[0], off}, {places[1], before[1]}, {places[2], before[2]}, {places[0], held}};
        OrRestore(*m_Bus, {std::begin(back), std::end(back)}, [&] {
            m_Bus->Write(places[0], off);
            WriteChecked(*m_Bus, "the DWT's address", places[1], writes[1].value);
            WriteChecked(*m_Bus, "the DWT's mask", places[2], writes[2].value, writes[2].mask);
            WriteChecked(*m_Bus, "the DWT's function", places[3], writes[3].Over(off),
                         writes[3].mask);
        });
        state.dwt[index] = address;
        return {};
    });
}

Refusal Target::ClearDwt(uint32_t index) {
    return Try([&]() -> Refusal {
        const std::vector<DwtComparator> comparators = DwtComparators();
        if (index >= comparators.size()) return "There is no such DWT comparator";
        const uint32_t function = comparators[index].function;
        if (comparators[index].IsTaken())
            return "DWT comparator " + std::to_string(index) + " is in use: its function reads " +
                   Hex(function);
        if (function != 0) {
            Unlock(*m_Bus, *m_Hardware.dwtBase, "DWT");
            for (const RegisterWrite& write : EncodeDwt(index, std::nullopt))
                WriteChecked(*m_Bus, "the DWT's function", *m_Hardware.dwtBase + write.offset,
                             write.value, write.mask);
        }
        state.dwt.erase(index);
        return {};
    });
}

// --- Capture ----------------------------------------------------------------------------------

uint32_t Target::Control() {
    return (state.control & ~ORN_CONTROL_ENABLE) | (IsEnabled() ? ORN_CONTROL_ENABLE : 0);
}

// What an ETM needs beside its power to send trace: to be enabled, and, where its trace is
// formatted, an ID that is not reserved.
std::vector<EtmWrite> Target::SendingWrites() {
    std::vector<EtmWrite> writes = {{ETMCR, ETMCR_ENABLE, ETMCR_ENABLE}};
    if (m_Hardware.etm.archMajor >= 3 && (m_Hardware.tpiuBase || m_Hardware.etbBase)) {
        const uint32_t id = m_Bus->Read(m_Hardware.Etm(ETMTRACEIDR)) & 0x7F;
        if (id == 0 || id >= kFirstReservedId) writes.push_back({ETMTRACEIDR, kTraceId, 0x7F});
    }
    return writes;
}

Refusal Target::Enable(bool on) {
    return Try([&]() -> Refusal {
        if (!on && state.capture.running) m_Sink->Stop();
        std::vector<EtmWrite> writes;
        if (on)
            writes = SendingWrites();
        else
            writes.push_back({ETMCR, 0, ETMCR_ENABLE});
        writes.push_back({ETMCR, on ? 0 : ETMCR_POWER_DOWN, ETMCR_POWER_DOWN});
        Program(writes);
        if (on) CheckProtocol();
        if (!on) state.capture.running = false;
        state.control = (state.control & ~ORN_CONTROL_ENABLE) | (on ? ORN_CONTROL_ENABLE : 0);
        return {};
    });
}

// A trace port that is set to a serial protocol sends no trace of the ETM. Who uses it serially
// would not like it to be changed from here.
void Target::CheckProtocol() {
    if (IsSimulated() || m_Hardware.sink != SinkKind::Port) return;
    const uint32_t protocol = m_Bus->Read(*m_Hardware.tpiuBase + TPIU_PROTOCOL) & 3;
    if (protocol == 0) return;
    m_Tell("the trace port is set to a serial protocol: " +
           Hex(*m_Hardware.tpiuBase + TPIU_PROTOCOL) + " reads " + Hex(protocol) +
           ", trace of an ETM needs 0; \"/startup\" or a board file sets it");
}

Refusal Target::SetControl(uint32_t word) {
    if ((word & ~kControlBits) != 0) return "The control word has bits that the target lacks";
    if (const Refusal refusal = m_Sink->CheckControl(word)) return refusal;
    return Try([&]() -> Refusal {
        const bool on = (word & ORN_CONTROL_ENABLE) != 0;
        if (on != IsEnabled())
            if (const Refusal refusal = Enable(on)) return refusal;
        // No command takes a trigger back.
        if ((word & ORN_CONTROL_TRIGGER_ADDRESS) == 0) Disarm();
        state.control = word;
        return {};
    });
}

uint32_t Target::TriggerCount() {
    return m_Sink->TriggerCount();
}

Refusal Target::SetTriggerCount(uint32_t count) {
    return Try([&] { return m_Sink->SetTriggerCount(count); });
}

Refusal Target::Start() {
    return Try([&]() -> Refusal {
        if (!IsEnabled()) return "Trace is not enabled";
        const EtmSettings held = DecodeSettings(m_Hardware.etm, ReadImage());
        if (const Refusal refusal = CheckDwt({held.pcBegin, held.pcEnd, held.trigger}))
            return refusal;
        if (state.capture.running) return {};
        Program(SendingWrites()); // others may have left it on, and silent
        m_Sink->Start(state.control);
        state.capture.running = true;
        return {};
    });
}

Refusal Target::Stop() {
    return Try([&]() -> Refusal {
        m_Sink->Stop();
        state.capture.running = false;
        return {};
    });
}

Refusal Target::ForceTrigger() {
    return Try([&] { return m_Sink->ForceTrigger(); });
}

Refusal Target::ClearBuffer() {
    return Try([&] { return m_Sink->Clear(); });
}

void Target::Look() {
    std::vector<uint32_t> addresses = m_Sink->StateAddresses();
    addresses.insert(addresses.begin(), m_Hardware.Etm(ETMCR));
    if (m_Hardware.hasTracePower) addresses.push_back(DEMCR);
    std::vector<uint32_t> words;
    bool powerLost = false;
    try {
        words = m_Bus->Read(addresses);
        powerLost = m_Hardware.hasTracePower && (words.back() & DEMCR_TRCENA) == 0;
        const uint32_t control = words.front();
        words.erase(words.begin());
        state.capture = m_Sink->Look(control, words, state.capture);
    } catch (const BusLost&) {
        throw;
    } catch (const BusError&) { // without power some chips give no answer at all
        powerLost = m_Hardware.hasTracePower && (m_Bus->Read(DEMCR) & DEMCR_TRCENA) == 0;
        if (!powerLost) throw;
    }
    if (powerLost) {
        state.capture.running = false;
        if (!m_PowerLost) m_Tell("trace has lost its power: the chip may have been reset");
    }
    m_PowerLost = powerLost;
}

Refusal Target::Poll() {
    const Capture before = state.capture;
    const Refusal refusal = Catch([this]() -> Refusal {
        m_Bus->Step();
        m_Sink->Step(state.control);
        Look();
        return {};
    });
    if (refusal) state.capture.running = false;
    // It has started or stopped, though no command said so. The simulated emulator has told that
    // itself.
    if (before.running != state.capture.running && state.capture.ended == before.ended)
        state.capture.ended = !before.ended;
    return refusal;
}

uint32_t Target::StateWord() const {
    return (state.capture.ended ? ORN_STATE_LOOK_AGAIN : 0u) |
           (state.capture.running ? ORN_STATE_RUNNING : 0u);
}

// --- The board --------------------------------------------------------------------------------

void Target::ForgetPins() {
    state.pinsReady = false;
    m_PreparedSize = 0;
}

Refusal Target::PreparePins() {
    return Try([&]() -> Refusal {
        const uint32_t size = Settings().portSize;
        if (size == 0) return "The size of the trace port is not known: set it first";
        if (!IsSimulated())
            m_Tell("the debug server prepares its trace port of " + Bits(size) +
                   "; what it writes is its own");
        if (const Refusal refusal = m_Bus->PreparePort(size)) return refusal;
        state.pinsReady = true;
        m_PreparedSize = size;
        if (const uint32_t now = Settings().portSize; now != size)
            m_Tell("the debug server has changed the port size from " + Bits(size) + " to " +
                   Bits(now));
        return {};
    });
}

Refusal Target::WriteMemory(uint32_t address, uint32_t value) {
    return Catch([&]() -> Refusal {
        m_Bus->WriteMemory(address, value);
        return {};
    });
}

} // namespace etmhost
