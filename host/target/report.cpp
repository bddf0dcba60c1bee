#include "host/target/report.h"

namespace etmhost {

std::string CapabilityReport(const EtmResources& etm) {
    std::string report;
    const auto text = [&report](const char* label, const std::string& value) {
        report += std::string(label) + ": " + value + "\n";
    };
    const auto number = [&text](const char* label, uint32_t value) {
        text(label, std::to_string(value));
    };
    const auto flag = [&text](const char* label, bool value) { text(label, value ? "yes" : "no"); };

    number("ETM protocol version", etm.protocolVersion);
    text("ETM architecture version",
         std::to_string(etm.archMajor) + "." + std::to_string(etm.archMinor));
    number("Number of address comparator pairs", etm.addressPairs);
    number("Number of data comparators", etm.dataComparators);
    number("Number of memory map decoders", etm.memoryMapDecoders);
    number("Number of counters", etm.counters);
    flag("Sequencer present", etm.sequencer);
    number("Number of external inputs", etm.externalInputs);
    number("Number of external outputs", etm.externalOutputs);
    flag("FIFOFULL logic present", etm.fifoFull);
    flag("Half-rate clocking supported", etm.halfRate);
    flag("Full-rate clocking supported", etm.fullRate);
    flag("Normal format supported", etm.normalFormat);
    flag("Multiplexed  format  supported", etm.multiplexedFormat); // two blanks, as it is known
    flag("Demultiplexed format supported", etm.demultiplexedFormat);
    return report;
}

std::string DescribeControlWord(uint32_t word) {
    struct Meaning {
        int bit;
        const char* text;
    };
    constexpr Meaning kMeanings[] = {
        {1, "capture stops when the trace buffer is full"},
        {2, "trace accumulates between processor runs"},
        {3, "manual start and stop"},
        {4, "spare bit 4"},
        {5, "spare bit 5"},
        {8, "capture stops after a trigger from the external pin"},
        {9, "capture stops after a trigger from an address"},
    };
    std::string text = (word & 1) != 0 ? "trace is enabled\n" : "trace is disabled\n";
    for (const Meaning& meaning : kMeanings)
        if ((word >> meaning.bit & 1) != 0) text += std::string(meaning.text) + "\n";
    return text;
}

} // namespace etmhost
