// What the registers of an ETM say that it has.

#pragma once

#include <cstdint>

namespace etmhost {

/// The registers that say it.
struct EtmIds {
    uint32_t configCode = 0;      ///< ETMCCR
    uint32_t systemConfig = 0;    ///< ETMSCR
    uint32_t id = 0;              ///< ETMIDR; there is one iff bit 31 of `configCode`
    uint32_t configExtension = 0; ///< ETMCCER; there is one from version 3.1 on
};

struct EtmResources {
    uint32_t protocolVersion;
    uint32_t archMajor, archMinor;
    uint32_t addressPairs;
    uint32_t dataComparators;
    uint32_t memoryMapDecoders;
    uint32_t counters;
    uint32_t externalInputs, externalOutputs;
    uint32_t watchInputs; ///< EmbeddedICE inputs, which on a Cortex-M come from the DWT
    bool sequencer;
    bool fifoFull;
    bool startStop; ///< tracing can be started and stopped at addresses
    bool halfRate, fullRate;
    bool normalFormat, multiplexedFormat, demultiplexedFormat;

    /// Returns true iff the version is at least `major`.`minor`.
    bool IsAtLeast(uint32_t major, uint32_t minor) const {
        return archMajor > major || (archMajor == major && archMinor >= minor);
    }
    /// Returns true iff DWT comparators take the place of addresses.
    bool TakesIndexes() const { return addressPairs == 0 && watchInputs > 0; }
    bool HasData() const { return addressPairs > 0 || dataComparators > 0; }
};

EtmResources DecodeResources(const EtmIds& ids);

} // namespace etmhost
