// A chip offered to debug servers, over TCP.

#pragma once

#include <atomic>
#include <functional>

#include "host/remote/Connection.h"
#include "host/serve/CoreDebug.h"

namespace etmhost {

/// A chip, and what its owner wants to know of its service. The functions may be missing.
struct ServedChip {
    RegisterBus& registers;             ///< everything but the core's own
    CoreIdentity core;                  ///< the core beside them
    uint32_t romTable = 0xE00FF000;     ///< where they begin
    std::function<void()> reset = {};   ///< the core has been reset
    std::function<void()> changed = {}; ///< registers may have been written
};

/// Serves OpenOCD's remote_bitbang protocol to one caller of `listener` after the other: a debug
/// port by JTAG with a memory access port. The chip outlives the callers. Its time is that of the
/// wall: the core carries out about a hundred thousand instructions per second, and the registers
/// step ten times per second. Returns soon after `stop` became true; behind the first caller if
/// `once`.
void Serve(const ServedChip& chip, Listener& listener, bool once, const std::atomic<bool>& stop);

} // namespace etmhost
