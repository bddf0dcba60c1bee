#include "host/serve/ServedMemory.h"

#include <algorithm>
#include <array>

namespace etmhost {

namespace {

constexpr uint32_t kProgramAddress = 0x100;

constexpr auto kProgramCode = std::to_array<uint16_t>({
    // main:
    0x4C04, // 100  ldr  r4, [pc, #16]
    0x2000, // 102  movs r0, #0
    // loop:
    0xF000, 0xF802, // 104  bl   work
    0xE7FC,         // 108  b    loop
    0xBF00,         // 10A  nop
    // work:
    0x3001,         // 10C  adds r0, #1
    0x6020,         // 10E  str  r0, [r4]
    0x4770,         // 110  bx   lr
    0xBF00,         // 112  nop
    0x0000, 0x2000, // 114  the counter's address
});

} // namespace

ServedMemory::ServedMemory() : m_Code(kCodeSize / 4), m_Sram(kSramSize / 4) {
    // The vectors: stack, reset, and for all exceptions of the core the reset again.
    std::fill_n(m_Code.begin(), 16, kProgramAddress | 1);
    m_Code[0] = kSramBase + kSramSize;
    for (size_t i = 0; i < kProgramCode.size(); ++i)
        m_Code[kProgramAddress / 4 + i / 2] |= uint32_t(kProgramCode[i]) << (i % 2 * 16);
}

uint32_t* ServedMemory::Find(uint32_t address) {
    if (address < kCodeSize) return &m_Code[address / 4];
    const uint32_t offset = address - kSramBase;
    return offset < kSramSize ? &m_Sram[offset / 4] : nullptr;
}

} // namespace etmhost
