#include "host/target/chips.h"

#include "host/support/words.h"

namespace etmhost {

namespace {

const Chip kChips[] = {
    {"arm926", "ARM926, medium-plus ETM9 v1.3, trace port of 4, 8 or 16 bits",
     "Simulated emulator, trace buffer of 2 MB", 0x30194824, 0x0000002A, 0, 0x00008088, 524288,
     TracePath::Emulator, false},
    {"arm7", "ARM7, small ETM v1.2, trace port of 4 or 8 bits",
     "Simulated emulator, trace buffer of 256 KB", 0x20042401, 0x00000031, 0, 0x00000088, 65536,
     TracePath::Emulator, false},
    {"arm9-etb", "ARM9, medium-plus ETM9 v1.3, on-chip trace buffer", "ETB, 4 KB on chip",
     0x30194824, 0x0000002A, 0, 0x00008088, 1024, TracePath::Etb, false},
    {"cortex-a8", "Cortex-A8, ETM v3.3, trace port of 1 to 32 bits",
     "Simulated emulator, trace buffer of 4 MB", 0x8D294024, 0x00000C04, 0x4104F230, 0x8000808B,
     1048576, TracePath::Emulator, false},
    {"cortex-m3", "Cortex-M3, ETM v3.5 through a TPIU, trace port of 1, 2 or 4 bits",
     "Simulated emulator, TPIU, trace buffer of 256 KB", 0x8C802000, 0x00020D09, 0x4114F253,
     0x0000000B, 65536, TracePath::Tpiu, true},
};

uint32_t Bits(uint32_t word, int high, int low) {
    return (word >> low) & ((1u << (high - low + 1)) - 1);
}

bool Bit(uint32_t word, int bit) {
    return Bits(word, bit, bit) != 0;
}

} // namespace

std::span<const Chip> Chips() {
    return kChips;
}

const Chip* FindChip(const std::string& name) {
    for (const Chip& chip : kChips)
        if (EqualNoCase(chip.name, name)) return &chip;
    return nullptr;
}

EtmResources DecodeRegisters(const Chip& chip) {
    const uint32_t code = chip.configCode;
    EtmResources etm{};
    etm.protocolVersion = Bits(code, 30, 28);
    if (Bit(code, 31)) {
        etm.archMajor = Bits(chip.id, 11, 8) + 1;
        etm.archMinor = Bits(chip.id, 7, 4);
    } else {
        // Minor version of ETM v1 by protocol version; protocol 6 was never given out.
        constexpr uint32_t kMinor[] = {0, 1, 2, 3, 2, 3, 3, 3};
        etm.archMajor = 1;
        etm.archMinor = kMinor[etm.protocolVersion];
    }
    etm.addressPairs = Bits(code, 3, 0);
    etm.dataComparators = Bits(code, 7, 4);
    etm.memoryMapDecoders = Bits(code, 12, 8);
    etm.counters = Bits(code, 15, 13);
    etm.sequencer = Bit(code, 16);
    etm.externalInputs = Bits(code, 19, 17);
    etm.externalOutputs = Bits(code, 22, 20);
    etm.fifoFull = Bit(code, 23);
    if (etm.archMajor < 3) { // from v3 on these bits mean something else
        etm.halfRate = Bit(chip.systemConfig, 3);
        etm.fullRate = Bit(chip.systemConfig, 4);
        etm.normalFormat = Bit(chip.systemConfig, 5);
        etm.multiplexedFormat = Bit(chip.systemConfig, 6);
        etm.demultiplexedFormat = Bit(chip.systemConfig, 7);
    }
    return etm;
}

std::vector<uint32_t> PortSizes(const Chip& chip) {
    std::vector<uint32_t> sizes;
    for (uint32_t bit = 0; bit < 32; ++bit)
        if ((chip.portSizeMask >> bit & 1) != 0) sizes.push_back(bit + 1);
    return sizes;
}

} // namespace etmhost
