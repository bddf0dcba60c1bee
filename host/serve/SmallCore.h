// Carries out programs, as far as a debugger's view of a running core needs it.

#pragma once

#include <array>
#include <cstdint>

#include "host/serve/ServedMemory.h"

namespace etmhost {

/// A core without exceptions that knows the commonest 16-bit instructions and BL. Each other
/// instruction passes without effect.
class SmallCore {
public:
    /// Numbers of registers beyond R0 to R15, as debuggers choose them.
    enum Register : uint32_t { kSp = 13, kLr, kPc, kXpsr, kMsp, kPsp, kControlAndMasks = 20 };
    static constexpr uint32_t kRegisters = 21;

    enum class Outcome {
        Done,
        Breakpoint, ///< a BKPT, which is not passed
        Fault,      ///< an access to nothing, which is not passed either
    };

    /// Runs in `memory`, which must outlive this object.
    explicit SmallCore(ServedMemory& memory) : m_Memory(memory) { Reset(0); }

    /// Starts over with the vectors at `vectors`.
    void Reset(uint32_t vectors);

    /// Carries out one instruction.
    Outcome Step();

    /// REQUIRES: number < kRegisters
    uint32_t Get(uint32_t number) const { return m_Registers[Index(number)]; }
    void Set(uint32_t number, uint32_t value);
    uint32_t pc() const { return m_Registers[kPc]; }

    /// The data that the last instruction read or wrote, from `first` up to `end`, bytes.
    struct Access {
        uint32_t first = 0, end = 0;
        bool write = false;
    };
    const Access& access() const { return m_Access; }

private:
    bool Holds(uint32_t condition) const;
    uint32_t Add(uint32_t a, uint32_t b, uint32_t carry);
    uint32_t Index(uint32_t number) const;
    Outcome LoadOrStore(bool load, uint32_t address, uint32_t reg);
    Outcome PushOrPop(uint32_t instruction);

    ServedMemory& m_Memory;
    std::array<uint32_t, kRegisters> m_Registers{};
    Access m_Access;
};

} // namespace etmhost
