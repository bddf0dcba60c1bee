// Chips that do not obey: what is refused, and what is left behind.

#include <gmock/gmock.h>

#include "tests/host/StrictChip.h"

namespace etmhost {
namespace {

using ::testing::HasSubstr;
using ::testing::IsEmpty;

// Whatever goes wrong is told with register and values, and what was there is restored.
TEST(Target, RefusesAChipThatDoesNotObey) {
    constexpr uint32_t kEtm = 0xE0041000;
    const struct {
        const char *what, *command, *text;
        uint32_t address, mask, value;
    } rows[] = {
        {"drops a bit", "etm pc=start 0", "ETMTECR1 (0xE0041024): 0x2000000 was written, 0x0 read",
         kEtm + 4 * ETMTECR1, 1u << 25, 0},
        {"a bit that sticks", "etm pc=none", "ETMTEEVR (0xE0041020): 0x406F was written, 0x6F read",
         kEtm + 4 * ETMTEEVR, 0x4000, 0},
        {"never programs", "etm pc=none", "never entered programming mode: ETMSR (0xE0041010)",
         kEtm + 4 * ETMSR, 2, 0},
        {"programs for ever", "enable", "never left programming mode", kEtm + 4 * ETMSR, 2, 2},
        {"stays locked", "enable", "stays locked: 0xC5ACCE55 was written", kEtm + CS_LSR, 3, 3},
        {"stays powered down", "enable", "ETMCR (0xE0041000)", kEtm, 1, 1},
        {"no trace power", "enable", "DEMCR (0xE000EDFC)", DEMCR, DEMCR_TRCENA, 0},
        {"a port that stays", "etm portsize=4", "port size (0xE0040004): 0x8 was written, 0x1 read",
         0xE0040004, 0xF, 1},
        {"a comparator that stays", "dwt 2 main",
         "function (0xE0001048): 0x8 was written, 0x0 read", 0xE0001048, 0xF, 0},
        {"an instruction's address", "dwt 2 main+1", "0x8001 is odd", 1, 0, 0},
        {"a comparator of the debugger", "dwt 2 main", "in use: its function reads 0x5", 0xE0001048,
         0xF, 5},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.what);
        Bench bench("cortex-m4");
        ASSERT_EQ(bench.Run("disable"), "ok"); // the lock is open, the power on
        for (const uint32_t start : {0x411u, 0x10u}) {
            bench.chip->registers[kEtm] = start;
            const std::vector<uint32_t> before = bench.chip->Held();
            bench.chip->faultAddress = row.address;
            bench.chip->faultMask = row.mask;
            bench.chip->faultValue = row.value;
            EXPECT_THAT(bench.Run(row.command), HasSubstr(row.text));
            // What ETMCR held nobody could know where it is that which lies.
            EXPECT_TRUE(row.address == kEtm || bench.chip->Held() == before) << Hex(start);
            EXPECT_THAT(bench.chip->wrong, IsEmpty());
        }
    }
}

TEST(Target, ACaptureThatCannotBeginLeavesTheBufferAsItWas) {
    constexpr uint32_t kBuffer = 0xE0042000;
    const struct {
        const char *command, *text;
        uint32_t offset, mask = 0, value = 0;
    } rows[] = {
        {"start", "control register (0xE0042020): 0x1 was written, 0x0 read", ETB_CONTROL, 1, 0},
        {"start", "formatter control (0xE0042304): 0x2001 was", ETB_FORMATTER, 1u << 13, 0},
        {"start", "Refused", ETB_WRITE_POINTER},
        {"start", "Refused", ETB_TRIGGER},
        {"set triggercount=2", "Refused", ETB_TRIGGER},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.text);
        Bench bench("cortex-m4-etb");
        for (const char* command : {"set triggercount=8", "set control=0x201"})
            ASSERT_EQ(bench.Run(command), "ok");
        bench.chip->Write(kBuffer + ETB_WRITE_POINTER, 0x20);
        const auto held = [&] {
            std::vector<uint32_t> words = bench.chip->Held();
            for (const uint32_t offset :
                 {ETB_CONTROL, ETB_FORMATTER, ETB_TRIGGER, ETB_WRITE_POINTER, ETB_READ_POINTER})
                words.push_back(bench.chip->Word(kBuffer + offset));
            return words;
        };
        const std::vector<uint32_t> before = held();
        (row.mask != 0 ? bench.chip->faultAddress : bench.chip->refusedAddress) =
            kBuffer + row.offset;
        bench.chip->faultMask = row.mask;
        bench.chip->faultValue = row.value;
        EXPECT_THAT(bench.Run(row.command), HasSubstr(row.text));
        bench.chip->faultAddress = 1;
        EXPECT_EQ(held(), before);
        EXPECT_FALSE(bench.target.state.capture.running);
    }
}

// An ETM has inputs for more comparators than a small DWT has.
TEST(Target, TakesNoComparatorThatIsNotThere) {
    for (const uint32_t count : {0u, 1u}) {
        auto chip = std::make_unique<StrictChip>(*FindChip("cortex-m4"));
        TraceHardware hardware = chip->hardware;
        hardware.dwtComparators = count;
        Target target(std::move(chip), hardware, kMainAlone, [](const std::string&) {});
        for (const char* command : {"etm pc=start 1", "etm trigger 1", "dwt 1 main"}) {
            EXPECT_THAT(
                CommandLanguage(target, kMainAlone).Execute(command, nullptr).value_or("ok"),
                HasSubstr(count == 0 ? "no DWT comparators" : "comparator 0 to 0"));
        }
    }
}

TEST(Target, FindsItsWayBackWhateverIsRefused) {
    for (const uint32_t number : {ETMTESSEICR, ETMTECR1, ETMTEEVR}) {
        for (const uint32_t start : {0x411u, 0x10u, 0x810u}) {
            Bench bench("cortex-m4");
            ASSERT_EQ(bench.Run("disable"), "ok");
            bench.chip->registers[bench.chip->hardware.Etm(ETMCR)] = start;
            const std::vector<uint32_t> before = bench.chip->Held();
            bench.chip->refusedAddress = bench.chip->hardware.Etm(number);
            const bool event = number == ETMTEEVR;
            EXPECT_EQ(bench.Run(event ? "etm pc=none" : "etm pc=start 0"), "Refused");
            EXPECT_EQ(bench.chip->Held(), before);
            EXPECT_THAT(bench.chip->wrong, IsEmpty());
        }
    }
}

TEST(Target, PreparesThePinsForTheSizeThatComesBehind) {
    Bench bench("cortex-m4");
    for (const char* command : {"etm portsize=2", "macro /startup", "etm portsize=2",
                                "etm portsize=4", "macro /none", "etm portsize=1"})
        EXPECT_EQ(bench.Run(command), "ok") << command;
    EXPECT_EQ(bench.chip->prepared, (std::vector<uint32_t>{2, 4}));
}

} // namespace
} // namespace etmhost
