// The core of a served chip, as a debugger finds it beside the trace registers.

#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <utility>

#include "host/serve/SmallCore.h"
#include "host/target/RegisterBus.h"

namespace etmhost {

/// What a core says of itself.
struct CoreIdentity {
    uint32_t cpuid;       ///< as in the register CPUID
    uint32_t scsPart;     ///< part number of the system control space
    uint32_t fpbRevision; ///< of the flash patch and breakpoint unit
};
inline constexpr CoreIdentity kCortexM3{0x412FC231, 0x000, 0};
inline constexpr CoreIdentity kCortexM4{0x410FC241, 0x00C, 2};

/// A chip with a core: memory, system control space and breakpoints stand here, everything else
/// (DEMCR and DWT too) is the chip's. Of the DWT's comparators those halt the core that are set to.
/// There are no interrupts and no floating point.
class CoreDebug : public RegisterBus {
public:
    /// Stands in front of `chip`, which must outlive this object. `chipReset` is called whenever
    /// the core is reset.
    CoreDebug(RegisterBus& chip, const CoreIdentity& identity,
              std::function<void()> chipReset = {});

    using RegisterBus::Read;
    std::vector<uint32_t> Read(std::span<const uint32_t> addresses) override;
    void Write(uint32_t address, uint32_t value) override;
    Refusal PreparePort(uint32_t width) override { return m_Chip.PreparePort(width); }
    void Step() override { m_Chip.Step(); }

    /// Lets a running core carry out up to `instructions`.
    void Run(uint32_t instructions);

    /// The reset line: holds the core while `held`, and lets it start.
    void HoldReset(bool held);

    /// Returns whether something was written to the chip since the last call.
    bool TakeChipWritten() { return std::exchange(m_ChipWritten, false); }

private:
    uint32_t ReadWord(uint32_t address);
    uint32_t ReadSystemControl(uint32_t address);
    void WriteSystemControl(uint32_t address, uint32_t value);
    uint32_t ReadBreakpoints(uint32_t offset) const;
    void WriteBreakpoints(uint32_t offset, uint32_t value);
    uint32_t ReadStatus();
    void WriteControl(uint32_t value);
    void SelectRegister(uint32_t value);
    bool IsHalted() const { return (m_Control & kHalted) == kHalted; }
    void Halt(uint32_t reason);
    void StepOnce();
    bool HasBreakpoint(uint32_t address) const;
    bool HitsWatchpoint(uint32_t first, uint32_t end, uint32_t kind);
    void NoteWatchpoint(uint32_t offset, uint32_t value);
    void Reset();
    void StartFromReset();

    static constexpr uint32_t kDebugEnabled = 1, kHaltBit = 2, kHalted = kDebugEnabled | kHaltBit;
    static constexpr uint32_t kCodeComparators = 6, kComparators = 8;

    RegisterBus& m_Chip;
    const CoreIdentity m_Identity;
    const std::function<void()> m_ChipReset;
    ServedMemory m_Memory;
    SmallCore m_Core;
    uint32_t m_Control = 0;      ///< the control half of DHCSR
    uint32_t m_RegisterData = 0; ///< DCRDR
    uint32_t m_HaltReasons = 0;  ///< DFSR
    uint32_t m_Vectors = 0;      ///< VTOR
    bool m_WasReset = true;      ///< since DHCSR was read
    bool m_Retired = false;      ///< an instruction, since DHCSR was read
    bool m_LockedUp = false;
    bool m_Held = false; ///< in reset
    bool m_BreakpointsOn = false;
    std::array<uint32_t, kComparators> m_Comparators{};
    /// What was written to a comparator of the chip's DWT, since reading there has effects.
    struct Watchpoint {
        uint32_t address = 0, mask = 0, function = 0;
        bool matched = false; ///< since `function` was read
    };
    std::array<Watchpoint, 4> m_Watchpoints;
    bool m_ChipWritten = false;
};

} // namespace etmhost
