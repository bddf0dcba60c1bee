#include "pages/jControlPage.h"

#include <utility>

#include "frame/interfaces/IOrnVETMTrace.h"
#include "frame/slots.h"
#include "pages/enable_rules.h"
#include "pages/jMainPropSheet.h"
#include "pages/trace_engine.h"
#include "settings/jTraceSettings.h"
#include "text/ValidateAddress.h"
#include "toolkit/data_exchange.h"

namespace {

constexpr unsigned kTimerPeriod = 600; // milliseconds

// --- What can be used -----------------------------------------------------------

// While ETM is enabled; otherwise nothing can be used but the box that enables it.
struct Facts {
    bool etb = false;
    bool tpiu = false;
    bool afterTrigger = false; // capture stops after the trigger
    bool onAddress = false;    // an address raises the trigger
    bool running = false;      // capture is running
    bool Full() const { return !etb && !tpiu; }
};

constexpr auto NotEtb = [](const Facts& f) { return !f.etb; };
constexpr auto NotTpiu = [](const Facts& f) { return !f.tpiu; };
constexpr auto Full = [](const Facts& f) { return f.Full(); };
constexpr auto AfterTrigger = [](const Facts& f) { return f.afterTrigger; };
constexpr auto AfterTriggerFull = [](const Facts& f) { return f.afterTrigger && f.Full(); };
constexpr auto AfterTriggerOrFull = [](const Facts& f) { return f.afterTrigger || f.Full(); };
constexpr auto OnAddress = [](const Facts& f) { return f.afterTrigger && f.onAddress; };
constexpr auto Running = [](const Facts& f) { return f.running; };
constexpr auto NotRunning = [](const Facts& f) { return !f.running; };

constexpr EnableRule<Facts> kControlRules[] = {
    {1029, Always},             // Configure ETM ...
    {1036, Always},             // Stop Trace Capture
    {1061, Always},             //   only when the processor is stopped
    {1034, NotEtb},             //   when the buffer is full
    {1035, NotTpiu},            //   after the trigger
    {1006, Full},               // Trigger Now
    {1003, AfterTrigger},       // Trigger Settings
    {1032, AfterTriggerOrFull}, //   the position: label,
    {1007, AfterTriggerOrFull}, //   slider
    {1008, AfterTriggerOrFull}, //   and edit
    {1005, AfterTrigger},       //   ETM Trigger on Address
    {1077, OnAddress},          //   the address
    {1004, AfterTriggerFull},   //   Observe External Trigger Pin
    {1002, Always},             // Accumulate
    {1009, Always},             // Manual Start/Stop Mode
    {1030, NotRunning},         // Start
    {1031, Running},            // Stop
};

const char* NoteFor(const Facts& facts) {
    if (facts.etb) return "Some controls are\r\ndisabled for ETB";
    if (facts.tpiu) return "Trigger controls are\r\ndisabled for TPIU";
    return nullptr;
}

} // namespace

jControlPage::jControlPage() : CPropertyPage(107) {}

jControlPage::~jControlPage() {
    StopTimer();
}

void jControlPage::DoDataExchange(CDataExchange& exchange) {
    DDX_Control(exchange, 1007, m_Slider);
    DDX_Check(exchange, 1000, m_Enable);             // Enable ETM
    DDX_Check(exchange, 1002, m_Accumulate);         // Accumulate
    DDX_Check(exchange, 1009, m_ManualMode);         // Manual Start/Stop
    DDX_Check(exchange, 1004, m_TriggerPin);         // Observe External Trigger Pin
    DDX_Check(exchange, 1005, m_TriggerOnAddress);   // ETM Trigger on Address
    DDX_Radio(exchange, 1061, m_StopMode);           // Stop Trace Capture
    DDX_Text(exchange, 1008, m_TriggerPositionText); // position: edit
    DDX_Text(exchange, 1077, m_TriggerAddressText);  // the address
}

