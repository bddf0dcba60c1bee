// The access port through which a debugger reaches the memory of a Cortex-M.

#pragma once

#include <cstdint>

namespace etmhost {

class RegisterBus;

/// An AHB-AP: transfers of 8, 16 and 32 bits at an address that may count on, within 4 KB.
class MemoryAccessPort {
public:
    static constexpr uint32_t kIdentification = 0x24770011; ///< of Cortex-M3 and Cortex-M4

    /// Reaches `bus`, which must outlive this object; its ROM table stands at `romTable`.
    MemoryAccessPort(RegisterBus& bus, uint32_t romTable) : m_Bus(bus), m_RomTable(romTable) {}

    /// Reads or writes the register at the byte offset `reg`, a multiple of 4 below 0x100. Throws
    /// BusError if that needed a transfer and the transfer failed; the address stays then.
    uint32_t Read(uint32_t reg);
    void Write(uint32_t reg, uint32_t value);

private:
    template <class Transfer> void TransferAndCount(Transfer transfer);
    void WritePart(uint32_t size, uint32_t value);

    RegisterBus& m_Bus;
    const uint32_t m_RomTable;
    uint32_t m_Control = 0x23000042; ///< CSW: 32 bits, privileged data, enabled
    uint32_t m_Address = 0;          ///< TAR
};

} // namespace etmhost
