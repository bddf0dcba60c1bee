// Settings as register values, and back: all of them, on every chip, and whatever else registers
// may hold.

#include "host/target/etm_codec.h"

#include <gtest/gtest.h>

#include <random>

#include "host/support/words.h"
#include "host/target/component_codec.h"
#include "host/target/etm_registers.h"
#include "host/target/target.h"
#include "tests/support/games.h"

namespace etmhost {
namespace {

class Codec : public ::testing::TestWithParam<const char*> {
protected:
    uint32_t Below(uint32_t limit) {
        return std::uniform_int_distribution<uint32_t>(0, limit - 1)(random);
    }

    // Registers that hold anything; near the patterns of settings more often than not.
    EtmImage AnyImage() {
        EtmImage image;
        for (const uint32_t number : SettingRegisters(etm)) {
            const uint32_t likely[] = {0,       0x6F,    0x406F,  1u << 24, 3u << 24, 1,
                                       1 << 16, 0x20001, 0x19,    4,        0x21,     1u << 25,
                                       0x40,    0x5F,    0x10411, 0xC};
            image[number] = Below(3) != 0 ? likely[Below(std::size(likely))]
                                          : std::uniform_int_distribution<uint32_t>()(random);
        }
        return image;
    }

    EtmSettings AnySettings() {
        EtmSettings settings;
        const auto address = [&] {
            return etm.TakesIndexes() ? Below(etm.watchInputs) : Below(UINT32_MAX);
        };
        settings.pc = static_cast<PcTrace>(Below(4));
        if (settings.pc == PcTrace::StartStop || settings.pc == PcTrace::Range) {
            settings.pcBegin = address();
            if (settings.pc == PcTrace::Range || Below(2) != 0) settings.pcEnd = address();
        }
        settings.data = static_cast<DataTrace>(Below(4));
        if (settings.data != DataTrace::None && Below(2) != 0) {
            settings.dataBegin = address();
            settings.dataEnd = address();
        }
        if (Below(2) != 0) settings.trigger = address();
        const uint32_t widths[] = {1, 2, 4, 8, 16, 24, 32, 48, 64};
        settings.portSize = widths[Below(std::size(widths))];
        settings.halfRate = etm.halfRate && Below(2) != 0;
        return settings;
    }

