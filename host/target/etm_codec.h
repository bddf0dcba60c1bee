// Trace settings as values of ETM registers, and back. Nothing here reads or writes a register.
//
// Each kind of setting (PC trace, data trace, trigger, port) has registers of its own, and draws on
// the same address comparators. A setting takes comparators that no other register refers to, so
// that what somebody else has programmed beside it stays as it is.

#pragma once

#include <map>
#include <vector>

#include "host/support/refusal.h"
#include "host/target/etm_resources.h"
#include "host/target/trace_settings.h"

namespace etmhost {

/// Values of registers by number.
using EtmImage = std::map<uint32_t, uint32_t>;

/// One register to write: the bits of `mask` become those of `value`, the others stay.
struct EtmWrite {
    uint32_t number;
    uint32_t value;
    uint32_t mask;

    bool operator==(const EtmWrite&) const = default;
};

/// What a setting comes to: writes, or a reason why this ETM cannot have it.
struct EtmPlan {
    std::vector<EtmWrite> writes;
    Refusal refusal;
};

/// Returns the numbers of all registers that the functions below look at, ascending.
std::vector<uint32_t> SettingRegisters(const EtmResources& etm);

/// Returns what `image`, which holds all of SettingRegisters, sets. A pattern that no setting gives
/// reads as PcTrace::Complex, or as dataForeign, or as no trigger.
EtmSettings DecodeSettings(const EtmResources& etm, const EtmImage& image);

/// Return the writes that bring `pc`, `data`, `trigger` and the port of `wanted` about where
/// `image` is what stands there. Nothing comes of PcTrace::Complex: it stands for what others have
/// programmed.
EtmPlan EncodePc(const EtmResources& etm, const EtmImage& image, const EtmSettings& wanted);
EtmPlan EncodeData(const EtmResources& etm, const EtmImage& image, const EtmSettings& wanted);
EtmPlan EncodeTrigger(const EtmResources& etm, const EtmImage& image, const EtmSettings& wanted);
EtmPlan EncodePort(const EtmResources& etm, const EtmSettings& wanted);

/// Returns `image` with `writes` in it.
EtmImage WithWrites(EtmImage image, const std::vector<EtmWrite>& writes);

} // namespace etmhost
