#include "host/serve/CoreDebug.h"

#include <utility>

#include "host/support/words.h"
#include "host/target/etm_registers.h"

namespace etmhost {

namespace {

constexpr uint32_t kBreakpointUnit = 0xE0002000, kSystemControl = 0xE000E000;
constexpr uint32_t kDwtComparators = 0xE0001020, kDemcr = 0xE000EDFC;

enum SystemRegister : uint32_t {
    kIctr = 0x004,
    kCpuid = 0xD00,
    kVtor = 0xD08,
    kAircr = 0xD0C,
    kDfsr = 0xD30,
    kDhcsr = 0xDF0,
    kDcrsr = 0xDF4,
    kDcrdr = 0xDF8,
};

// DHCSR
constexpr uint32_t kDebugKey = 0xA05F;
constexpr uint32_t kStepBit = 4, kControlMask = 0x2F;
constexpr uint32_t kRegisterReady = 1u << 16, kStatusHalted = 1u << 17, kStatusLockup = 1u << 19,
                   kStatusRetired = 1u << 24, kStatusReset = 1u << 25;
// DFSR
constexpr uint32_t kByRequest = 1, kByBreakpoint = 2, kByWatchpoint = 4, kByVectorCatch = 8;
// DEMCR
constexpr uint32_t kCatchReset = 1;
// The function of a DWT comparator: what halts is 4 PC, 5 read, 6 write, 7 both.
constexpr uint32_t kFunctionMask = 0xF, kFunctionPc = 4, kFunctionBoth = 7, kMatched = 1u << 24;
constexpr uint32_t kOnPc = 1, kOnRead = 2, kOnWrite = 4;

/// Returns the identification register at `offset` of the page of a component without a CoreSight
/// class, made by ARM; 0 if there is none.
uint32_t Identification(uint32_t offset, uint32_t part, uint32_t revision) {
    const uint32_t words[] = {
        0x04,
        0,
        0,
        0, // the maker's bank
        part & 0xFF,
        0xB0 | part >> 8,
        revision << 4 | 0xB,
        0, // part and maker
        0x0D,
        0xE0,
        0x05,
        0xB1, // class
    };
    return offset >= 0xFD0 ? words[(offset - 0xFD0) / 4] : 0;
}

bool IsIn(uint32_t address, uint32_t page) {
    return (address & ~(CS_PAGE - 1)) == page;
}

} // namespace

CoreDebug::CoreDebug(RegisterBus& chip, const CoreIdentity& identity,
                     std::function<void()> chipReset)
    : m_Chip(chip), m_Identity(identity), m_ChipReset(std::move(chipReset)), m_Core(m_Memory) {}

std::vector<uint32_t> CoreDebug::Read(std::span<const uint32_t> addresses) {
    std::vector<uint32_t> words;
    words.reserve(addresses.size());
    for (const uint32_t address : addresses) words.push_back(ReadWord(address));
    return words;
}

uint32_t CoreDebug::ReadWord(uint32_t address) {
    if (const uint32_t* word = m_Memory.Find(address)) return *word;
    if (IsIn(address, kBreakpointUnit)) return ReadBreakpoints(address - kBreakpointUnit);
    if (IsIn(address, kSystemControl) && address != kDemcr)
        return ReadSystemControl(address - kSystemControl);
    const uint32_t word = m_Chip.Read(address);
    const uint32_t offset = address - kDwtComparators;
    const bool matched = offset / 16 < m_Watchpoints.size() && offset % 16 == 8 &&
                         std::exchange(m_Watchpoints[offset / 16].matched, false);
    return matched ? word | kMatched : word;
}

void CoreDebug::Write(uint32_t address, uint32_t value) {
    if (uint32_t* word = m_Memory.Find(address)) {
        *word = value;
    } else if (IsIn(address, kBreakpointUnit)) {
        WriteBreakpoints(address - kBreakpointUnit, value);
    } else if (IsIn(address, kSystemControl) && address != kDemcr) {
        WriteSystemControl(address - kSystemControl, value);
    } else {
        m_Chip.Write(address, value);
        NoteWatchpoint(address - kDwtComparators, value);
        m_ChipWritten = true;
    }
}

uint32_t CoreDebug::ReadSystemControl(uint32_t offset) {
    switch (offset) {
    case kIctr:
        return 1; // 64 interrupts
    case kCpuid:
        return m_Identity.cpuid;
    case kVtor:
        return m_Vectors;
    case kAircr:
        return 0xFA050000;
    case kDfsr:
        return m_HaltReasons;
    case kDhcsr:
        return ReadStatus();
    case kDcrdr:
        return m_RegisterData;
    default:
        return Identification(offset, m_Identity.scsPart, 0);
    }
}

void CoreDebug::WriteSystemControl(uint32_t offset, uint32_t value) {
    switch (offset) {
    case kVtor:
        m_Vectors = value & 0xFFFFFF80;
        break;
    case kAircr: {
        constexpr uint32_t kKey = 0x05FA, kSystemReset = 4, kVectorReset = 1;
        if (value >> 16 == kKey && (value & (kSystemReset | kVectorReset)) != 0 && !m_Held) {
            Reset();
            StartFromReset();
        }
        break;
    }
    case kDfsr:
        m_HaltReasons &= ~value;
        break;
    case kDhcsr:
        if (value >> 16 == kDebugKey) WriteControl(value & kControlMask);
        break;
    case kDcrsr:
        SelectRegister(value);
        break;
    case kDcrdr:
        m_RegisterData = value;
        break;
    default:
        break;
    }
}

uint32_t CoreDebug::ReadStatus() {
    uint32_t status = m_Control | kRegisterReady;
    if (IsHalted()) status |= kStatusHalted;
    if (m_LockedUp) status |= kStatusLockup;
    if (std::exchange(m_Retired, false)) status |= kStatusRetired;
    if (std::exchange(m_WasReset, m_Held)) status |= kStatusReset;
    return status;
}

void CoreDebug::WriteControl(uint32_t value) {
    if ((value & kDebugEnabled) == 0) value = 0; // the other bits work with it only
    const bool wasHalted = IsHalted();
    m_Control = value;
    if (m_Held) return;
    if (IsHalted()) {
        if (!wasHalted) Halt(kByRequest);
    } else if (wasHalted && (value & kStepBit) != 0) {
        StepOnce();
        if (!IsHalted()) Halt(kByRequest);
    }
}

void CoreDebug::SelectRegister(uint32_t value) {
    constexpr uint32_t kWrite = 1u << 16;
    const uint32_t number = value & 0x7F;
    if (!IsHalted()) return;
    if (number >= SmallCore::kRegisters)
        m_RegisterData = (value & kWrite) != 0 ? m_RegisterData : 0;
    else if ((value & kWrite) != 0)
        m_Core.Set(number, m_RegisterData);
    else
        m_RegisterData = m_Core.Get(number);
}

void CoreDebug::Halt(uint32_t reason) {
    m_Control |= kHaltBit;
    m_HaltReasons |= reason;
    m_LockedUp = false;
}

void CoreDebug::StepOnce() {
    const bool debugged = (m_Control & kDebugEnabled) != 0;
    const uint32_t at = m_Core.pc();
    if (debugged && HasBreakpoint(at)) {
        Halt(kByBreakpoint);
        return;
    }
    switch (m_Core.Step()) {
    case SmallCore::Outcome::Done:
        m_Retired = true;
        if (const auto [first, end, write] = m_Core.access();
            debugged && (HitsWatchpoint(at, at + 2, kOnPc) ||
                         HitsWatchpoint(first, end, write ? kOnWrite : kOnRead)))
            Halt(kByWatchpoint);
        break;
    case SmallCore::Outcome::Breakpoint:
        if (debugged)
            Halt(kByBreakpoint);
        else
            m_LockedUp = true;
        break;
    case SmallCore::Outcome::Fault:
        m_LockedUp = true; // there are no handlers
        break;
    }
}

void CoreDebug::Run(uint32_t instructions) {
    while (instructions-- > 0 && !IsHalted() && !m_LockedUp && !m_Held) StepOnce();
}

void CoreDebug::Reset() {
    m_LockedUp = false;
    m_Vectors = 0;
    m_Core.Reset(m_Vectors);
    m_WasReset = true;
    m_Control &= ~kHaltBit;
    if (m_ChipReset) m_ChipReset();
}

void CoreDebug::StartFromReset() {
    if ((m_Control & kDebugEnabled) == 0) return;
    try {
        if ((m_Chip.Read(kDemcr) & kCatchReset) != 0) Halt(kByVectorCatch);
    } catch (const BusError&) { // a chip without that register catches nothing
    }
}

void CoreDebug::HoldReset(bool held) {
    if (held == m_Held) return;
    m_Held = held;
    if (held)
        Reset();
    else
        StartFromReset();
}

namespace {

enum BreakpointRegister : uint32_t { kFpControl = 0, kFpRemap = 4, kFpComparators = 8 };

} // namespace

uint32_t CoreDebug::ReadBreakpoints(uint32_t offset) const {
    const uint32_t index = (offset - kFpComparators) / 4;
    if (offset == kFpControl) // code comparators, and two for literals
        return (kComparators - kCodeComparators) << 8 | kCodeComparators << 4 |
               (m_BreakpointsOn ? 1 : 0);
    if (offset == kFpRemap) return 1u << 29; // it could remap, to a table at 0
    if (offset >= kFpComparators && index < kComparators) return m_Comparators[index];
    return Identification(offset, 0x003, m_Identity.fpbRevision);
}

void CoreDebug::WriteBreakpoints(uint32_t offset, uint32_t value) {
    constexpr uint32_t kKey = 2, kTaken = 0xDFFFFFFD;
    const uint32_t index = (offset - kFpComparators) / 4;
    if (offset == kFpControl) {
        if ((value & kKey) != 0) m_BreakpointsOn = (value & 1) != 0;
    } else if (offset >= kFpComparators && index < kComparators) {
        m_Comparators[index] = value & kTaken;
    }
}

bool CoreDebug::HasBreakpoint(uint32_t address) const {
    if (!m_BreakpointsOn) return false;
    for (uint32_t i = 0; i < kCodeComparators; ++i) {
        const uint32_t comparator = m_Comparators[i];
        const uint32_t halves = comparator >> 30; // which of the word's two
        if ((comparator & 1) != 0 && (comparator & 0x1FFFFFFC) == (address & ~3u) &&
            (halves >> (address >> 1 & 1) & 1) != 0)
            return true;
    }
    return false;
}

void CoreDebug::NoteWatchpoint(uint32_t offset, uint32_t value) {
    if (offset / 16 >= m_Watchpoints.size()) return;
    Watchpoint& watchpoint = m_Watchpoints[offset / 16];
    if (offset % 16 == 0) watchpoint.address = value;
    if (offset % 16 == 4) watchpoint.mask = (1u << (value & 31)) - 1;
    if (offset % 16 == 8) watchpoint = {watchpoint.address, watchpoint.mask, value, false};
}

bool CoreDebug::HitsWatchpoint(uint32_t first, uint32_t end, uint32_t kind) {
    bool hit = false;
    for (Watchpoint& watchpoint : m_Watchpoints) {
        const uint32_t function = watchpoint.function & kFunctionMask;
        const uint32_t kinds = function == kFunctionBoth ? kOnRead | kOnWrite
                               : function >= kFunctionPc && function < kFunctionBoth
                                   ? 1u << (function - kFunctionPc)
                                   : 0;
        const uint32_t from = watchpoint.address & ~watchpoint.mask;
        if ((kinds & kind) == 0 || first > (from | watchpoint.mask) || end <= from) continue;
        watchpoint.matched = hit = true;
    }
    return hit;
}

} // namespace etmhost
