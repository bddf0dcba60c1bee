#include "host/report.h"

#include <gtest/gtest.h>

#include <sstream>

namespace etmhost {
namespace {

// The values of a report in the order of its lines, joined by blanks.
std::string Values(const std::string& report) {
    std::istringstream in(report);
    std::string values;
    for (std::string line; std::getline(in, line);) {
        const size_t colon = line.find(": ");
        values += (values.empty() ? "" : " ") +
                  (colon == std::string::npos ? "?" : line.substr(colon + 2));
    }
    return values;
}

TEST(Report, HasTheLabelsThatReadersLookFor) {
    EXPECT_EQ(CapabilityReport(*FindChip("arm926")), "ETM protocol version: 3\n"
                                                     "ETM architecture version: 1.3\n"
                                                     "Number of address comparator pairs: 4\n"
                                                     "Number of data comparators: 2\n"
                                                     "Number of memory map decoders: 8\n"
                                                     "Number of counters: 2\n"
                                                     "Sequencer present: yes\n"
                                                     "Number of external inputs: 4\n"
                                                     "Number of external outputs: 1\n"
                                                     "FIFOFULL logic present: no\n"
                                                     "Half-rate clocking supported: yes\n"
                                                     "Full-rate clocking supported: no\n"
                                                     "Normal format supported: yes\n"
                                                     "Multiplexed  format  supported: no\n"
                                                     "Demultiplexed format supported: no\n");
}

TEST(Report, SaysWhatEachChipOffers) {
    const struct {
        const char* chip;
        const char* values;
        std::vector<uint32_t> portSizes;
    } rows[] = {
        {"arm926", "3 1.3 4 2 8 2 yes 4 1 no yes no yes no no", {4, 8, 16}},
        {"arm7", "2 1.2 1 0 4 1 no 2 0 no no yes yes no no", {4, 8}},
        {"ARM9-ETB", "3 1.3 4 2 8 2 yes 4 1 no yes no yes no no", {4, 8, 16}},
        {"cortex-a8", "0 3.3 4 2 0 2 yes 4 2 no no no no no no", {1, 2, 4, 8, 16, 32}},
        {"cortex-m3", "0 3.5 0 0 0 1 no 0 0 yes no no no no no", {1, 2, 4}},
    };
    EXPECT_EQ(Chips().size(), std::size(rows));
    for (const auto& row : rows) {
        SCOPED_TRACE(row.chip);
        const Chip* chip = FindChip(row.chip);
        ASSERT_NE(chip, nullptr);
        EXPECT_EQ(Values(CapabilityReport(*chip)), row.values);
        EXPECT_EQ(PortSizes(*chip), row.portSizes);
    }
    EXPECT_EQ(FindChip("arm"), nullptr);
}

TEST(Report, PutsTheControlWordIntoWords) {
    EXPECT_EQ(DescribeControlWord(0), "trace is disabled\n");
    EXPECT_EQ(DescribeControlWord(0x33F), "trace is enabled\n"
                                          "capture stops when the trace buffer is full\n"
                                          "trace accumulates between processor runs\n"
                                          "manual start and stop\n"
                                          "spare bit 4\n"
                                          "spare bit 5\n"
                                          "capture stops after a trigger from the external pin\n"
                                          "capture stops after a trigger from an address\n");
}

} // namespace
} // namespace etmhost
