// The way to the registers of a chip, whether it is simulated or on a desk.

#pragma once

#include <cstdint>
#include <span>
#include <stdexcept>
#include <string>
#include <vector>

#include "host/support/refusal.h"

namespace etmhost {

/// An access that failed, and why, in words.
class BusError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// The connection to the chip is gone, and stays so: every later access fails in the same way, at
/// once.
class BusLost : public BusError {
public:
    using BusError::BusError;
};

/// Words of 32 bits at byte addresses that are multiples of 4. That an access went well says that
/// nobody objected, not that there is a register: some debug servers accept writes of nothing, and
/// read nothing as 0.
class RegisterBus {
public:
    virtual ~RegisterBus() = default;

    /// Returns the words at `addresses`, in that order, read in one go where the other side knows
    /// how to. Throws BusError if one of them can't be read, BusLost if nobody answers.
    virtual std::vector<uint32_t> Read(std::span<const uint32_t> addresses) = 0;

    /// Writes `value` at `address`. Throws as Read does.
    virtual void Write(uint32_t address, uint32_t value) = 0;

    /// Returns the word at `address`. Throws as Read does.
    uint32_t Read(uint32_t address) { return Read(std::span(&address, 1)).front(); }

    /// Writes a word outside of the trace components, as board files do.
    virtual void WriteMemory(uint32_t address, uint32_t value) { Write(address, value); }

    /// Has the other side prepare the pins of a trace port of `width` bits, by means of its own.
    /// Refused, in words, where it has none. Throws as Read does.
    virtual Refusal PreparePort(uint32_t width);

    /// Returns what the other side says that the core is, such as "cortex_m"; empty if it says
    /// nothing.
    virtual std::string CoreType() { return {}; }

    /// Lets the simulated time of a chip without a clock of its own go on by one step.
    virtual void Step() {}
};

} // namespace etmhost
