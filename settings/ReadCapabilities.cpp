#include "settings/ReadCapabilities.h"

#include <algorithm>
#include <cstring>
#include <limits>
#include <sstream>

#include "frame/interfaces/IOrnVETMTrace.h"
#include "frame/slots.h"
#include "platform/compare.h"
#include "settings/jTraceSettings.h"

namespace {

using Field = int32_t jTraceState::*;

struct Label {
    const char* Text;
    Field Value;
    bool (*Scan)(const char* text, const char* label, int32_t* field);
};

/// Reads "3.1" as 31.
bool ScanVersion(const char* text, const char* label, int32_t* field);

// The wording is the host's, two blanks around "format" in one of them included.
constexpr Label kLabels[] = {
    {"ETM protocol version", &jTraceState::ProtocolVersion, ScanNumber},
    {"ETM architecture version", &jTraceState::ArchVersion, ScanVersion},
    {"Number of address comparator pairs", &jTraceState::AddressComparatorPairs, ScanNumber},
    {"Number of data comparators", &jTraceState::DataComparators, ScanNumber},
    {"Number of memory map decoders", &jTraceState::MemoryMapDecoders, ScanNumber},
    {"Number of counters", &jTraceState::Counters, ScanNumber},
    {"Sequencer present", &jTraceState::SequencerPresent, ScanYesNo},
    {"Number of external inputs", &jTraceState::ExternalInputs, ScanNumber},
    {"Number of external outputs", &jTraceState::ExternalOutputs, ScanNumber},
    {"FIFOFULL logic present", &jTraceState::FifoFullPresent, ScanYesNo},
    {"Half-rate clocking supported", &jTraceState::HalfRateSupported, ScanYesNo},
    {"Full-rate clocking supported", &jTraceState::FullRateSupported, ScanYesNo},
    {"Normal format supported", &jTraceState::NormalFormatSupported, ScanYesNo},
    {"Multiplexed  format  supported", &jTraceState::MultiplexedFormatSupported, ScanYesNo},
    {"Demultiplexed format supported", &jTraceState::DemultiplexedFormatSupported, ScanYesNo},
};

bool IsBlank(char ch) {
    return ch != '\0' && std::strchr(" \t\n\v\f\r", ch);
}

int32_t To32Bits(int64_t number) {
    return static_cast<int32_t>(std::clamp<int64_t>(number, std::numeric_limits<int32_t>::min(),
                                                    std::numeric_limits<int32_t>::max()));
}

/// Returns the text behind the colon that follows `label`; null without one.
const char* FindValue(const char* text, const char* label) {
    const char* const found = std::strstr(text, label);
    const char* const colon = found ? std::strchr(found, ':') : nullptr;
    return colon ? colon + 1 : nullptr;
}

/// Reads a decimal number behind white space, line feeds included, and moves `text`
/// behind it. Returns false without a digit.
bool TakeNumber(const char*& text, int32_t& number) {
    while (IsBlank(*text)) ++text;
    const bool negative = *text == '-';
    if (*text == '-' || *text == '+') ++text;
    if (*text < '0' || *text > '9') return false;
    int64_t magnitude = 0;
    for (; *text >= '0' && *text <= '9'; ++text)
        magnitude = std::min<int64_t>(magnitude * 10 + (*text - '0'), int64_t{1} << 32);
    number = To32Bits(negative ? -magnitude : magnitude);
    return true;
}

bool ScanVersion(const char* text, const char* label, int32_t* field) {
    const char* value = FindValue(text, label);
    int32_t major = 0;
    int32_t minor = 0;
    if (!value || !TakeNumber(value, major) || *value != '.') return false;
    ++value;
    if (!TakeNumber(value, minor)) return false;
    *field = To32Bits(int64_t{major} * 10 + minor);
    return true;
}

} // namespace

bool ScanNumber(const char* text, const char* label, int32_t* field) {
    const char* value = FindValue(text, label);
    return value && TakeNumber(value, *field);
}

bool ScanYesNo(const char* text, const char* label, int32_t* field) {
    const char* value = FindValue(text, label);
    if (!value) return false;
    value = SkipBlanks(value);
    const bool yes = CompareNoCaseN(value, "yes", 3) == 0;
    if (!yes && CompareNoCaseN(value, "no", 2) != 0) return false;
    *field = yes ? 1 : 0;
    return true;
}

const char* SkipBlanks(const char* text) {
    while (IsBlank(*text) && *text != '\n') ++text;
    return text;
}

void ReadCapabilities(jTraceState& state) {
    for (const Label& label : kLabels) state.*label.Value = 0;
    state.ArchVersion = 10;

    std::ostringstream stream;
    if (g_VETMTrace->Command("capability", &stream)) return;
    const std::string report = std::move(stream).str();
    for (const Label& label : kLabels)
        label.Scan(report.c_str(), label.Text, &(state.*label.Value));
}
