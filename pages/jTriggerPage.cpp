#include "pages/jTriggerPage.h"

#include "frame/interfaces/IOrnVETMTrace.h"
#include "frame/slots.h"
#include "pages/CheckComparatorIndex.h"
#include "pages/enable_rules.h"
#include "pages/trace_engine.h"
#include "settings/jTraceSettings.h"
#include "text/ValidateAddress.h"
#include "toolkit/data_exchange.h"

namespace {

// --- What the chip offers ---------------------------------------------------------

struct ChipFacts {
    bool cortexM3 = false;
    bool rangeHw = false; // address ranges for the PC
    bool dataHw = false;  // data trace
};

constexpr auto CortexM3 = [](const ChipFacts& f) { return f.cortexM3; };
constexpr auto StartHw = [](const ChipFacts& f) { return f.cortexM3 || f.rangeHw; };
constexpr auto RangeHw = [](const ChipFacts& f) { return f.rangeHw; };
constexpr auto DataHw = [](const ChipFacts& f) { return f.dataHw; };

constexpr EnableRule<ChipFacts> kChipRules[] = {
    {1011, Always},   // Program Counter (PC) Tracing Mode
    {1030, CortexM3}, //   none
    {1012, Always},   //   complete
    {1013, StartHw},  //   start at an address
    {1015, StartHw},  //   start and stop
    {1017, RangeHw},  //   within a range
    {1022, Always},   //   advanced
    {1028, StartHw},  //   label of Begin
    {1020, StartHw},  //   label of End
    {1025, DataHw},   // Data Tracing Mode
    {1026, DataHw},   //   values
    {1027, DataHw},   //   addresses
    {1029, DataHw},   //   label of Begin
    {1021, DataHw},   //   label of End
};

ChipFacts GetChipFacts() {
    const jTraceState& state = g_Settings->Working;
    ChipFacts facts;
    facts.cortexM3 = HasFeature(ORN_FEATURE_CORTEX_M3);
    facts.rangeHw = state.ArchVersion >= 12 && state.AddressComparatorPairs > 0;
    facts.dataHw = state.DataComparators > 0 || state.AddressComparatorPairs > 0;
    return facts;
}

// --- What the selection needs -------------------------------------------------------

struct Selection {
    int32_t pcMode;
    bool data;         // values or addresses
    bool limitToRange; // to the data address range
    bool pairs;        // the chip has address comparators
};

bool UsesPcBegin(int32_t pcMode) {
    return pcMode >= PC_START && pcMode <= PC_RANGE;
}
bool UsesPcEnd(int32_t pcMode) {
    return pcMode == PC_START_STOP || pcMode == PC_RANGE;
}

constexpr auto NeedsPcBegin = [](const Selection& s) { return UsesPcBegin(s.pcMode); };
constexpr auto NeedsPcEnd = [](const Selection& s) { return UsesPcEnd(s.pcMode); };
constexpr auto Advanced = [](const Selection& s) { return s.pcMode == PC_COMPLEX; };
constexpr auto CanLimit = [](const Selection& s) { return s.pairs && s.data; };
constexpr auto NeedsDataRange = [](const Selection& s) { return s.data && s.limitToRange; };

constexpr EnableRule<Selection> kPcModeRules[] = {
    {1018, NeedsPcBegin}, // PC: Begin
    {1019, NeedsPcEnd},   // End
    {1023, Advanced},     // Advanced ...
};
constexpr int32_t kLastPcModeWithRules = PC_COMPLEX;

constexpr EnableRule<Selection> kDataRules[] = {
    {1075, CanLimit},       // Limit to Range
    {1014, NeedsDataRange}, // data: Begin
    {1016, NeedsDataRange}, // End
};

} // namespace

jTriggerPage::jTriggerPage() : CPropertyPage(108) {}

void jTriggerPage::DoDataExchange(CDataExchange& exchange) {
    DDX_Check(exchange, 1026, m_DataValues);    // Capture Data Values
    DDX_Check(exchange, 1027, m_DataAddresses); // Capture Data Addresses
    DDX_Check(exchange, 1075, m_LimitToRange);  // Limit to Range
    DDX_Text(exchange, 1014, m_DataBeginText);  // data: Begin
    DDX_Text(exchange, 1016, m_DataEndText);    // End
    DDX_Text(exchange, 1018, m_PcBeginText);    // PC: Begin
    DDX_Text(exchange, 1019, m_PcEndText);      // End
    DDX_Radio(exchange, 1030, m_PcMode);        // PC Tracing Mode
}

void jTriggerPage::OnNotify(Notification& notification) {
    // No row for 1023, which is never shown.
    static constexpr MessageRow<jTriggerPage> rows[] = {
        {1030, Event::Clicked, &jTriggerPage::OnTraceOptionChanged},     // PC: none
        {1012, Event::Clicked, &jTriggerPage::OnTraceOptionChanged},     // complete
        {1013, Event::Clicked, &jTriggerPage::OnTraceOptionChanged},     // start at an address
        {1015, Event::Clicked, &jTriggerPage::OnTraceOptionChanged},     // start and stop
        {1017, Event::Clicked, &jTriggerPage::OnTraceOptionChanged},     // within a range
        {1022, Event::Clicked, &jTriggerPage::OnTraceOptionChanged},     // advanced
        {1026, Event::Clicked, &jTriggerPage::OnTraceOptionChanged},     // Capture Data Values
        {1027, Event::Clicked, &jTriggerPage::OnTraceOptionChanged},     // Capture Data Addresses
        {1075, Event::Clicked, &jTriggerPage::OnTraceOptionChanged},     // Limit to Range
        {1014, Event::TextChanged, &jTriggerPage::OnAddressEditChanged}, // data: Begin
        {1016, Event::TextChanged, &jTriggerPage::OnAddressEditChanged}, // End
        {1018, Event::TextChanged, &jTriggerPage::OnAddressEditChanged}, // PC: Begin
        {1019, Event::TextChanged, &jTriggerPage::OnAddressEditChanged}, // End
    };
    Dispatch(*this, rows, notification);
}

