// A chip that is read, and never written: what was written lies over it, and is read back.

#pragma once

#include <map>
#include <memory>
#include <optional>
#include <set>

#include "host/target/trace_hardware.h"

namespace etmhost {

/// Registers that follow others do so as far as this program waits for them: locks open, the ETM
/// enters and leaves programming mode, an on-chip buffer starts and stops. No time goes by behind a
/// start, and no pins are prepared.
class OverlayBus final : public RegisterBus {
public:
    explicit OverlayBus(std::unique_ptr<RegisterBus> chip) : m_Chip(std::move(chip)) {}

    /// Tells where what was found is. Until then every register is one that holds what it gets.
    void Know(const TraceHardware& hardware) { m_Hardware = hardware; }

    /// Returns true iff something was written that the chip would have got.
    bool HasWrites() const { return !m_Written.empty(); }

    using RegisterBus::Read;
    std::vector<uint32_t> Read(std::span<const uint32_t> addresses) override;
    void Write(uint32_t address, uint32_t value) override;
    Refusal PreparePort(uint32_t) override { return {}; }
    std::string CoreType() override { return m_Chip->CoreType(); }

private:
    std::optional<uint32_t> Written(uint32_t address) const;
    uint32_t Following(uint32_t address, uint32_t word) const;

    std::unique_ptr<RegisterBus> m_Chip;
    std::optional<TraceHardware> m_Hardware;
    std::map<uint32_t, uint32_t> m_Written;
    std::set<uint32_t> m_Open; // bases of components that were unlocked
};

} // namespace etmhost