void jControlPage::OnNotify(Notification& notification) {
    // No row for a change of 1077: typing an address alone does not call for Apply.
    static constexpr MessageRow<jControlPage> rows[] = {
        {1000, Event::Clicked, &jControlPage::OnEnableEtm},        // Enable ETM
        {1061, Event::Clicked, &jControlPage::OnStopModeChanged},  // stop only with the processor
        {1034, Event::Clicked, &jControlPage::OnStopModeChanged},  // when the buffer is full
        {1035, Event::Clicked, &jControlPage::OnStopModeChanged},  // after the trigger
        {1002, Event::Clicked, &jControlPage::OnAccumulate},       // Accumulate
        {1009, Event::Clicked, &jControlPage::OnManualMode},       // Manual Start/Stop
        {1004, Event::Clicked, &jControlPage::OnTriggerPin},       // Observe External Trigger Pin
        {1005, Event::Clicked, &jControlPage::OnTriggerOnAddress}, // ETM Trigger on Address
        {1029, Event::Clicked, &jControlPage::OnConfigure},        // Configure ETM ...
        {1030, Event::Clicked, &jControlPage::OnStart},            // Start
        {1031, Event::Clicked, &jControlPage::OnStop},             // Stop
        {1006, Event::Clicked, &jControlPage::OnTriggerNow},       // Trigger Now
        {1007, Event::CustomDraw, &jControlPage::OnSliderCustomDraw},     // position: slider
        {1007, Event::ReleasedCapture, &jControlPage::OnSliderChanged},   // position: slider
        {1008, Event::TextChanged, &jControlPage::OnPositionEditChanged}, // position: edit
    };
    Dispatch(*this, rows, notification);
}

// --- Between the page and the settings ---------------------------------------------

bool jControlPage::OnInitDialog() {
    CPropertyPage::OnInitDialog();
    LoadFromSettings(true);
    m_TimerId = 1;
    SetTimer(m_TimerId, kTimerPeriod);
    return true;
}

void jControlPage::LoadFromSettings(bool first) {
    m_Enable = g_Settings->GetAttribute(TA_ENABLE);
    m_StopMode = g_Settings->GetAttribute(TA_STOP_MODE);
    m_TriggerPin = g_Settings->GetAttribute(TA_TRIGGER_PIN);
    m_TriggerOnAddress = g_Settings->GetAttribute(TA_TRIGGER_ON_ADDRESS);
    const int32_t position = g_Settings->GetAttribute(TA_TRIGGER_POSITION);
    m_TriggerPositionText = std::to_string(position);
    if (first) {
        m_Slider->SetRange(0, 100);
        m_Slider->SetPageSize(25);
        m_Slider->SetLineSize(1);
        m_Slider->ClearTics();
        m_Slider->SetTicFreq(25);
    }
    m_Slider->SetPos(position);
    m_Accumulate = g_Settings->GetAttribute(TA_ACCUMULATE);
    m_ManualMode = g_Settings->GetAttribute(TA_MANUAL_MODE);
    m_TriggerAddressText = g_Settings->Working.TriggerAddress;
    UpdateData(false);
    RefreshFromState();
}

bool jControlPage::TriggersOnAddress() const {
    return m_StopMode == STOP_AFTER_TRIGGER && m_TriggerOnAddress != 0;
}

bool jControlPage::CommitPage() {
    UpdateData(true);
    g_Settings->SetAttribute(TA_ENABLE, m_Enable);
    if (m_Enable == 0) return true;
    if (TriggersOnAddress() && !ValidateAddress(this, m_TriggerAddressText.c_str())) return false;
    g_Settings->SetAttribute(TA_STOP_MODE, m_StopMode);
    g_Settings->SetAttribute(TA_ACCUMULATE, m_Accumulate);
    g_Settings->SetAttribute(TA_TRIGGER_PIN, m_TriggerPin);
    g_Settings->SetAttribute(TA_TRIGGER_ON_ADDRESS, m_TriggerOnAddress);
    // The slider counts: the edit may be empty.
    g_Settings->SetAttribute(TA_TRIGGER_POSITION, m_Slider->GetPos());
    g_Settings->SetAttribute(TA_MANUAL_MODE, m_ManualMode);
    if (TriggersOnAddress()) g_Settings->Working.TriggerAddress = m_TriggerAddressText;
    return true;
}

