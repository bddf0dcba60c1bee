// A chip that is nothing but its registers, with the rules that real ones have: a lock, a
// programming bit, a power-down bit, trace power, and a buffer that fills while trace flows.

#pragma once

#include "host/target/RegisterBus.h"
#include "host/target/chips.h"

namespace etmhost {

/// Values of registers by address.
using ChipRegisters = std::map<uint32_t, uint32_t>;

class SimulatedChip final : public RegisterBus {
public:
    /// Keeps in `registers` what differs from the values after reset. Both must outlive the object;
    /// `registers` may be replaced at any time.
    SimulatedChip(const Chip& chip, ChipRegisters& registers)
        : m_Chip(chip), m_Registers(registers) {}

    using RegisterBus::Read;
    /// An address outside of the components throws BusError, for Write too.
    std::vector<uint32_t> Read(std::span<const uint32_t> addresses) override;
    void Write(uint32_t address, uint32_t value) override;
    void WriteMemory(uint32_t, uint32_t) override {} // a board without any memory: nothing happens
    Refusal PreparePort(uint32_t) override { return {}; }

    /// An on-chip buffer takes an eighth of its depth in each step. An armed trigger occurs at the
    /// fourth step of a capture.
    void Step() override;

    /// Returns true iff the ETM sends trace: powered, enabled, not being programmed, and told to
    /// trace something.
    bool TraceFlows() const;

    /// Returns true iff the ETM has a trigger that can occur.
    bool HasTrigger() const;

    const Chip& chip() const { return m_Chip; }

private:
    uint32_t Stored(const ChipComponent& component, uint32_t offset) const;
    void Store(const ChipComponent& component, uint32_t offset, uint32_t value);
    bool IsAlive(const ChipComponent& component) const;
    uint32_t ReadOffset(const ChipComponent& component, uint32_t offset);
    uint32_t ReadIdentification(const ChipComponent& component, uint32_t offset) const;
    uint32_t ReadRomTable(uint32_t offset) const;
    void WriteEtm(const ChipComponent& etm, uint32_t offset, uint32_t value);
    void WriteBuffer(const ChipComponent& etb, uint32_t offset, uint32_t value);
    void WritePort(const ChipComponent& tpiu, uint32_t offset, uint32_t value);
    void WriteDwt(const ChipComponent& dwt, uint32_t offset, uint32_t value);
    const ChipComponent* At(uint32_t address) const;

    const Chip& m_Chip;
    ChipRegisters& m_Registers;
};

} // namespace etmhost