    EtmResources etm = Target(*FindChip(GetParam())).etm();
    std::mt19937 random{20261123};
};

using Encoder = EtmPlan (*)(const EtmResources&, const EtmImage&, const EtmSettings&);
constexpr Encoder kEncoders[] = {
    EncodePc, EncodeData, EncodeTrigger,
    [](const EtmResources& resources, const EtmImage&, const EtmSettings& wanted) {
        return EncodePort(resources, wanted);
    }};

// The parts of `settings` that encoder `index` brings about.
EtmSettings Part(const EtmSettings& settings, size_t index) {
    EtmSettings part;
    if (index == 0) {
        part.pc = settings.pc;
        part.pcBegin = settings.pcBegin;
        part.pcEnd = settings.pcEnd;
    } else if (index == 1) {
        part.data = settings.data;
        part.dataBegin = settings.dataBegin;
        part.dataEnd = settings.dataEnd;
        part.dataForeign = settings.dataForeign;
    } else if (index == 2) {
        part.trigger = settings.trigger;
    } else {
        part.portSize = settings.portSize;
        part.halfRate = settings.halfRate;
    }
    return part;
}

// One kind of setting after the other, in any order and over anything: what was encoded is decoded,
// and the other kinds stay, foreign patterns too, register by register where they are foreign.
TEST_P(Codec, BringsBackWhatItWasGivenAndLeavesTheRest) {
    int encoded = 0, foreign = 0;
    EtmImage image = AnyImage();
    for (int round = 0; round < 10000 * kQuarters && !HasFailure(); ++round) {
        if (Below(20) == 0) image = AnyImage();
        const EtmSettings before = DecodeSettings(etm, image);
        const EtmSettings wanted = AnySettings();
        const size_t index = Below(std::size(kEncoders));
        const EtmPlan plan = kEncoders[index](etm, image, wanted);
        if (plan.refusal) continue;
        ++encoded;
        const EtmImage after = WithWrites(image, plan.writes);
        const EtmSettings now = DecodeSettings(etm, after);
        EXPECT_EQ(Part(now, index), Part(wanted, index)) << "kind " << index;
        for (size_t other = 0; other < std::size(kEncoders); ++other) {
            if (other == index) continue;
            EXPECT_EQ(Part(now, other), Part(before, other)) << index << " changed " << other;
        }
        if (index != 0 && before.pc == PcTrace::Complex) {
            ++foreign;
            for (const uint32_t number : {ETMTECR1, ETMTECR2, ETMTEEVR, ETMTSSCR, ETMTESSEICR}) {
                EXPECT_EQ(after.contains(number) ? after.at(number) : 0,
                          image.contains(number) ? image.at(number) : 0);
            }
        }
        image = after;
    }
    EXPECT_GT(encoded, 5000) << "few settings fit";
    EXPECT_GT(foreign, 300) << "few patterns are foreign";
}

INSTANTIATE_TEST_SUITE_P(Chips, Codec,
                         ::testing::Values("arm7", "arm926", "cortex-a8", "cortex-m4"));

// The registers beside the ETM: over anything that may stand there.
TEST(ComponentCodec, BringsBackWhatItWasGivenAndLeavesTheRest) {
    std::mt19937 random{20261124};
    for (int round = 0; round < 4000 && !::testing::Test::HasFailure(); ++round) {
        std::map<uint32_t, uint32_t> before;
        for (uint32_t offset = DWT_COMP; offset < DWT_COMP + 0x40; offset += 4)
            before[offset] = static_cast<uint32_t>(random());
        const uint32_t index = random() % 4, own = 16 * index;
        const bool watches = random() % 3 != 0;
        const auto address = static_cast<uint32_t>(random());
        std::map<uint32_t, uint32_t> after = before;
        std::map<uint32_t, uint32_t> masks;
        for (const RegisterWrite& write :
             EncodeDwt(index, watches ? std::optional(address) : std::nullopt)) {
            uint32_t& word = after[write.offset];
            EXPECT_TRUE(write.offset != DWT_COMP + own || (after[DWT_FUNCTION + own] & 0xF) == 0)
                << "the address changes while it is compared";
            word = write.Over(word);
            masks[write.offset] |= write.mask;
        }
        for (const auto& [offset, word] : after)
            EXPECT_EQ((word ^ before[offset]) & ~masks[offset], 0u) << Hex(offset);
        const DwtState state = DecodeDwt(after[DWT_COMP + own], after[DWT_FUNCTION + own]);
        EXPECT_EQ(state.TellsTheEtm(), watches);
        EXPECT_FALSE(state.IsTaken());
        EXPECT_EQ(state.address, watches ? address : before[DWT_COMP + own]);
        EXPECT_TRUE(!watches || (after[DWT_FUNCTION + own] & 0x1A0) == 0)
            << "compares other things";

        const uint32_t several = static_cast<uint32_t>(random()) | 3;
        EXPECT_EQ(DecodePortSize(several), 0u);
        const uint32_t bits = 1 + static_cast<uint32_t>(round) % 32;
        EXPECT_EQ(DecodePortSize(EncodePortSize(bits).value), bits);
        const uint32_t count = 1 + static_cast<uint32_t>(random()) % 0xFFFF;
        EXPECT_EQ(DecodeTriggerCount(EncodeTriggerCount(count).value), count);
    }
    EXPECT_EQ(DecodePortSize(0), 0u);
    EXPECT_EQ(EncodeTriggerCount(0).value, 0u);
}

TEST(ComponentCodec, ABufferRunsUntilItsFormatterHasStopped) {
    uint32_t image[2] = {0xFFFF, 0};
    const auto begin = [&](bool stopsOnTrigger) {
        for (const RegisterWrite& write : EncodeCapture(stopsOnTrigger)) {
            uint32_t& word = image[write.offset == ETB_CONTROL ? 1 : 0];
            word = write.Over(word);
        }
        return image[0];
    };
    EXPECT_EQ(begin(true), 0xFFFFu & ~0x1072u) << "formatted, and nothing but the trigger stops it";
    EXPECT_EQ(begin(false), 0xFFFFu & ~0x3072u);
    EXPECT_TRUE(DecodeBuffer(image[1], 0, 0, 0, 8, false).running);
    EXPECT_FALSE(DecodeBuffer(image[1], ETB_FORMATTER_STOPPED, 0, 0, 8, false).running);
    EXPECT_FALSE(DecodeBuffer(EncodeNoCapture().Over(image[1]), 0, 0, 0, 8, false).enabled);
    EXPECT_EQ(DecodeBuffer(0, 0, 0, 5, 8, false).captured, 5u);
    EXPECT_EQ(DecodeBuffer(0, 0, 0, 20, 8, true).captured, 5u) << "in bytes";
    EXPECT_EQ(DecodeBuffer(0, 0, ETB_STATUS_FULL, 5, 8, false).captured, 8u);
    EXPECT_TRUE(DecodeBuffer(0, 0, ETB_STATUS_TRIGGERED, 99, 8, false).triggered);
    EXPECT_EQ(DecodeBuffer(0, 0, 0, 99, 8, false).captured, 8u);
}

} // namespace
} // namespace etmhost
