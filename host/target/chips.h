// The chips that this host can pretend to be.

#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <vector>

namespace etmhost {

/// Where the trace of a chip goes.
enum class TracePath {
    Emulator, ///< through a trace port into the emulator's buffer
    Etb,      ///< into an on-chip buffer
    Tpiu,     ///< through a TPIU into the emulator's buffer
};

/// One simulated chip, as its registers and its trace path describe it.
struct Chip {
    const char* name;        ///< what --chip takes
    const char* description; ///< one line for people
    const char* info;        ///< what the emulator or ETB says of itself
    uint32_t configCode;     ///< ETM configuration code register, 0x004
    uint32_t systemConfig;   ///< ETM system configuration register, 0x014
    uint32_t id;             ///< ETM ID register, 0x1E4; present iff bit 31 of configCode
    uint32_t portSizeMask;   ///< bit k: a port of k + 1 bits is on offer
    uint32_t bufferSize;     ///< capacity of the trace buffer in 32-bit words
    TracePath path;
    bool cortexM3; ///< DWT comparators take the place of ETM addresses
};

/// What the registers of a chip say about its ETM.
struct EtmResources {
    uint32_t protocolVersion;
    uint32_t archMajor, archMinor;
    uint32_t addressPairs;
    uint32_t dataComparators;
    uint32_t memoryMapDecoders;
    uint32_t counters;
    uint32_t externalInputs, externalOutputs;
    bool sequencer;
    bool fifoFull;
    bool halfRate, fullRate;
    bool normalFormat, multiplexedFormat, demultiplexedFormat;
};

/// Returns all chips, the default one first.
std::span<const Chip> Chips();

/// Returns the chip `name`, letters in any case, or null.
const Chip* FindChip(const std::string& name);

EtmResources DecodeRegisters(const Chip& chip);

/// Returns the port widths on offer, in bits, ascending.
std::vector<uint32_t> PortSizes(const Chip& chip);

} // namespace etmhost
