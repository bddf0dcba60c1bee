// The lists of choices: which entries the chip offers, their texts, and the value
// behind each. The record stores indexes into these lists.

#include <bit>
#include <string>

#include "settings/jTraceSettings.h"
#include "text/text_tools.h"

namespace {

struct Choice {
    const char* Text;
    uint32_t Value; // bits of ETMCR, the ETM main control register
};

constexpr uint32_t kHalfRateBit = 0x2000;

constexpr Choice kCprtModes[] = {
    {"CPRT not traced", 0},
    {"All CPRTs traced", 2},
    {"CPRT traced when ViewData active", 0x80002},
};

constexpr Choice kContextIdSizes[] = {
    {"No context ID tracing", 0},
    {"context ID bits [7:0] traced", 0x4000},
    {"context ID bits [15:0] traced", 0x8000},
    {"context ID bits [31:0] traced", 0xC000},
};

// Made anew for each count, from the capabilities of that moment.
std::array<Choice, 5> g_PortModes;

int32_t FillPortModes(const jTraceState& chip) {
    int32_t count = 0;
    const auto add = [&count](const char* text, uint32_t value) {
        g_PortModes[static_cast<size_t>(count++)] = {text, value};
    };
    g_PortModes.fill({});
    if (chip.ArchVersion >= 30) {
        add("Half-rate clocking", kHalfRateBit);
    } else if (chip.NormalFormatSupported != 0) {
        if (chip.HalfRateSupported != 0) add("Normal, Half-rate clocking", kHalfRateBit);
        add("Normal, no Half-rate clocking", 0);
    }
    return count;
}

} // namespace

int32_t jTraceSettings::GetChoiceCount(int32_t id) {
    if (id == TA_PORT_MODE) return FillPortModes(Snapshot);
    if (id == TA_CPRT_MODE) return std::size(kCprtModes);
    if (id == TA_CONTEXT_ID_SIZE) return std::size(kContextIdSizes);
    if (id != TA_PORT_SIZE) return -1;

    const int32_t count = CountBits(Snapshot.PortSizeMask);
    for (jTraceAttribute& row : Attributes)
        if (row.Id == TA_PORT_SIZE && count > 0) row.Max = row.Default = count - 1;
    return count;
}

bool jTraceSettings::GetChoice(int32_t id, int32_t index, char* buffer, size_t size,
                               uint32_t& value) {
    const int32_t count = GetChoiceCount(id);
    if (index < 0 || index >= count) return false;
    if (id == TA_PORT_SIZE) {
        const int32_t width = PortSizeFromIndex(index, Snapshot.PortSizeMask);
        CopyBounded(buffer, size, (std::to_string(width) + " bits").c_str());
        value = static_cast<uint32_t>(width);
        return true;
    }
    const Choice* list = kContextIdSizes;
    if (id == TA_PORT_MODE) list = g_PortModes.data();
    if (id == TA_CPRT_MODE) list = kCprtModes;
    CopyBounded(buffer, size, list[index].Text);
    value = list[index].Value;
    return true;
}

int32_t CountBits(uint32_t mask) {
    return std::popcount(mask);
}

int32_t PortSizeFromIndex(int32_t index, uint32_t mask) {
    if (index < 0) return 0;
    for (; index > 0; --index) {
        if (mask == 0) return 0;
        mask &= mask - 1; // clears the lowest bit that is set
    }
    return mask == 0 ? 0 : std::countr_zero(mask) + 1;
}

int32_t PortIndexFromSize(int32_t size, uint32_t mask) {
    if (size < 1 || size > 32) return 0;
    const uint32_t bit = 1u << (size - 1);
    return (mask & bit) != 0 ? CountBits(mask & (bit - 1)) : 0;
}
