#include <gtest/gtest.h>

#include "host/target/target.h"

namespace etmhost {
namespace {

// State words of successive looks: 4 while it captures, 2 turned over by each stop of its own.
std::string Look(Target& target, int steps) {
    std::string words;
    for (int step = 0; step < steps; ++step) {
        target.Poll();
        words += std::to_string(target.StateWord());
    }
    return words;
}

// A buffer fills in 8 steps, an address trigger comes at the fourth.
TEST(Capture, StopsAsItsModeSays) {
    const struct {
        const char *what, *chip;
        uint32_t control;
        const char* trigger;
        uint32_t eighths; // of the buffer, to go behind the trigger
        const char* words;
    } rows[] = {
        {"buffer full", "arm926", 0x3, "", 2, "444444422222"},
        {"address, nothing behind", "arm926", 0x201, "main", 0, "444222222222"},
        {"address, a whole buffer", "arm926", 0x201, "main", 8, "444444444442"},
        {"address, but no trigger set", "arm926", 0x201, "", 2, "444444444444"},
        {"ETB, which goes round", "arm9-etb", 0x1, "", 2, "444444444444"},
        {"ETB, behind an address", "arm9-etb", 0x201, "main", 2, "444442222222"},
        {"TPIU, which has no trigger", "cortex-m3", 0x201, "1", 2, "444444444444"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.what);
        Target target(*FindChip(row.chip));
        ASSERT_EQ(target.SetControl(row.control), Refusal());
        ASSERT_EQ(target.SetTriggerCount(target.hardware().capacity / 8 * row.eighths), Refusal());
        const std::string trigger = row.trigger;
        EXPECT_EQ(trigger.empty() ? Refusal() : target.SetTrigger({trigger, 1}), Refusal());
        EXPECT_EQ(target.Start(), Refusal());
        EXPECT_EQ(Look(target, 12), row.words);
        EXPECT_LE(target.state.capture.captured, target.hardware().capacity);
    }
}

TEST(Capture, ObeysCommands) {
    Target target(*FindChip("arm7"));
    const uint32_t eighth = target.hardware().capacity / 8;
    target.SetTriggerCount(2 * eighth);
    const auto start = [&](uint32_t control, int steps) {
        EXPECT_EQ(target.SetControl(control), Refusal());
        target.Start();
        return Look(target, steps);
    };
    EXPECT_EQ(start(0x101, 3), "444");
    EXPECT_EQ(target.ForceTrigger(), Refusal());
    EXPECT_EQ(Look(target, 3), "422");
    start(0x1, 0);
    target.ForceTrigger();
    EXPECT_EQ(Look(target, 3), "666") << "not the mode for it";
    target.Stop();
    EXPECT_EQ(Look(target, 2), "22") << "not by itself";
    start(0x5, 2);
    EXPECT_EQ(target.state.capture.captured, 5 * eighth) << "accumulated";
    EXPECT_EQ(target.SetControl(0x8), Refusal()) << "trace off";
    EXPECT_EQ(Look(target, 2), "22");
    start(0x1, 1);
    EXPECT_EQ(target.state.capture.captured, eighth);

    EXPECT_NE(target.SetControl(0x80000001), Refusal());
    for (const char* name : {"arm9-etb", "cortex-m4"}) // stop when full, an external pin
        for (const uint32_t control : {0x3u, 0x101u})
            EXPECT_NE(Target(*FindChip(name)).SetControl(control), Refusal());
    EXPECT_EQ(target.state.control, 0x1u);
    for (const char* name : {"arm7", "arm9-etb"}) {
        Target fresh(*FindChip(name));
        const uint32_t size = fresh.hardware().capacity;
        fresh.SetControl(0x1);
        fresh.Start();
        EXPECT_NE(fresh.SetTriggerCount(size + 1), Refusal());
        EXPECT_EQ(fresh.state.triggerCount, size / 2);
        EXPECT_EQ(fresh.SetTriggerCount(size) == Refusal(), name == std::string("arm7"))
            << "an on-chip buffer ignores a new count while it captures";
    }
}

} // namespace
} // namespace etmhost
