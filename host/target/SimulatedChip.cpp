#include "host/target/SimulatedChip.h"

#include <algorithm>
#include <bit>

#include "host/support/words.h"
#include "host/target/etm_codec.h"
#include "host/target/etm_registers.h"
#include "host/target/etm_resources.h"

namespace etmhost {

namespace {

using Kind = ChipComponent::Kind;

// Beside the registers of a component, at offsets that no register has: what it remembers.
constexpr uint32_t kUnlocked = 0xFB2;
constexpr uint32_t kCaptureSteps = 0xF02; // since the capture began
constexpr uint32_t kRemaining = 0xF06; // words to store behind the trigger, plus one; 0: no trigger

EtmResources ResourcesOf(const ChipComponent& etm) {
    const auto value = [&etm](uint32_t number) {
        const auto entry = etm.registers.find(4 * number);
        return entry != etm.registers.end() ? entry->second : 0;
    };
    return DecodeResources({value(ETMCCR), value(ETMSCR), value(ETMIDR), value(ETMCCER)});
}

// The bits of ETM register `number` that this ETM has for writing.
uint32_t WritableBits(const EtmResources& etm, uint32_t number) {
    const std::vector<uint32_t> settings = SettingRegisters(etm);
    if (std::ranges::find(settings, number) == settings.end())
        return number == ETMTRACEIDR && etm.archMajor >= 3 ? 0x7F : 0;
    switch (number) {
    case ETMCR:
        return 0x103FFFFF;
    case ETMTRIGGER:
    case ETMTEEVR:
    case ETMVDEVR:
        return ETM_EVENT_MASK;
    case ETMTECR1: // without comparators there is the start/stop block alone
        return etm.addressPairs == 0 ? ETMTECR1_START_STOP : 0x03FFFFFF;
    case ETMTECR2:
        return 0xFFFF;
    case ETMVDCR3:
        return 0x1FFFF;
    case ETMTESSEICR:
        return ((1u << etm.watchInputs) - 1) * 0x10001;
    default:
        return number >= ETMACTR && number < ETMACTR + 16 ? 0xFFF : UINT32_MAX;
    }
}

// Class of a component in its identification: generic, or CoreSight with a type of its own.
bool IsCoreSight(const ChipComponent& component) {
    return component.kind == Kind::Etm || component.kind == Kind::Tpiu ||
           component.kind == Kind::Etb;
}

} // namespace

const ChipComponent* SimulatedChip::At(uint32_t address) const {
    for (const ChipComponent& component : m_Chip.components)
        if (address - component.address < CS_PAGE) return &component;
    return nullptr;
}

uint32_t SimulatedChip::Stored(const ChipComponent& component, uint32_t offset) const {
    if (const auto entry = m_Registers.find(component.address + offset); entry != m_Registers.end())
        return entry->second;
    const auto entry = component.registers.find(offset);
    return entry != component.registers.end() ? entry->second : 0;
}

void SimulatedChip::Store(const ChipComponent& component, uint32_t offset, uint32_t value) {
    m_Registers.erase(component.address + offset);
    if (Stored(component, offset) != value) m_Registers[component.address + offset] = value;
}

bool SimulatedChip::IsAlive(const ChipComponent& component) const {
    if (!component.clock) return false;
    const ChipComponent* scs = m_Chip.Find(Kind::Scs);
    return scs == nullptr || component.kind == Kind::Scs || component.part == 0x003 ||
           (Stored(*scs, DEMCR % CS_PAGE) & DEMCR_TRCENA) != 0;
}

std::vector<uint32_t> SimulatedChip::Read(std::span<const uint32_t> addresses) {
    std::vector<uint32_t> words;
    for (const uint32_t address : addresses) {
        const ChipComponent* component = At(address);
        if (component != nullptr && address % 4 == 0)
            words.push_back(ReadOffset(*component, address - component->address));
        else if (m_Chip.romTable && address - *m_Chip.romTable < CS_PAGE && address % 4 == 0)
            words.push_back(ReadRomTable(address - *m_Chip.romTable));
        else
            throw BusError("there is nothing at " + Hex(address));
    }
    return words;
}

void SimulatedChip::Write(uint32_t address, uint32_t value) {
    const ChipComponent* component = At(address);
    if (component == nullptr || address % 4 != 0)
        throw BusError("there is nothing at " + Hex(address));
    const uint32_t offset = address - component->address;
    if (!IsAlive(*component)) return;
    if (offset == CS_LAR) {
        Store(*component, kUnlocked, value == CS_UNLOCK ? 1 : 0);
        return;
    }
    if (component->lock && Stored(*component, kUnlocked) == 0) return;
    switch (component->kind) {
    case Kind::Etm:
        WriteEtm(*component, offset, value);
        break;
    case Kind::Etb:
        WriteBuffer(*component, offset, value);
        break;
    case Kind::Dwt:
        WriteDwt(*component, offset, value);
        break;
    case Kind::Tpiu:
        WritePort(*component, offset, value);
        break;
    case Kind::Scs:
        if (address == DEMCR) Store(*component, offset, value & 0x010F07F1);
        break;
    case Kind::Other:
        break;
    }
}

uint32_t SimulatedChip::ReadOffset(const ChipComponent& component, uint32_t offset) {
    if (offset >= CS_DEVID) return ReadIdentification(component, offset);
    if (!IsAlive(component)) return 0;
    if (offset == CS_LAR) return 0;
    if (offset == CS_LSR) {
        if (!component.lock) return 0;
        return CS_LSR_IMPLEMENTED | (Stored(component, kUnlocked) == 0 ? CS_LSR_LOCKED : 0);
    }
    if (component.kind == Kind::Etm && offset == 4 * ETMSR) {
        const bool programming = (Stored(component, 4 * ETMCR) & ETMCR_PROGRAMMING) != 0;
        return programming ? ETMSR_PROGRAMMING : 0;
    }
    if (component.kind == Kind::Etb) {
        if (offset == ETB_DEPTH) return component.words;
        if (offset == ETB_READ_DATA) {
            const bool capturing = (Stored(component, ETB_CONTROL) & ETB_CAPTURE) != 0 &&
                                   Stored(component, ETB_FORMATTER_STATUS) == 0;
            if (capturing) return UINT32_MAX;
            const uint32_t pointer = Stored(component, ETB_READ_POINTER);
            Store(component, ETB_READ_POINTER, (pointer + 1) % component.words);
            return 0x80808080 + pointer; // what was never traced has no meaning
        }
    }
    if (component.kind == Kind::Dwt) {
        const bool comparator =
            offset >= DWT_COMP && offset < DWT_COMP + 16 * component.comparators;
        if (comparator && offset % 16 == DWT_FUNCTION % 16 && (offset - DWT_FUNCTION) / 16 == 1)
            return Stored(component, offset) | 1u << 9; // "linked comparators exist"
    }
    return Stored(component, offset);
}

uint32_t SimulatedChip::ReadIdentification(const ChipComponent& component, uint32_t offset) const {
    const uint32_t part = component.part;
    switch (offset) {
    case CS_DEVTYPE:
        return component.kind == Kind::Etm    ? 0x13
               : component.kind == Kind::Tpiu ? 0x11
               : component.kind == Kind::Etb  ? 0x21
                                              : 0;
    case CS_PIDR4:
        return 0x04;
    case CS_PIDR0:
        return part & 0xFF;
    case CS_PIDR0 + 4:
        return 0xB0 | part >> 8;
    case CS_PIDR0 + 8:
        return 0x0B;
    case CS_CIDR0:
        return 0x0D;
    case CS_CIDR0 + 4:
        return IsCoreSight(component) ? 0x90 : 0xE0;
    case CS_CIDR0 + 8:
        return 0x05;
    case CS_CIDR0 + 12:
        return 0xB1;
    default:
        return 0;
    }
}

uint32_t SimulatedChip::ReadRomTable(uint32_t offset) const {
    const size_t index = offset / 4;
    if (index < m_Chip.components.size())
        return ((m_Chip.components[index].address - *m_Chip.romTable) & 0xFFFFF000) | 3;
    if (offset == CS_DEVTYPE) return 1; // the system's memory can be reached as well
    if (offset < CS_PIDR4) return 0;
    if (offset == CS_CIDR0 + 4) return 0x10;
    ChipComponent table;
    table.part = m_Chip.romTablePart;
    return ReadIdentification(table, offset);
}

void SimulatedChip::WriteEtm(const ChipComponent& etm, uint32_t offset, uint32_t value) {
    const uint32_t control = Stored(etm, 4 * ETMCR);
    const uint32_t number = offset / 4;
    uint32_t bits = WritableBits(ResourcesOf(etm), number);
    if (number == ETMCR) {
        // Out of programming mode a write reaches the way into it, and the power.
        if ((control & ETMCR_PROGRAMMING) == 0) bits = ETMCR_PROGRAMMING | ETMCR_POWER_DOWN;
    } else if ((control & ETMCR_PROGRAMMING) == 0 || (control & ETMCR_POWER_DOWN) != 0) {
        return;
    }
    Store(etm, offset, (Stored(etm, offset) & ~bits) | (value & bits));
}

void SimulatedChip::WriteBuffer(const ChipComponent& etb, uint32_t offset, uint32_t value) {
    const bool capturing = (Stored(etb, ETB_CONTROL) & ETB_CAPTURE) != 0 &&
                           (Stored(etb, ETB_FORMATTER_STATUS) & ETB_FORMATTER_STOPPED) == 0;
    switch (offset) {
    case ETB_READ_POINTER:
    case ETB_WRITE_POINTER:
    case ETB_TRIGGER:
        if (!capturing) Store(etb, offset, value % etb.words);
        break;
    case ETB_FORMATTER:
        if ((value & ETB_FLUSH) != 0 && (value & ETB_STOP_ON_FLUSH) != 0)
            Store(etb, ETB_FORMATTER_STATUS, ETB_FORMATTER_STOPPED);
        Store(etb, offset, value & 0x3773 & ~ETB_FLUSH); // a flush takes no time
        break;
    case ETB_CONTROL:
        if ((value & ETB_CAPTURE) != 0 && (Stored(etb, ETB_CONTROL) & ETB_CAPTURE) == 0)
            for (const uint32_t fresh :
                 {ETB_STATUS, ETB_FORMATTER_STATUS, kCaptureSteps, kRemaining})
                Store(etb, fresh, 0);
        if ((value & ETB_CAPTURE) == 0) Store(etb, ETB_FORMATTER_STATUS, ETB_FORMATTER_STOPPED);
        Store(etb, offset, value & ETB_CAPTURE);
        break;
    default:
        break;
    }
}

void SimulatedChip::WritePort(const ChipComponent& tpiu, uint32_t offset, uint32_t value) {
    switch (offset) {
    case TPIU_CURRENT:
        if (std::has_single_bit(value) && (value & Stored(tpiu, TPIU_SUPPORTED)) != 0)
            Store(tpiu, offset, value);
        break;
    case TPIU_PRESCALER:
        Store(tpiu, offset, value & 0x1FFF);
        break;
    case TPIU_PROTOCOL:
        Store(tpiu, offset, value & 3);
        break;
    case TPIU_FORMATTER:
        Store(tpiu, offset, (value & 0x2) | 0x100);
        break;
    default:
        break;
    }
}

void SimulatedChip::WriteDwt(const ChipComponent& dwt, uint32_t offset, uint32_t value) {
    if (offset < DWT_COMP || offset >= DWT_COMP + 16 * dwt.comparators) return;
    switch (offset % 16) {
    case DWT_COMP % 16:
        Store(dwt, offset, value);
        break;
    case DWT_MASK % 16:
        Store(dwt, offset, value & 0x1F);
        break;
    case DWT_FUNCTION % 16:
        Store(dwt, offset, value & 0x000FFDAF);
        break;
    default:
        break;
    }
}

bool SimulatedChip::TraceFlows() const {
    const ChipComponent& etm = *m_Chip.Find(Kind::Etm);
    const uint32_t control = Stored(etm, 4 * ETMCR);
    return IsAlive(etm) && (control & (ETMCR_POWER_DOWN | ETMCR_PROGRAMMING)) == 0 &&
           (control & ETMCR_ENABLE) != 0 && Stored(etm, 4 * ETMTEEVR) != ETM_EVENT_NEVER;
}

bool SimulatedChip::HasTrigger() const {
    return Stored(*m_Chip.Find(Kind::Etm), 4 * ETMTRIGGER) != ETM_EVENT_NEVER;
}

void SimulatedChip::Step() {
    const ChipComponent* etb = m_Chip.Find(Kind::Etb);
    if (etb == nullptr || (Stored(*etb, ETB_CONTROL) & ETB_CAPTURE) == 0 ||
        (Stored(*etb, ETB_FORMATTER_STATUS) & ETB_FORMATTER_STOPPED) != 0 || !TraceFlows())
        return;
    const uint32_t amount = std::max<uint32_t>(etb->words / kStepsToFill, 1);
    const uint32_t pointer = Stored(*etb, ETB_WRITE_POINTER) + amount;
    uint32_t status = Stored(*etb, ETB_STATUS);
    if (pointer >= etb->words) status |= ETB_STATUS_FULL;
    Store(*etb, ETB_WRITE_POINTER, pointer % etb->words);
    const uint32_t steps = Stored(*etb, kCaptureSteps) + 1;
    Store(*etb, kCaptureSteps, steps);
    uint32_t remaining = Stored(*etb, kRemaining);
    if (steps == kTriggerStep && HasTrigger()) {
        status |= ETB_STATUS_TRIGGERED;
        remaining = Stored(*etb, ETB_TRIGGER) + 2;
        if (Stored(*etb, ETB_TRIGGER) == 0) remaining = 1; // nothing to wait for
    } else if (remaining > 0) {
        remaining = std::max(remaining, amount + 1) - amount;
    }
    Store(*etb, kRemaining, remaining);
    if (remaining == 1 && (Stored(*etb, ETB_FORMATTER) & ETB_STOP_ON_TRIGGER) != 0) {
        status |= ETB_STATUS_COMPLETE;
        Store(*etb, ETB_FORMATTER_STATUS, ETB_FORMATTER_STOPPED);
    }
    Store(*etb, ETB_STATUS, status);
}

} // namespace etmhost
