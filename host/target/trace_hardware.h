// The trace hardware of a target, and how it is found.

#pragma once

#include <algorithm>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "host/target/RegisterBus.h"
#include "host/target/chips.h"
#include "host/target/etm_resources.h"

namespace etmhost {

/// Says something to the person, on a line of its own.
using Tell = std::function<void(const std::string& text)>;

struct TraceHardware {
    std::string name;        ///< of the chip, or of the connection
    std::string description; ///< one line for people
    std::string info;        ///< for the Status page
    EtmIds ids;
    EtmResources etm{};
    uint32_t etmBase = 0;
    std::optional<uint32_t> tpiuBase, etbBase, dwtBase;
    bool bufferIsController = false; ///< the on-chip buffer is a trace memory controller
    uint32_t dwtComparators = 0;
    bool hasTracePower = false; ///< DEMCR powers trace
    uint32_t portSizes = 0;     ///< mask: bit k for a port of k + 1 bits
    SinkKind sink = SinkKind::Port;
    uint32_t capacity = 0; ///< of the sink, in words of 32 bits; 0: not known

    uint32_t Etm(uint32_t number) const { return etmBase + 4 * number; }
    /// How many comparators the ETM listens to: it may have more inputs than its DWT drives.
    uint32_t IndexLimit() const {
        return dwtBase ? std::min(dwtComparators, etm.watchInputs) : etm.watchInputs;
    }
};

/// Where components are that no ROM table lists, or a table other than that of a Cortex-M.
struct KnownBases {
    std::optional<uint32_t> romTable, etm, tpiu, etb, dwt;
};

/// Looks for trace hardware: goes through the ROM table (from 0xE00FF000, where a Cortex-M has it),
/// and knows components by their identification registers alone. Switches trace power on (DEMCR)
/// where it is off, and tells so; writes nothing else. Throws BusError, with what was found, if
/// this program cannot work with it.
TraceHardware Discover(RegisterBus& bus, const KnownBases& bases, const Tell& tell);

/// Returns the hardware of a simulated chip whose registers stand behind `bus`.
TraceHardware HardwareOf(const Chip& chip, RegisterBus& bus);

} // namespace etmhost
