// Reading the target: values by id, the capability report, the lines of the
// host's settings text, and the stored board file.

#include <algorithm>
#include <limits>
#include <memory>
#include <new>

#include "frame/interfaces/IOrnVETMTrace.h"
#include "frame/interfaces/IOrnXTraceClient.h"
#include "frame/slots.h"
#include "platform/compare.h"
#include "settings/ReadCapabilities.h"
#include "settings/control_word.h"
#include "settings/jTraceSettings.h"
#include "text/TxtScan.h"

namespace {

// Far more than any host prints. One that never ends its text must not hang the
// debugger.
constexpr uint32_t kMaxSettingsLines = 1000000;

bool IsWord(const TxtScan& scanner, const char* word) {
    return CompareNoCase(scanner.Text, word) == 0;
}

bool TakeName(TxtScan& scanner) {
    return scanner.GetToken() == TK_IDENT;
}

bool TakeEqualSign(TxtScan& scanner) {
    return scanner.GetToken() == TK_PUNCT && IsWord(scanner, "=");
}

/// Returns the line from the next token on.
const char* TakeRest(TxtScan& scanner) {
    scanner.GetToken();
    return scanner.TokenStart;
}

/// What may stand behind the "=" of a PC or DATA line.
struct Form {
    const char* Word;
    int32_t Mode;
    std::string jTraceState::*Address; // takes the rest of the line; null: none follows
};

/// Reads "=" and the word behind it. Returns the form with that word, or null.
template <size_t N> const Form* TakeForm(TxtScan& scanner, const Form (&forms)[N]) {
    if (!TakeEqualSign(scanner)) return nullptr;
    scanner.GetToken();
    for (const Form& form : forms)
        if (IsWord(scanner, form.Word)) return &form;
    return nullptr;
}

} // namespace

bool jTraceSettings::ReadFromTarget() {
    if (g_VETMTrace == nullptr) return false;
    ReadIdentification();

    uint32_t control = 0;
    uint32_t size = 0;
    uint32_t count = 0;
    const bool controlRead = g_VETMTrace->GetValue(ORN_VALUE_CONTROL, &control) != 0;
    const bool sizeRead = g_VETMTrace->GetValue(ORN_VALUE_BUFFER_SIZE, &size) != 0;
    const bool countRead = g_VETMTrace->GetValue(ORN_VALUE_TRIGGER_COUNT, &count) != 0;
    if (sizeRead) BufferSize = size;

    const bool linesRead = ReadSettingsLines();
    if (!controlRead || !sizeRead || !countRead || !linesRead) return false;

    DecodeControlWord(control, Snapshot);
    DecodeTriggerCount(count);
    ReadBoardFile();
    Working = Snapshot;
    return true;
}

void jTraceSettings::ReadIdentification() {
    uint32_t word = 0;
    if (g_VETMTrace->GetValue(ORN_VALUE_ETMCCR, &word) == 0) return;
    Snapshot.ConfigCode = word;
    if (g_VETMTrace->GetValue(ORN_VALUE_ETMSCR, &word) == 0) return;
    Snapshot.SystemConfig = word;

    Snapshot.EtmId = 0;
    const bool hasId = (Snapshot.ConfigCode & ORN_ETMCCR_HAS_ID) != 0;
    if (hasId) g_VETMTrace->GetValue(ORN_VALUE_ETMIDR, &Snapshot.EtmId);
    g_VETMTrace->GetValue(ORN_VALUE_PORT_SIZES, &Snapshot.PortSizeMask);
    ReadCapabilities(Snapshot);
}

/// Returns false if there is no memory for a scanner.
bool jTraceSettings::ReadSettingsLines() {
    std::unique_ptr<TxtScan> scanner;
    try {
        scanner = std::make_unique<TxtScan>(nullptr, -1);
    } catch (const std::bad_alloc&) {
        return false;
    }
    for (uint32_t index = 0; index < kMaxSettingsLines; ++index) {
        const char* const line = g_VETMTrace->GetSettingsLine(index);
        if (line == nullptr) break;
        scanner->Init(line, -1);
        ParseSettingsLine(*scanner);
    }
    return true;
}

