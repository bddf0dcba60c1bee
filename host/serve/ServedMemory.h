// The memory of a served chip.

#pragma once

#include <cstdint>
#include <vector>

namespace etmhost {

/// Code memory at 0, which takes writes too, so that a debugger loads programs and sets software
/// breakpoints without a flash driver, and SRAM at 0x20000000.
class ServedMemory {
public:
    static constexpr uint32_t kCodeSize = 256 * 1024, kSramBase = 0x20000000, kSramSize = 64 * 1024;

    /// Holds a small endless program: "main" at 0x100 calls "work" at 0x10C again and again, which
    /// counts up the word at 0x20000000.
    ServedMemory();

    /// Returns the word that holds the byte at `address`; null where there is no memory.
    uint32_t* Find(uint32_t address);

private:
    std::vector<uint32_t> m_Code, m_Sram;
};

} // namespace etmhost
