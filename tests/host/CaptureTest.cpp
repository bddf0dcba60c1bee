#include <gtest/gtest.h>

#include "host/target.h"

namespace etmhost {
namespace {

// State words of successive looks at the target.
std::string Look(Target& target, int steps) {
    std::string words;
    for (int step = 0; step < steps; ++step) {
        target.Step();
        words += std::to_string(target.StateWord());
    }
    return words;
}

// 4: captures; 2: has stopped by itself. A buffer fills in 8 steps, an address trigger comes at the
// fourth.
TEST(Capture, StopsAsItsModeSays) {
    const struct {
        const char* what;
        const char* chip;
        uint32_t control;
        const char* trigger;
        uint32_t eighths; // of the buffer, to go behind the trigger
        const char* words;
    } rows[] = {
        {"no stop mode", "arm926", 0x1, "main", 2, "444444444444"},
        {"buffer full", "arm926", 0x3, "", 2, "444444422222"},
        {"address", "arm926", 0x201, "main", 2, "444442222222"},
        {"address, nothing behind", "arm926", 0x201, "main", 0, "444222222222"},
        {"address, a whole buffer", "arm926", 0x201, "main", 8, "444444444442"},
        {"address, but no trigger set", "arm926", 0x201, "", 2, "444444444444"},
        {"pin, which nobody pulls", "arm926", 0x101, "main", 2, "444444444444"},
        {"ETB, address", "arm9-etb", 0x201, "main", 2, "444442222222"},
        {"ETB, which goes round", "arm9-etb", 0x3, "", 2, "444444444444"},
        {"TPIU, which has no trigger", "cortex-m3", 0x201, "1", 2, "444444444444"},
        {"TPIU, buffer full", "cortex-m3", 0x3, "", 2, "444444422222"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.what);
        Target target(*FindChip(row.chip));
        ASSERT_TRUE(target.SetControl(row.control));
        ASSERT_TRUE(target.SetTriggerCount(target.chip().bufferSize / 8 * row.eighths));
        target.state.trace.trigger = row.trigger;
        EXPECT_EQ(Look(target, 2), "00") << "not started yet";
        EXPECT_EQ(target.Start(), "");
        EXPECT_EQ(Look(target, 12), row.words);
        EXPECT_LE(target.state.capture.captured, target.chip().bufferSize);
    }
}

TEST(Capture, ForcedTriggerStopsOnlyInItsMode) {
    Target target(*FindChip("arm7"));
    target.SetTriggerCount(target.chip().bufferSize / 4);
    target.SetControl(0x101);
    target.Start();
    EXPECT_EQ(Look(target, 3), "444");
    EXPECT_EQ(target.ForceTrigger(), "");
    EXPECT_EQ(Look(target, 3), "422");
    target.SetControl(0x1);
    target.Start();
    EXPECT_EQ(target.ForceTrigger(), "");
    EXPECT_EQ(Look(target, 9), "666666666") << "bit 1 stays as the last capture left it";
}

TEST(Capture, EndsByCommandWithoutTurningTheNewsBitOver) {
    Target target(*FindChip("arm7"));
    target.SetControl(0x1);
    target.Start();
    EXPECT_EQ(Look(target, 2), "44");
    target.Stop();
    EXPECT_EQ(Look(target, 2), "00");
    target.Start();
    EXPECT_TRUE(target.SetControl(0x8)) << "trace off";
    EXPECT_EQ(Look(target, 2), "00");
}

TEST(Capture, AccumulatesIfToldTo) {
    Target target(*FindChip("arm7"));
    const uint32_t eighth = target.chip().bufferSize / 8;
    for (const uint32_t control : {0x1u, 0x5u}) {
        target.SetControl(control);
        target.Start();
        Look(target, 2);
        target.Stop();
    }
    EXPECT_EQ(target.state.capture.captured, 4 * eighth);
    target.SetControl(0x1);
    target.Start();
    Look(target, 1);
    EXPECT_EQ(target.state.capture.captured, eighth);
}

TEST(Capture, ValuesThatATargetDoesNotTake) {
    for (const Chip& chip : Chips()) {
        SCOPED_TRACE(chip.name);
        Target target(chip);
        const uint32_t count = target.state.triggerCount;
        EXPECT_EQ(count, chip.bufferSize / 2);
        EXPECT_FALSE(target.SetTriggerCount(chip.bufferSize + 1));
        EXPECT_FALSE(target.SetControl(0x80000001));
        EXPECT_EQ(target.state.control, 0u);
        target.SetControl(0x1);
        target.Start();
        EXPECT_EQ(target.SetTriggerCount(5), chip.path != TracePath::Etb)
            << "an on-chip buffer ignores a new count while it captures";
        target.Stop();
        EXPECT_TRUE(target.SetTriggerCount(chip.bufferSize));
    }
}

} // namespace
} // namespace etmhost
