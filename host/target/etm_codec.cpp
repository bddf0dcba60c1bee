#include "host/target/etm_codec.h"

#include <algorithm>
#include <bit>
#include <string>

#include "host/target/etm_registers.h"

namespace etmhost {

namespace {

// An address comparator that looks at executed instructions, and one for loads and stores of any
// size. Compared of ETMACTR are the kind of access, and comparisons of data, of the context and of
// security. The size of an access differs between programs that set it, and the exact match does
// no harm.
constexpr uint32_t kInstruction = 1 | 3u << 3;
constexpr uint32_t kLoadOrStore = 4;
constexpr uint32_t kAccessFields = 0xF67;
constexpr uint32_t kAccessWritten = 0xFFF;

constexpr uint32_t kSingles = 0xFFFF; // of a register with one bit for each comparator
constexpr uint32_t kTecr1Fields = 0x03FFFFFF;
constexpr uint32_t kVdcr3Fields = 0x1FFFF;

uint32_t ValueOf(const EtmImage& image, uint32_t number) {
    const auto entry = image.find(number);
    return entry != image.end() ? entry->second : 0;
}

uint32_t Pairs(const EtmResources& etm) {
    return std::min(etm.addressPairs, 8u);
}

bool IsEvent(uint32_t value, uint32_t event) {
    constexpr uint32_t kOneResource = 0x1C07F; // the second one plays no part in these events
    return (value & kOneResource) == event;
}

// --- Which comparators are taken -------------------------------------------------------

uint32_t SinglesOfPairs(uint32_t pairs) {
    uint32_t singles = 0;
    for (uint32_t pair = 0; pair < 8; ++pair)
        if ((pairs >> pair & 1) != 0) singles |= 3u << (2 * pair);
    return singles;
}

// A resource of type 0 is a comparator, one of type 1 a pair.
uint32_t SinglesOfResource(uint32_t resource) {
    const uint32_t index = resource & 0xF;
    switch (resource >> 4 & 7) {
    case 0:
        return 1u << index;
    case 1:
        return index < 8 ? 3u << (2 * index) : 0;
    default:
        return 0;
    }
}

uint32_t SinglesOfEvent(uint32_t event) {
    const bool both = (event >> 14 & 7) >= 2;
    return SinglesOfResource(event & 0x7F) | (both ? SinglesOfResource(event >> 7 & 0x7F) : 0);
}

bool HasStartStopRegister(const EtmResources& etm) {
    return etm.startStop && etm.addressPairs > 0;
}

uint32_t SinglesOfPc(const EtmResources& etm, const EtmImage& image) {
    const uint32_t tecr1 = ValueOf(image, ETMTECR1);
    uint32_t singles = SinglesOfPairs(tecr1 & 0xFF) | (ValueOf(image, ETMTECR2) & kSingles) |
                       SinglesOfEvent(ValueOf(image, ETMTEEVR));
    if (HasStartStopRegister(etm) && (tecr1 & ETMTECR1_START_STOP) != 0) {
        const uint32_t tsscr = ValueOf(image, ETMTSSCR);
        singles |= (tsscr | tsscr >> 16) & kSingles;
    }
    return singles;
}

uint32_t SinglesOfData(const EtmImage& image) {
    if ((ValueOf(image, ETMCR) & ETMCR_DATA) == 0) return 0;
    const uint32_t single = ValueOf(image, ETMVDCR1);
    const uint32_t pairs = ValueOf(image, ETMVDCR3);
    return ((single | single >> 16) & kSingles) | SinglesOfPairs((pairs | pairs >> 8) & 0xFF) |
           SinglesOfEvent(ValueOf(image, ETMVDEVR));
}

std::vector<uint32_t> OtherEvents(const EtmResources& etm) {
    std::vector<uint32_t> numbers;
    const auto add = [&numbers](uint32_t first, uint32_t count) {
        for (uint32_t i = 0; i < count; ++i) numbers.push_back(first + i);
    };
    const uint32_t counters = std::min(etm.counters, 4u);
    add(ETMCNTENR, counters);
    add(ETMCNTRLDEVR, counters);
    add(ETMSQEVR, etm.sequencer ? 6 : 0);
    add(ETMEXTOUTEVR, std::min(etm.externalOutputs, 4u));
    return numbers;
}

// What a setting may not take: comparators that others use, and those that are not there. An event
// of 0 is what counters and the like have after reset: it names comparator 0, and nobody means it.
uint32_t TakenByEvents(const EtmResources& etm, const EtmImage& image) {
    uint32_t singles = ~((1u << (2 * Pairs(etm))) - 1);
    for (const uint32_t number : OtherEvents(etm))
        if (const uint32_t event = ValueOf(image, number); event != 0)
            singles |= SinglesOfEvent(event);
    return singles;
}

std::optional<uint32_t> FreePair(uint32_t taken, const EtmResources& etm) {
    for (uint32_t pair = 0; pair < Pairs(etm); ++pair)
        if ((taken >> (2 * pair) & 3) == 0) return pair;
    return std::nullopt;
}

// --- Patterns ----------------------------------------------------------------------------

bool IsComparator(const EtmImage& image, uint32_t index, uint32_t access) {
    return ((ValueOf(image, ETMACTR + index) ^ access) & kAccessFields) == 0;
}

void AddComparator(EtmPlan& plan, uint32_t index, uint32_t address, uint32_t access) {
    plan.writes.push_back({ETMACVR + index, address, UINT32_MAX});
    plan.writes.push_back({ETMACTR + index, access, kAccessWritten});
}

// The index of the one bit in `bits`; nothing if none or several are set.
std::optional<uint32_t> OneBit(uint32_t bits) {
    if (!std::has_single_bit(bits)) return std::nullopt;
    return static_cast<uint32_t>(std::countr_zero(bits));
}

// Start and stop from a register with a bit for each resource, those that stop from bit 16 on.
// Returns false if there is more than one of a kind, or none at all.
template <class Translate>
bool DecodeStartStop(uint32_t word, uint32_t mask, EtmSettings& settings, Translate translate) {
    const uint32_t starts = word & mask;
    const uint32_t stops = word >> 16 & mask;
    if (std::popcount(starts) > 1 || std::popcount(stops) > 1 || (starts | stops) == 0)
        return false;
    settings.pcBegin = starts != 0 ? translate(*OneBit(starts)) : std::nullopt;
    settings.pcEnd = stops != 0 ? translate(*OneBit(stops)) : std::nullopt;
    return (starts == 0 || settings.pcBegin) && (stops == 0 || settings.pcEnd);
}

std::optional<PcTrace> DecodePc(const EtmResources& etm, const EtmImage& image,
                                EtmSettings& settings) {
    const uint32_t event = ValueOf(image, ETMTEEVR);
    if (IsEvent(event, ETM_EVENT_NEVER)) return PcTrace::None;
    if (!IsEvent(event, ETM_EVENT_ALWAYS)) return std::nullopt;
    const uint32_t tecr1 = ValueOf(image, ETMTECR1);
    const auto itself = [](uint32_t index) { return std::optional(index); };
    if (etm.addressPairs == 0) {
        if (!etm.startStop || (tecr1 & ETMTECR1_START_STOP) == 0) return PcTrace::All;
        const bool known = DecodeStartStop(ValueOf(image, ETMTESSEICR), (1u << etm.watchInputs) - 1,
                                           settings, itself);
        return known ? std::optional(PcTrace::StartStop) : std::nullopt;
    }
    if ((ValueOf(image, ETMTECR2) & kSingles) != 0) return std::nullopt;
    const uint32_t fields = tecr1 & kTecr1Fields;
    if (fields == ETMTECR1_EXCLUDE) return PcTrace::All;
    const auto address = [&image](uint32_t index) -> std::optional<uint32_t> {
        if (!IsComparator(image, index, kInstruction)) return std::nullopt;
        return ValueOf(image, ETMACVR + index);
    };
    if (HasStartStopRegister(etm) && fields == (ETMTECR1_START_STOP | ETMTECR1_EXCLUDE)) {
        const bool inputs = etm.watchInputs > 0 && ValueOf(image, ETMTESSEICR) != 0;
        const bool known =
            !inputs && DecodeStartStop(ValueOf(image, ETMTSSCR), kSingles, settings, address);
        return known ? std::optional(PcTrace::StartStop) : std::nullopt;
    }
    const std::optional<uint32_t> pair = OneBit(fields);
    if (!pair || *pair >= Pairs(etm)) return std::nullopt;
    settings.pcBegin = address(2 * *pair);
    settings.pcEnd = address(2 * *pair + 1);
    return settings.pcBegin && settings.pcEnd ? std::optional(PcTrace::Range) : std::nullopt;
}

// Returns whether the area of data is one that a setting gives.
bool DecodeDataArea(const EtmResources& etm, const EtmImage& image, EtmSettings& settings) {
    if (!IsEvent(ValueOf(image, ETMVDEVR), ETM_EVENT_ALWAYS) || ValueOf(image, ETMVDCR1) != 0 ||
        ValueOf(image, ETMVDCR2) != 0)
        return false;
    const uint32_t area = ValueOf(image, ETMVDCR3) & kVdcr3Fields;
    if (area == ETMVDCR3_EXCLUDE_ONLY) return true;
    const std::optional<uint32_t> pair = OneBit(area);
    if (!pair || *pair >= Pairs(etm) || !IsComparator(image, 2 * *pair, kLoadOrStore) ||
        !IsComparator(image, 2 * *pair + 1, kLoadOrStore))
        return false;
    settings.dataBegin = ValueOf(image, ETMACVR + 2 * *pair);
    settings.dataEnd = ValueOf(image, ETMACVR + 2 * *pair + 1);
    return true;
}

std::optional<uint32_t> DecodeTrigger(const EtmResources& etm, const EtmImage& image) {
    const uint32_t event = ValueOf(image, ETMTRIGGER);
    const uint32_t resource = event & 0x7F;
    if (!IsEvent(event, resource)) return std::nullopt; // not one resource, as it is
    if (etm.TakesIndexes()) {
        const uint32_t index = resource - ETM_RESOURCE_INPUT;
        return index < etm.watchInputs ? std::optional(index) : std::nullopt;
    }
    return resource < 2 * Pairs(etm) && IsComparator(image, resource, kInstruction)
               ? std::optional(ValueOf(image, ETMACVR + resource))
               : std::nullopt;
}

// Widths by the code that stands in ETMCR; from 8 on the code's last bit is bit 21, of version 3.
constexpr uint32_t kWidths[] = {4, 8, 16, 24, 32, 48, 64, 0, 1, 2};

uint32_t PortField(uint32_t code) {
    return (code & 7) << 4 | (code >> 3) << 21;
}

uint32_t PortMask(const EtmResources& etm) {
    return etm.archMajor >= 3 ? PortField(0xF) : PortField(7);
}

uint32_t DecodePortSize(const EtmResources& etm, uint32_t control) {
    for (uint32_t code = 0; code < std::size(kWidths); ++code)
        if ((control & PortMask(etm)) == PortField(code)) return kWidths[code];
    return 0;
}

std::string NoComparator(const EtmResources& etm) {
    return "No address comparator is free: this chip has " + std::to_string(etm.addressPairs) +
           (etm.addressPairs == 1 ? " pair" : " pairs");
}

} // namespace

const char* DataTraceName(DataTrace data) {
    constexpr const char* kNames[] = {"none", "addr", "value", "all"};
    return kNames[static_cast<int>(data)];
}

std::vector<uint32_t> SettingRegisters(const EtmResources& etm) {
    std::vector<uint32_t> numbers = {ETMCR, ETMTRIGGER};
    if (HasStartStopRegister(etm)) numbers.push_back(ETMTSSCR);
    if (etm.addressPairs > 0) numbers.push_back(ETMTECR2);
    numbers.insert(numbers.end(), {ETMTEEVR, ETMTECR1});
    if (etm.HasData()) numbers.insert(numbers.end(), {ETMVDEVR, ETMVDCR1, ETMVDCR2, ETMVDCR3});
    for (const uint32_t first : {ETMACVR, ETMACTR})
        for (uint32_t index = 0; index < 2 * Pairs(etm); ++index) numbers.push_back(first + index);
    const std::vector<uint32_t> events = OtherEvents(etm);
    numbers.insert(numbers.end(), events.begin(), events.end());
    if (etm.startStop && etm.watchInputs > 0) numbers.push_back(ETMTESSEICR);
    return numbers;
}

EtmSettings DecodeSettings(const EtmResources& etm, const EtmImage& image) {
    EtmSettings settings;
    const std::optional<PcTrace> pc = DecodePc(etm, image, settings);
    settings.pc = pc.value_or(PcTrace::Complex);
    if (!pc) settings.pcBegin = settings.pcEnd = std::nullopt;
    const uint32_t control = ValueOf(image, ETMCR);
    if (etm.HasData()) {
        const bool addresses = (control & ETMCR_DATA_ADDRESSES) != 0;
        const bool values = (control & ETMCR_DATA_VALUES) != 0;
        settings.data = addresses ? values ? DataTrace::All : DataTrace::Addresses
                        : values  ? DataTrace::Values
                                  : DataTrace::None;
        settings.dataForeign =
            settings.data != DataTrace::None && !DecodeDataArea(etm, image, settings);
    }
    settings.trigger = DecodeTrigger(etm, image);
    settings.portSize = DecodePortSize(etm, control);
    settings.halfRate = etm.halfRate && (control & ETMCR_HALF_RATE) != 0;
    return settings;
}

EtmPlan EncodePc(const EtmResources& etm, const EtmImage& image, const EtmSettings& wanted) {
    if (wanted.pc == PcTrace::Complex) return {};
    EtmPlan plan;
    uint32_t tecr1 = ETMTECR1_EXCLUDE;
    uint32_t startStop = 0;
    if (etm.addressPairs == 0) {
        const bool indexes = wanted.pc == PcTrace::StartStop && etm.startStop;
        if (wanted.pc == PcTrace::Range || (wanted.pc == PcTrace::StartStop && !indexes) ||
            wanted.pcBegin.value_or(0) >= std::max(etm.watchInputs, 1u) ||
            wanted.pcEnd.value_or(0) >= std::max(etm.watchInputs, 1u))
            return {{}, "This chip cannot limit PC trace by addresses"};
        if (indexes) {
            startStop = (wanted.pcBegin ? 1u << *wanted.pcBegin : 0) |
                        (wanted.pcEnd ? 1u << (16 + *wanted.pcEnd) : 0);
        }
        if (etm.startStop && etm.watchInputs > 0) {
            const uint32_t inputs = (1u << etm.watchInputs) - 1;
            plan.writes.push_back({ETMTESSEICR, startStop, inputs | inputs << 16});
        }
        // Of this register such an ETM has the one bit.
        plan.writes.push_back({ETMTECR1, indexes ? ETMTECR1_START_STOP : 0, ETMTECR1_START_STOP});
    } else {
        const uint32_t taken = TakenByEvents(etm, image) | SinglesOfData(image) |
                               SinglesOfEvent(ValueOf(image, ETMTRIGGER));
        if (wanted.pc == PcTrace::Range) {
            const std::optional<uint32_t> pair = FreePair(taken, etm);
            if (!pair) return {{}, NoComparator(etm)};
            AddComparator(plan, 2 * *pair, wanted.pcBegin.value_or(0), kInstruction);
            AddComparator(plan, 2 * *pair + 1, wanted.pcEnd.value_or(0), kInstruction);
            tecr1 = 1u << *pair;
        }
        if (wanted.pc == PcTrace::StartStop) {
            if (!etm.startStop) return {{}, "This chip cannot limit PC trace by addresses"};
            uint32_t free = ~taken & kSingles;
            for (const bool stop : {false, true}) {
                const std::optional<uint32_t>& address = stop ? wanted.pcEnd : wanted.pcBegin;
                if (!address) continue;
                if (free == 0) return {{}, NoComparator(etm)};
                const uint32_t index = static_cast<uint32_t>(std::countr_zero(free));
                free &= ~(1u << index);
                AddComparator(plan, index, *address, kInstruction);
                startStop |= 1u << (index + (stop ? 16 : 0));
            }
            tecr1 = ETMTECR1_START_STOP | ETMTECR1_EXCLUDE;
        }
        if (HasStartStopRegister(etm)) plan.writes.push_back({ETMTSSCR, startStop, UINT32_MAX});
        if (etm.startStop && etm.watchInputs > 0)
            plan.writes.push_back({ETMTESSEICR, 0, UINT32_MAX});
        plan.writes.push_back({ETMTECR2, 0, kSingles});
        plan.writes.push_back({ETMTECR1, tecr1, kTecr1Fields});
    }
    const uint32_t event = wanted.pc == PcTrace::None ? ETM_EVENT_NEVER : ETM_EVENT_ALWAYS;
    plan.writes.push_back({ETMTEEVR, event, ETM_EVENT_MASK});
    return plan;
}

EtmPlan EncodeData(const EtmResources& etm, const EtmImage& image, const EtmSettings& wanted) {
    EtmPlan plan;
    if (!etm.HasData())
        return wanted.data == DataTrace::None ? plan : EtmPlan{{}, "This chip has no data trace"};
    uint32_t kind = 0;
    if (wanted.data == DataTrace::Addresses || wanted.data == DataTrace::All)
        kind |= ETMCR_DATA_ADDRESSES;
    if (wanted.data == DataTrace::Values || wanted.data == DataTrace::All)
        kind |= ETMCR_DATA_VALUES;
    // Without data its area does not matter, and there may be no registers for it.
    if (wanted.data == DataTrace::None) return {{{ETMCR, 0, ETMCR_DATA}}, {}};
    uint32_t area = ETMVDCR3_EXCLUDE_ONLY;
    if (wanted.dataBegin && wanted.dataEnd) {
        const uint32_t taken = TakenByEvents(etm, image) | SinglesOfPc(etm, image) |
                               SinglesOfEvent(ValueOf(image, ETMTRIGGER));
        const std::optional<uint32_t> pair = FreePair(taken, etm);
        if (!pair) return {{}, NoComparator(etm)};
        AddComparator(plan, 2 * *pair, *wanted.dataBegin, kLoadOrStore);
        AddComparator(plan, 2 * *pair + 1, *wanted.dataEnd, kLoadOrStore);
        area = 1u << *pair;
    }
    plan.writes.push_back({ETMVDCR1, 0, UINT32_MAX});
    plan.writes.push_back({ETMVDCR2, 0, UINT32_MAX});
    plan.writes.push_back({ETMVDCR3, area, kVdcr3Fields});
    plan.writes.push_back({ETMVDEVR, ETM_EVENT_ALWAYS, ETM_EVENT_MASK});
    plan.writes.push_back({ETMCR, kind, ETMCR_DATA});
    return plan;
}

EtmPlan EncodeTrigger(const EtmResources& etm, const EtmImage& image, const EtmSettings& wanted) {
    EtmPlan plan;
    uint32_t event = ETM_EVENT_NEVER;
    if (wanted.trigger && etm.TakesIndexes()) {
        if (*wanted.trigger >= etm.watchInputs)
            return {{}, "This chip has no comparator for a trigger"};
        event = ETM_RESOURCE_INPUT + *wanted.trigger;
    } else if (wanted.trigger) {
        const uint32_t free = kSingles & ~(TakenByEvents(etm, image) | SinglesOfPc(etm, image) |
                                           SinglesOfData(image));
        if (free == 0) return {{}, NoComparator(etm)};
        // The last one, which leaves whole pairs to the ranges.
        event = static_cast<uint32_t>(std::bit_width(free)) - 1;
        AddComparator(plan, event, *wanted.trigger, kInstruction);
    }
    plan.writes.push_back({ETMTRIGGER, event, ETM_EVENT_MASK});
    return plan;
}

EtmPlan EncodePort(const EtmResources& etm, const EtmSettings& wanted) {
    EtmPlan plan;
    if (wanted.portSize != 0) {
        const auto* const width = std::ranges::find(kWidths, wanted.portSize);
        const uint32_t code = static_cast<uint32_t>(width - std::begin(kWidths));
        if (width == std::end(kWidths) || (PortField(code) & ~PortMask(etm)) != 0)
            return {{},
                    "This chip has no trace port of " + std::to_string(wanted.portSize) + " bits"};
        plan.writes.push_back({ETMCR, PortField(code), PortMask(etm)});
    }
    if (etm.halfRate)
        plan.writes.push_back({ETMCR, wanted.halfRate ? ETMCR_HALF_RATE : 0, ETMCR_HALF_RATE});
    return plan;
}

EtmImage WithWrites(EtmImage image, const std::vector<EtmWrite>& writes) {
    for (const EtmWrite& write : writes) {
        uint32_t& value = image[write.number];
        value = (value & ~write.mask) | (write.value & write.mask);
    }
    return image;
}

} // namespace etmhost
