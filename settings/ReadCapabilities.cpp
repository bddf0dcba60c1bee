#include "settings/ReadCapabilities.h"

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <iterator>
#include <limits>
#include <string_view>

#include "frame/interfaces/IOrnVETMTrace.h"
#include "frame/slots.h"
#include "settings/ReportStream.h"
#include "settings/jTraceSettings.h"

namespace {

using Field = int32_t jTraceState::*;

/// Reads what stands behind a label's colon. Returns false, leaving the field alone, if that
/// is no such value.
using Read = bool(const char* value, int32_t* field);
Read ReadNumber, ReadVersion, ReadYesNo;

struct ReportLabel {
    std::string_view Text;
    Field Value;
    Read* ReadValue;
};

// The wording is the host's, two blanks around "format" in one of them included.
constexpr ReportLabel kLabels[] = {
    {"ETM protocol version", &jTraceState::ProtocolVersion, ReadNumber},
    {"ETM architecture version", &jTraceState::ArchVersion, ReadVersion},
    {"Number of address comparator pairs", &jTraceState::AddressComparatorPairs, ReadNumber},
    {"Number of data comparators", &jTraceState::DataComparators, ReadNumber},
    {"Number of memory map decoders", &jTraceState::MemoryMapDecoders, ReadNumber},
    {"Number of counters", &jTraceState::Counters, ReadNumber},
    {"Sequencer present", &jTraceState::SequencerPresent, ReadYesNo},
    {"Number of external inputs", &jTraceState::ExternalInputs, ReadNumber},
    {"Number of external outputs", &jTraceState::ExternalOutputs, ReadNumber},
    {"FIFOFULL logic present", &jTraceState::FifoFullPresent, ReadYesNo},
    {"Half-rate clocking supported", &jTraceState::HalfRateSupported, ReadYesNo},
    {"Full-rate clocking supported", &jTraceState::FullRateSupported, ReadYesNo},
    {"Normal format supported", &jTraceState::NormalFormatSupported, ReadYesNo},
    {"Multiplexed  format  supported", &jTraceState::MultiplexedFormatSupported, ReadYesNo},
    {"Demultiplexed format supported", &jTraceState::DemultiplexedFormatSupported, ReadYesNo},
};

// What several labels begin with, so that one search serves them all.
constexpr std::string_view kCommonBeginnings[] = {"ETM ", "Number of "};

// Shorter than any label: no other one can hide behind a value of that length.
constexpr ptrdiff_t kShortValue = 15;
static_assert(std::all_of(std::begin(kLabels), std::end(kLabels), [](const ReportLabel& label) {
    return label.Text.size() > size_t{kShortValue};
}));

bool IsBlank(char ch) {
    return ch == ' ' || (ch >= '\t' && ch <= '\r');
}

int32_t To32Bits(int64_t number) {
    return static_cast<int32_t>(std::clamp<int64_t>(number, std::numeric_limits<int32_t>::min(),
                                                    std::numeric_limits<int32_t>::max()));
}

/// Returns the text behind the colon that follows `label`; null without one.
const char* FindValue(const char* text, const char* label) {
    const char* const found = std::strstr(text, label);
    const char* const colon = found != nullptr ? std::strchr(found, ':') : nullptr;
    return colon != nullptr ? colon + 1 : nullptr;
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

bool ReadNumber(const char* value, int32_t* field) {
    return TakeNumber(value, *field);
}

/// Reads "3.1" as 31.
bool ReadVersion(const char* value, int32_t* field) {
    int32_t major = 0;
    int32_t minor = 0;
    if (!TakeNumber(value, major) || *value != '.') return false;
    ++value;
    if (!TakeNumber(value, minor)) return false;
    *field = To32Bits(int64_t{major} * 10 + minor);
    return true;
}

/// `word` is of small letters; those of the text may be capitals.
bool BeginsWith(const char* text, std::string_view word) {
    for (const char letter : word)
        if ((*text++ | ('a' ^ 'A')) != letter) return false;
    return true;
}

bool ReadYesNo(const char* value, int32_t* field) {
    value = SkipBlanks(value);
    const bool yes = BeginsWith(value, "yes");
    if (!yes && !BeginsWith(value, "no")) return false;
    *field = yes ? 1 : 0;
    return true;
}

/// The report, and the labels that have not been found in it.
class Report {
public:
    Report(const char* text, jTraceState& state)
        : m_Rest(text, std::strlen(text)), m_State(state) {}

    /// Reads the lines that the usual report is made of: a label, its colon and a short
    /// value, in the order of the labels. What is missing there stands behind them, if
    /// anywhere.
    void TakeUsualLines() {
        for (size_t i = 0; i < std::size(kLabels); ++i) {
            const size_t colon = kLabels[i].Text.size();
            if (!m_Rest.starts_with(kLabels[i].Text) || m_Rest.data()[colon] != ':') continue;
            const char* const value = m_Rest.data() + colon + 1;
            const char* end = value;
            while (*end != '\n' && *end != '\0' && end - value < kShortValue) ++end;
            if (*end != '\n') continue;
            m_Missing &= ~(1u << i);
            Take(i, value);
            m_Rest.remove_prefix(static_cast<size_t>(end + 1 - m_Rest.data()));
        }
    }

    /// Looks for the labels that are still missing anywhere in the rest.
    void Search() {
        if (m_Missing == 0) return;
        for (const std::string_view beginning : kCommonBeginnings) {
            uint32_t labels = 0;
            for (size_t i = 0; i < std::size(kLabels); ++i)
                if (kLabels[i].Text.starts_with(beginning)) labels |= 1u << i;
            Search(beginning, labels);
        }
        for (size_t i = 0; i < std::size(kLabels); ++i) Search(kLabels[i].Text, 1u << i);
    }

private:
    /// Looks for those of `labels` that are missing; they begin with `beginning`.
    void Search(std::string_view beginning, uint32_t labels) {
        labels &= m_Missing;
        m_Missing &= ~labels;
        const char* at = m_Rest.data();
        for (; labels != 0 && (at = std::strstr(at, beginning.data())) != nullptr; ++at) {
            for (size_t i = 0; i < std::size(kLabels); ++i) {
                const std::string_view text = kLabels[i].Text;
                if ((labels >> i & 1) == 0 || std::strncmp(at, text.data(), text.size()) != 0)
                    continue;
                labels &= ~(1u << i);
                if (const char* const colon = std::strchr(at, ':')) Take(i, colon + 1);
            }
        }
    }

    void Take(size_t i, const char* value) {
        kLabels[i].ReadValue(value, &(m_State.*kLabels[i].Value));
    }

    std::string_view m_Rest; // NUL behind it
    jTraceState& m_State;
    uint32_t m_Missing = (1u << std::size(kLabels)) - 1; // a bit for each label
};

} // namespace

bool ScanNumber(const char* text, const char* label, int32_t* field) {
    const char* const value = FindValue(text, label);
    return value != nullptr && ReadNumber(value, field);
}

bool ScanYesNo(const char* text, const char* label, int32_t* field) {
    const char* const value = FindValue(text, label);
    return value != nullptr && ReadYesNo(value, field);
}

const char* SkipBlanks(const char* text) {
    while (IsBlank(*text) && *text != '\n') ++text;
    return text;
}

void ReadCapabilities(jTraceState& state) {
    for (const ReportLabel& label : kLabels) state.*label.Value = 0;
    state.ArchVersion = 10;

    ReportStream stream;
    if (g_VETMTrace->Command("capability", &stream) != nullptr) return;
    Report report(stream.GetText(), state);
    report.TakeUsualLines();
    report.Search();
}
