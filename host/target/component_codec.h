// Settings as values of the registers beside the ETM - DWT, trace port, on-chip buffer - and back.
// Nothing here reads or writes a register.

#pragma once

#include <optional>
#include <vector>

#include "host/target/chips.h"

namespace etmhost {

/// One register of a component to write, by offset: the bits of `mask` become those of `value`, the
/// others stay.
struct RegisterWrite {
    uint32_t offset;
    uint32_t value;
    uint32_t mask = UINT32_MAX;

    /// Returns the word to write where `present` stands.
    uint32_t Over(uint32_t present) const { return (present & ~mask) | (value & mask); }
    bool operator==(const RegisterWrite&) const = default;
};

// --- A comparator of the DWT ---------------------------------------------------------------

/// What a comparator does, from its address and function registers.
struct DwtState {
    uint32_t address;
    uint32_t function; ///< 0: nothing; DWT_FUNCTION_ETM_PC: tells the ETM

    bool TellsTheEtm() const;
    /// Somebody else has a use for it.
    bool IsTaken() const { return function != 0 && !TellsTheEtm(); }
};
DwtState DecodeDwt(uint32_t address, uint32_t function);

/// Returns the writes, in order, by which comparator `index` tells the ETM when the core is at
/// `address`; null: by which it does nothing.
std::vector<RegisterWrite> EncodeDwt(uint32_t index, std::optional<uint32_t> address);

// --- The size of the TPIU's port -----------------------------------------------------------

/// In bits; 0: a word that stands for no size.
uint32_t DecodePortSize(uint32_t word);
RegisterWrite EncodePortSize(uint32_t bits);

// --- The on-chip buffer ---------------------------------------------------------------------

/// Words to store behind the trigger: the register holds one less, and cannot hold none.
uint32_t DecodeTriggerCount(uint32_t word);
RegisterWrite EncodeTriggerCount(uint32_t count);

/// Returns the writes, in order, that begin a capture.
std::vector<RegisterWrite> EncodeCapture(bool stopsOnTrigger);
RegisterWrite EncodeNoCapture();

/// What the buffer tells, from its control, formatter status, status and write pointer registers.
struct BufferState {
    bool enabled; ///< its control register asks for a capture
    bool running; ///< and nothing has stopped it
    bool triggered;
    uint32_t captured; ///< words
};
/// `depth` is in words; a trace memory controller (`isController`) counts in bytes.
BufferState DecodeBuffer(uint32_t control, uint32_t formatterStatus, uint32_t status,
                         uint32_t writePointer, uint32_t depth, bool isController);

} // namespace etmhost
