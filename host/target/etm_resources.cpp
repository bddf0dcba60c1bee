#include "host/target/etm_resources.h"

#include <algorithm>

namespace etmhost {

namespace {

uint32_t Bits(uint32_t word, int high, int low) {
    return (word >> low) & ((1u << (high - low + 1)) - 1);
}

bool Bit(uint32_t word, int bit) {
    return Bits(word, bit, bit) != 0;
}

} // namespace

EtmResources DecodeResources(const EtmIds& ids) {
    const uint32_t code = ids.configCode;
    EtmResources etm{};
    etm.protocolVersion = Bits(code, 30, 28);
    if (Bit(code, 31)) {
        etm.archMajor = Bits(ids.id, 11, 8) + 1;
        etm.archMinor = Bits(ids.id, 7, 4);
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
    if (etm.IsAtLeast(3, 1)) etm.watchInputs = std::min(Bits(ids.configExtension, 19, 16), 8u);
    // Before version 3 each ETM from 1.2 on has it, and the bit is not always set.
    etm.startStop = etm.archMajor < 3 ? etm.IsAtLeast(1, 2) : Bit(code, 26);
    if (etm.archMajor < 3) { // from version 3 on these bits mean something else
        etm.halfRate = Bit(ids.systemConfig, 3);
        etm.fullRate = Bit(ids.systemConfig, 4);
        etm.normalFormat = Bit(ids.systemConfig, 5);
        etm.multiplexedFormat = Bit(ids.systemConfig, 6);
        etm.demultiplexedFormat = Bit(ids.systemConfig, 7);
    }
    return etm;
}

} // namespace etmhost
