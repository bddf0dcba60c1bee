#include "host/serve/SmallCore.h"

#include <bit>

namespace etmhost {

namespace {

constexpr uint32_t kNegative = 1u << 31, kZero = 1u << 30, kCarry = 1u << 29, kOverflow = 1u << 28;
constexpr uint32_t kThumb = 1u << 24;

/// Returns the low `bits` bits of `value` with their sign.
uint32_t SignExtend(uint32_t value, int bits) {
    const uint32_t sign = 1u << (bits - 1);
    return ((value & (sign * 2 - 1)) ^ sign) - sign;
}

/// Returns how far BL goes, from the address behind it; 0 if the halves are no BL.
uint32_t CallOffset(uint32_t first, uint32_t second) {
    if ((first & 0xF800) != 0xF000 || (second & 0xD000) != 0xD000) return 0;
    const uint32_t sign = first >> 10 & 1;
    const uint32_t high = ~(second >> 13 ^ sign) & 1, low = ~(second >> 11 ^ sign) & 1;
    return SignExtend(
        sign << 24 | high << 23 | low << 22 | (first & 0x3FF) << 12 | (second & 0x7FF) << 1, 25);
}

} // namespace

void SmallCore::Reset(uint32_t vectors) {
    const auto word = [this](uint32_t address) {
        const uint32_t* memory = m_Memory.Find(address);
        return memory == nullptr ? 0 : *memory;
    };
    m_Registers[kLr] = 0xFFFFFFFF;
    m_Registers[kControlAndMasks] = 0;
    m_Registers[kMsp] = word(vectors) & ~3u;
    const uint32_t start = word(vectors + 4);
    m_Registers[kPc] = start & ~1u;
    m_Registers[kXpsr] = (start & 1) * kThumb;
}

// SP is one of MSP and PSP, as CONTROL selects.
uint32_t SmallCore::Index(uint32_t number) const {
    if (number != kSp) return number;
    return (m_Registers[kControlAndMasks] >> 25 & 1) != 0 ? kPsp : kMsp;
}

void SmallCore::Set(uint32_t number, uint32_t value) {
    if (number == kSp || number == kMsp || number == kPsp) value &= ~3u;
    if (number == kPc) value &= ~1u;
    m_Registers[Index(number)] = value;
}

bool SmallCore::Holds(uint32_t condition) const {
    const uint32_t flags = m_Registers[kXpsr];
    const bool n = (flags & kNegative) != 0, z = (flags & kZero) != 0;
    const bool c = (flags & kCarry) != 0, v = (flags & kOverflow) != 0;
    const bool truths[] = {z, c, n, v, c && !z, n == v, n == v && !z, true};
    return truths[condition >> 1] != ((condition & 1) != 0);
}

uint32_t SmallCore::Add(uint32_t a, uint32_t b, uint32_t carry) {
    const uint64_t sum = uint64_t(a) + b + carry;
    const auto result = uint32_t(sum);
    uint32_t flags = m_Registers[kXpsr] & ~(kNegative | kZero | kCarry | kOverflow);
    flags |= result & kNegative;
    if (result == 0) flags |= kZero;
    if (sum >> 32 != 0) flags |= kCarry;
    if (((a ^ result) & (b ^ result) & kNegative) != 0) flags |= kOverflow;
    m_Registers[kXpsr] = flags;
    return result;
}

SmallCore::Outcome SmallCore::LoadOrStore(bool load, uint32_t address, uint32_t reg) {
    uint32_t* memory = m_Memory.Find(address);
    if (memory == nullptr) return Outcome::Fault;
    address &= ~3u;
    m_Access = {m_Access.end == 0 ? address : m_Access.first, address + 4, !load};
    if (load)
        Set(reg, *memory);
    else
        *memory = Get(reg);
    return Outcome::Done;
}

// PUSH and POP. Bit 8 stands for LR and PC.
SmallCore::Outcome SmallCore::PushOrPop(uint32_t instruction) {
    const bool pop = (instruction & 0x800) != 0;
    uint32_t list = instruction & 0xFF;
    if ((instruction & 0x100) != 0) list |= 1u << (pop ? kPc : kLr);
    const uint32_t bytes = 4 * uint32_t(std::popcount(list));
    uint32_t address = Get(kSp) - (pop ? 0 : bytes);
    const uint32_t stack = pop ? address + bytes : address;
    for (uint32_t reg = 0; reg <= kPc; ++reg) {
        if ((list >> reg & 1) == 0) continue;
        if (LoadOrStore(pop, address, reg) != Outcome::Done) return Outcome::Fault;
        address += 4;
    }
    Set(kSp, stack);
    return Outcome::Done;
}

SmallCore::Outcome SmallCore::Step() {
    const uint32_t at = pc();
    const auto fetch = [this](uint32_t address) {
        const uint32_t* word = m_Memory.Find(address);
        return word == nullptr ? 0 : *word >> (address & 2) * 8 & 0xFFFF;
    };
    if (m_Memory.Find(at) == nullptr) return Outcome::Fault;
    const uint32_t instruction = fetch(at);
    const uint32_t ahead = at + 4; // what an instruction sees as PC
    uint32_t& pc = m_Registers[kPc];
    const uint32_t low = instruction & 7, next = instruction >> 3 & 7, imm8 = instruction & 0xFF;
    uint32_t& high = m_Registers[instruction >> 8 & 7];

    pc = at + 2;
    m_Access = {};
    Outcome outcome = Outcome::Done;
    switch (instruction >> 11) {
    case 0x03: { // ADD, SUB of a register or 3 bits
        const uint32_t field = instruction >> 6 & 7;
        const uint32_t operand = (instruction & 0x400) != 0 ? field : m_Registers[field];
        const bool subtract = (instruction & 0x200) != 0;
        m_Registers[low] = Add(m_Registers[next], subtract ? ~operand : operand, subtract ? 1 : 0);
        break;
    }
    case 0x04: { // MOV; it leaves carry and overflow
        const uint32_t kept = m_Registers[kXpsr] & (kCarry | kOverflow);
        high = Add(imm8, 0, 0);
        m_Registers[kXpsr] |= kept;
        break;
    }
    case 0x05: // CMP
        Add(high, ~imm8, 1);
        break;
    case 0x06: // ADD
        high = Add(high, imm8, 0);
        break;
    case 0x07: // SUB
        high = Add(high, ~imm8, 1);
        break;
    case 0x08: { // MOV between all registers, BX, BLX
        const uint32_t value = Get(instruction >> 3 & 15);
        if ((instruction & 0x700) == 0x600) Set(low | (instruction >> 4 & 8), value);
        if ((instruction & 0x700) != 0x700) break;
        if ((instruction & 0x80) != 0) m_Registers[kLr] = pc | 1;
        Set(kPc, value);
        break;
    }
    case 0x09: // LDR of a word behind the code
        outcome = LoadOrStore(true, (ahead & ~3u) + 4 * imm8, instruction >> 8 & 7);
        break;
    case 0x0C: // STR, LDR
    case 0x0D:
        outcome = LoadOrStore((instruction & 0x800) != 0,
                              m_Registers[next] + 4 * (instruction >> 6 & 31), low);
        break;
    case 0x16: // PUSH, POP, BKPT
    case 0x17:
        if ((instruction & 0x600) == 0x400) outcome = PushOrPop(instruction);
        if (instruction >> 8 == 0xBE) outcome = Outcome::Breakpoint;
        break;
    case 0x1A: // B on a condition; of two there is none
    case 0x1B: {
        const uint32_t condition = instruction >> 8 & 15;
        if (condition < 14 && Holds(condition)) pc = ahead + SignExtend(imm8 << 1, 9);
        break;
    }
    case 0x1C: // B
        pc = ahead + SignExtend(instruction << 1, 12);
        break;
    case 0x1D: // the instructions of 32 bits
    case 0x1E:
    case 0x1F:
        pc = ahead;
        if (const uint32_t offset = CallOffset(instruction, fetch(at + 2))) {
            m_Registers[kLr] = ahead | 1;
            pc = ahead + offset;
        }
        break;
    default:
        break;
    }
    if (outcome != Outcome::Done) pc = at;
    return outcome;
}

} // namespace etmhost
