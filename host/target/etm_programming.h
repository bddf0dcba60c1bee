// Writing ETM registers in the order that an ETM asks for.

#pragma once

#include <functional>
#include <utility>
#include <vector>

#include "host/target/etm_codec.h"
#include "host/target/trace_hardware.h"

namespace etmhost {

/// Opens the lock of the CoreSight component at `base`, if it has one that is closed. `name` is for
/// the error text. Throws BusError if it stays closed.
void Unlock(RegisterBus& bus, uint32_t base, const char* name);

/// Reads the registers `numbers` of the ETM in one go.
EtmImage ReadEtm(RegisterBus& bus, const TraceHardware& hardware,
                 const std::vector<uint32_t>& numbers);

/// Brings `writes` about. Powers the ETM up and sets its programming bit, and no other bit with it;
/// waits until it is in programming mode; writes; reads back what was written; and leaves
/// programming mode. An ETM that was powered down is so again afterwards, unless a write says
/// otherwise. A register that already holds what it shall is not written.
///
/// Throws BusError, with register, written and read value, if the ETM doesn't take something. What
/// it held before is then restored.
void ProgramEtm(RegisterBus& bus, const TraceHardware& hardware,
                const std::vector<EtmWrite>& writes);

/// Writes `value` at `address` and reads it back. Throws BusError, with both values, if the bits of
/// `mask` differ. `name` is that of the register.
void WriteChecked(RegisterBus& bus, const char* name, uint32_t address, uint32_t value,
                  uint32_t mask = UINT32_MAX);

/// Calls `work`. If it throws, and the chip is still there, writes `before`, addresses and values,
/// ahead of throwing on.
void OrRestore(RegisterBus& bus, const std::vector<std::pair<uint32_t, uint32_t>>& before,
               const std::function<void()>& work);

/// Reads the word at `address` until its bits `mask` are `value`, for half a second at most.
/// Returns the word that was read last.
uint32_t Await(RegisterBus& bus, uint32_t address, uint32_t mask, uint32_t value);

} // namespace etmhost