void jTraceSettings::ParseSettingsLine(TxtScan& scanner) {
    if (!TakeName(scanner) || !IsWord(scanner, "ETM")) return;
    if (!TakeName(scanner)) return;
    if (IsWord(scanner, "PC"))
        ParsePcLine(scanner);
    else if (IsWord(scanner, "DATA"))
        ParseDataLine(scanner);
    else if (IsWord(scanner, "COMPLEX"))
        Snapshot.PcMode = PC_COMPLEX;
    else if (IsWord(scanner, "TRIGGER"))
        Snapshot.TriggerAddress = TakeRest(scanner);
    else if (IsWord(scanner, "PORTSIZE"))
        ParsePortSizeLine(scanner);
    else if (IsWord(scanner, "HALFRATE"))
        ParseHalfRateLine(scanner);
}

bool jTraceSettings::ParsePcLine(TxtScan& scanner) {
    static constexpr Form kForms[] = {
        {"none", PC_NONE, nullptr},
        {"all", PC_ALL, nullptr},
        {"from", PC_RANGE, &jTraceState::PcBegin},
        {"to", PC_RANGE, &jTraceState::PcEnd},
        {"start", PC_START, &jTraceState::PcBegin},
        {"stop", PC_START_STOP, &jTraceState::PcEnd},
    };
    const Form* const form = TakeForm(scanner, kForms);
    if (form == nullptr) return false;
    if (form->Address != nullptr) Snapshot.*form->Address = TakeRest(scanner);
    Snapshot.PcMode = form->Mode;
    return true;
}

bool jTraceSettings::ParseDataLine(TxtScan& scanner) {
    static constexpr Form kForms[] = {
        {"all", DATA_KINDS, nullptr},
        {"none", 0, nullptr},
        {"addr", DATA_ADDRESSES, nullptr},
        {"value", DATA_VALUES, nullptr},
        {"from", DATA_IN_RANGE, &jTraceState::DataBegin},
        {"to", DATA_IN_RANGE, &jTraceState::DataEnd},
    };
    const Form* const form = TakeForm(scanner, kForms);
    if (form == nullptr) return false;
    if (form->Address == nullptr) {
        Snapshot.DataMode = form->Mode;
        return true;
    }
    Snapshot.*form->Address = TakeRest(scanner);
    Snapshot.DataMode |= DATA_IN_RANGE;
    // A range without a kind of data means all data within it.
    if (Snapshot.DataMode == DATA_IN_RANGE) Snapshot.DataMode |= DATA_KINDS;
    return true;
}

void jTraceSettings::ParsePortSizeLine(TxtScan& scanner) {
    if (!TakeEqualSign(scanner) || scanner.GetToken() != TK_DECIMAL) return;
    Snapshot.PortSizeIndex = PortIndexFromSize(scanner.Value.Integer, Snapshot.PortSizeMask);
}

void jTraceSettings::ParseHalfRateLine(TxtScan& scanner) {
    if (!TakeEqualSign(scanner) || !TakeName(scanner)) return;
    Snapshot.PortModeIndex = IsWord(scanner, "on") ? 0 : 1;
}

void jTraceSettings::DecodeTriggerCount(uint32_t count) {
    Snapshot.TriggerPosition = 0;
    if (BufferSize == 0) return;
    // A count beyond the buffer gives a position below 0, beyond 32 bits at worst.
    const auto behind = static_cast<int64_t>(count * 100.0 / BufferSize + 0.5);
    const int64_t least = std::numeric_limits<int32_t>::min();
    Snapshot.TriggerPosition = static_cast<int32_t>(std::max(100 - behind, least));
}

void jTraceSettings::ReadBoardFile() {
    char buffer[ORN_SETTING_LENGTH + 1] = "";
    const bool stored = g_XTraceClient != nullptr &&
                        (g_XTraceClient->ReadSetting(ORN_SETTING_SECTION, ORN_SETTING_BOARD_FILE,
                                                     sizeof buffer, buffer) != 0);
    buffer[sizeof buffer - 1] = '\0';
    Snapshot.BoardFile = stored ? buffer : ORN_BOARD_UNKNOWN;
}
