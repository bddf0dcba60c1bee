// Settings as register values, and back: all of them, on every chip, and whatever else registers
// may hold.

#include "host/target/etm_codec.h"

#include <gtest/gtest.h>

#include <random>

#include "host/target/etm_registers.h"
#include "host/target/target.h"

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
    for (int round = 0; round < 40000 && !HasFailure(); ++round) {
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

} // namespace
} // namespace etmhost