void jTriggerPage::OnAddressEditChanged(Notification&) {
    SetModified(true);
}

// --- Between the page and the settings -------------------------------------------------

bool jTriggerPage::OnInitDialog() {
    CPropertyPage::OnInitDialog();
    LoadFromSettings();
    return true;
}

void jTriggerPage::LoadFromSettings() {
    const jTraceState& state = g_Settings->Working;
    m_PcMode = g_Settings->GetAttribute(TA_PC_MODE);
    m_PcBeginText = state.PcBegin;
    m_PcEndText = state.PcEnd;
    const int32_t dataMode = g_Settings->GetAttribute(TA_DATA_MODE);
    m_DataAddresses = (dataMode & DATA_ADDRESSES) != 0 ? 1 : 0;
    m_DataValues = (dataMode & DATA_VALUES) != 0 ? 1 : 0;
    m_LimitToRange = (dataMode & DATA_IN_RANGE) != 0 ? 1 : 0;
    m_DataBeginText = state.DataBegin;
    m_DataEndText = state.DataEnd;
    UpdateData(false);
    UpdateModeControls();
}

int32_t jTriggerPage::DataMode() const {
    int32_t mode = 0;
    if (m_DataAddresses != 0) mode |= DATA_ADDRESSES;
    if (m_DataValues != 0) mode |= DATA_VALUES;
    // A range with nothing to capture in it is dropped.
    if (mode != 0 && m_LimitToRange != 0) mode |= DATA_IN_RANGE;
    return mode;
}

/// The data range takes addresses on every chip, the PC fields comparators on a
/// Cortex-M3.
bool jTriggerPage::CheckAddresses(int32_t dataMode) {
    const bool cortexM3 = HasFeature(ORN_FEATURE_CORTEX_M3);
    const auto isAddress = [this](const std::string& text) {
        return ValidateAddress(this, text.c_str());
    };
    const auto isPcField = [&](const std::string& text) {
        return cortexM3 ? CheckComparatorIndex(*this, text.c_str()) : isAddress(text);
    };
    if ((dataMode & DATA_IN_RANGE) != 0 &&
        !(isAddress(m_DataBeginText) && isAddress(m_DataEndText)))
        return false;
    if (UsesPcBegin(m_PcMode) && !isPcField(m_PcBeginText)) return false;
    return !UsesPcEnd(m_PcMode) || isPcField(m_PcEndText);
}

bool jTriggerPage::CommitPage() {
    UpdateData(true);
    if (g_Settings->GetAttribute(TA_ENABLE) == 0) return true;
    const int32_t dataMode = DataMode();
    if (!CheckAddresses(dataMode)) return false;
    jTraceState& state = g_Settings->Working;
    if (UsesPcBegin(m_PcMode)) state.PcBegin = m_PcBeginText;
    if (UsesPcEnd(m_PcMode)) state.PcEnd = m_PcEndText;
    g_Settings->SetAttribute(TA_PC_MODE, m_PcMode);
    g_Settings->SetAttribute(TA_DATA_MODE, dataMode);
    if ((dataMode & DATA_IN_RANGE) != 0) {
        state.DataBegin = m_DataBeginText;
        state.DataEnd = m_DataEndText;
    }
    return true;
}

bool jTriggerPage::OnKillActive() {
    return CommitPage() && CPropertyPage::OnKillActive();
}

bool jTriggerPage::OnApply() {
    if (!CommitPage()) return false;
    g_Settings->ApplyToTarget();
    LoadFromSettings();
    SetModified(false);
    return true;
}

void jTriggerPage::OnOK() {
    if (!CommitPage()) return;
    g_Settings->ApplyToTarget();
    SetModified(false);
    CPropertyPage::OnOK();
}

void jTriggerPage::OnCancel() {
    g_Settings->DiscardChanges();
    CPropertyPage::OnCancel();
}

// --- What can be used -----------------------------------------------------------------------

bool jTriggerPage::OnSetActive() {
    if (g_Settings->GetAttribute(TA_ENABLE) == 0) {
        ShowNote(*this, 1083, nullptr);
        DisableAll(*this, kChipRules);
        DisableAll(*this, kPcModeRules);
        DisableAll(*this, kDataRules);
        return CPropertyPage::OnSetActive();
    }
    const ChipFacts facts = GetChipFacts();
    ShowNote(*this, 1083,
             facts.cortexM3 ? "For Cortex-M3 use DWT comparator index (0..3)\r\n"
                              "in Begin and End address fields."
                            : nullptr);
    ApplyRules(*this, kChipRules, facts);
    UpdateData(true);
    UpdateModeControls();
    return CPropertyPage::OnSetActive();
}

void jTriggerPage::UpdateModeControls() {
    const Selection selection{m_PcMode, m_DataValues != 0 || m_DataAddresses != 0,
                              m_LimitToRange != 0, g_Settings->Working.AddressComparatorPairs > 0};
    // "Do not capture PC Trace" leaves its fields as they were.
    if (m_PcMode >= PC_NONE && m_PcMode <= kLastPcModeWithRules)
        ApplyRules(*this, kPcModeRules, selection);
    EnableControl(*this, 1083, UsesPcBegin(m_PcMode));
    ApplyRules(*this, kDataRules, selection);
    UpdateData(false);
}