bool jControlPage::OnSetActive() {
    m_Active = 1;
    // The ETM Trace Settings page may have given up the trigger.
    m_TriggerOnAddress = g_Settings->GetAttribute(TA_TRIGGER_ON_ADDRESS);
    EnableControl(*this, 1077, m_Enable != 0 && TriggersOnAddress());
    return CPropertyPage::OnSetActive();
}

bool jControlPage::OnKillActive() {
    if (!CommitPage()) return false;
    m_Active = 0;
    return CPropertyPage::OnKillActive();
}

bool jControlPage::OnApply() {
    if (!CommitPage()) return false;
    g_Settings->ApplyToTarget();
    LoadFromSettings(false);
    SetModified(false);
    return true;
}

void jControlPage::OnOK() {
    if (!CommitPage()) return;
    g_Settings->ApplyToTarget();
    SetModified(false);
    StopTimer();
    CPropertyPage::OnOK();
}

void jControlPage::OnCancel() {
    g_Settings->DiscardChanges();
    StopTimer();
    CPropertyPage::OnCancel();
}

void jControlPage::OnDestroy() {
    StopTimer();
    CPropertyPage::OnDestroy();
}

void jControlPage::StopTimer() {
    if (m_TimerId == 0) return;
    KillTimer(m_TimerId);
    m_TimerId = 0;
}

// --- Following the target --------------------------------------------------------------

void jControlPage::UpdateControls(bool running) {
    if (m_Enable == 0) { // the host is not asked
        ShowNote(*this, 1083, nullptr);
        DisableAll(*this, kControlRules);
        return;
    }
    Facts facts;
    facts.etb = HasFeature(ORN_FEATURE_ETB);
    facts.tpiu = !facts.etb && HasFeature(ORN_FEATURE_TPIU);
    facts.afterTrigger = m_StopMode == STOP_AFTER_TRIGGER;
    facts.onAddress = m_TriggerOnAddress != 0;
    facts.running = running;
    ShowNote(*this, 1083, NoteFor(facts));
    ApplyRules(*this, kControlRules, facts);
}

std::optional<uint32_t> jControlPage::ReadState() {
    try {
        return GetTraceState();
    } catch (...) {
        if (std::exchange(m_StateFailed, true)) return std::nullopt;
        throw; // becomes a message, which a box at every tick would be too many
    }
}

void jControlPage::RefreshFromState() {
    const uint32_t state = ReadState().value_or(0);
    UpdateControls((state & ORN_STATE_RUNNING) != 0);
    m_LastStateBit = (state & ORN_STATE_LOOK_AGAIN) != 0 ? 1 : 0;
}

void jControlPage::OnTimer(unsigned id) {
    if (m_Active != 0) {
        FollowState();
        if (g_BoardQueryPending != 0) ServeBoardQuery();
    }
    CPropertyPage::OnTimer(id);
}

/// Running alone is not followed: Start and Stop change when bit 1 does, or behind a
/// press on one of them.
void jControlPage::FollowState() {
    const std::optional<uint32_t> state = ReadState();
    if (!state) return;
    const bool running = (*state & ORN_STATE_RUNNING) != 0;
    const int32_t bit = (*state & ORN_STATE_LOOK_AGAIN) != 0 ? 1 : 0;
    if (bit != m_LastStateBit) {
        UpdateControls(running);
        m_LastStateBit = bit;
    } else if (m_StartStopStale != 0) {
        EnableControl(*this, 1030, m_Enable != 0 && !running);
        EnableControl(*this, 1031, m_Enable != 0 && running);
        m_StartStopStale = 0;
    }
}

/// The sheet was opened only to ask for a board file: it closes with the dialog.
void jControlPage::ServeBoardQuery() {
    RunConfigureDialog();
    if (g_ConfigAccepted != 0) {
        m_Enable = 1;
        UpdateData(false);
        g_Settings->ApplyToTarget();
        SetModified(false);
        StopTimer();
        g_MainSheet->PressButton(PSBTN_OK);
    } else {
        g_Settings->DiscardChanges();
        g_MainSheet->PressButton(PSBTN_CANCEL);
    }
}
