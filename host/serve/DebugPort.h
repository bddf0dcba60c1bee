// The JTAG debug port of an ARM chip (ADIv5), as a debugger sees it behind the TAP.

#pragma once

#include <cstdint>

#include "host/serve/MemoryAccessPort.h"

namespace etmhost {

/// Carries out the scans that reach it. Its transfers end at once, so that it never asks the
/// debugger to wait and no access overruns another.
class DebugPort {
public:
    enum Instruction : uint32_t {
        kAbort = 0x8,
        kDpAccess = 0xA,
        kApAccess = 0xB,
        kIdCode = 0xE,
        kBypass = 0xF, ///< as is each instruction that is not named here
    };
    static constexpr uint32_t kIdentification = 0x4BA00477; ///< of Cortex-M3 and Cortex-M4

    /// `port` is access port 0; there is no other. It must outlive this object.
    explicit DebugPort(MemoryAccessPort& port) : m_Port(port) {}

    /// Returns how many bits stand behind `instruction`.
    static int Length(uint32_t instruction);

    /// Returns what a scan of `instruction` brings out: of an access the answer to the one before.
    uint64_t Capture(uint32_t instruction) const;

    /// Carries out what a scan of `instruction` brought in.
    void Update(uint32_t instruction, uint64_t bits);

private:
    void AccessDebugPort(uint32_t address, bool read, uint32_t value);
    void AccessAccessPort(uint32_t address, bool read, uint32_t value);
    uint32_t Status() const;

    MemoryAccessPort& m_Port;
    uint32_t m_Control = 0; ///< CTRL/STAT without the answers to power requests
    uint32_t m_Select = 0;
    uint32_t m_Result = 0; ///< of the access before
};

} // namespace etmhost
