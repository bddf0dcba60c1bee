// What the controls of jControlPage do.

#include "pages/jControlPage.h"

#include <cstdlib>
#include <memory>

#include "board/jConfigureETM.h"
#include "frame/interfaces/IOrnKVETMSupp.h"
#include "frame/slots.h"
#include "pages/enable_rules.h"
#include "pages/trace_engine.h"
#include "settings/jTraceSettings.h"

namespace {

// From this PC mode on, PC trace takes the address comparators.
constexpr int32_t kFirstRangePcMode = PC_START_STOP;

} // namespace

bool jControlPage::RunConfigureDialog() {
    if (m_Configuring) return false;
    struct Configuring {
        bool& flag;
        explicit Configuring(bool& runs) : flag(runs) { flag = true; }
        ~Configuring() { flag = false; }
    } configuring(m_Configuring);
    g_BoardQueryPending = 0; // first, or a tick during the dialog asks again
    const auto dialog = std::make_unique<jConfigureETM>(this);
    if (dialog->DoModal() == IDOK && g_Settings->IsModified()) SetModified(true);
    return true;
}

/// Pressed before the tick that would have asked for a board, the button asks for it: the
/// person meets one dialog, and the sheet closes behind it.
void jControlPage::OnConfigure(Notification&) {
    if (g_BoardQueryPending != 0)
        ServeBoardQuery();
    else
        RunConfigureDialog();
}

/// Has the board selection settled; true, too, if nobody can settle it.
bool jControlPage::InitBoardFile(std::string& error) {
    auto* support = static_cast<IOrnKVETMSupp*>(AskControl(ORN_KVETM_SUPP));
    if (support == nullptr) return true;
    char text[512] = "";
    int32_t mode = -1;
    if (support->InitBoardFile("", text, sizeof text, &mode)) return true;
    support->GetLastError(text, sizeof text);
    error = text;
    return false;
}

void jControlPage::OnEnableEtm(Notification&) {
    UpdateData(true);
    std::string error;
    if (m_Enable != 0 && !InitBoardFile(error)) {
        m_Enable = 0;
        UpdateData(false);
        UpdateControls(false); // a tick during the dialog has seen the box checked
        if (error.empty()) error = "InitBoardFile() failed.";
        // Clear means that the person cancelled the dialog and needs no message.
        if (g_ConfigAccepted != 0) AfxMessageBox(error.c_str(), MB_ICONHAND);
        return;
    }
    g_Settings->SetAttribute(TA_ENABLE, m_Enable);
    RefreshFromState();
    SetModified(true);
}

void jControlPage::OnStopModeChanged(Notification&) {
    UpdateData(true);
    g_Settings->SetAttribute(TA_STOP_MODE, m_StopMode);
    RefreshFromState();
    SetModified(true);
}

void jControlPage::OnAccumulate(Notification&) {
    UpdateData(true);
    g_Settings->SetAttribute(TA_ACCUMULATE, m_Accumulate);
    SetModified(true);
}

void jControlPage::OnManualMode(Notification&) {
    UpdateData(true);
    g_Settings->SetAttribute(TA_MANUAL_MODE, m_ManualMode);
    SetModified(true);
}

void jControlPage::OnTriggerPin(Notification&) {
    UpdateData(true);
    g_Settings->SetAttribute(TA_TRIGGER_PIN, m_TriggerPin);
    SetModified(true);
}

void jControlPage::OnTriggerOnAddress(Notification&) {
    UpdateData(true);
    if (m_TriggerOnAddress != 0 && g_Settings->GetAttribute(TA_PC_MODE) >= kFirstRangePcMode) {
        MessageBox("ETM trigger cannot be enabled if PC address range is in use.\n"
                   "Click ETM Trace Settings and change PC Tracing Mode.",
                   "Conflicting Settings Used", MB_OK | MB_ICONEXCLAMATION);
        m_TriggerOnAddress = 0;
        EnableControl(*this, 1077, false);
        UpdateData(false);
        return;
    }
    g_Settings->SetAttribute(TA_TRIGGER_ON_ADDRESS, m_TriggerOnAddress);
    EnableControl(*this, 1077, m_TriggerOnAddress != 0);
    SetModified(true);
}

bool jControlPage::CommitAndSend(const char* command) {
    if (!CommitPage()) return false;
    g_Settings->ApplyToTarget();
    SendCommand(command);
    return true;
}

/// Start and Stop follow the state word without waiting for the next tick.
void jControlPage::FollowStartStop() {
    m_StartStopStale = 1;
    OnTimer(m_TimerId);
}

void jControlPage::OnStart(Notification&) {
    if (CommitAndSend("start")) FollowStartStop();
}

void jControlPage::OnStop(Notification&) {
    if (CommitAndSend("stop")) FollowStartStop();
}

void jControlPage::OnTriggerNow(Notification&) {
    CommitAndSend("trigger force");
}

// --- The trigger position: one value, shown by slider and edit -----------------------------

void jControlPage::OnSliderCustomDraw(Notification& notification) {
    // The edit follows the thumb while it is dragged.
    if (notification.drawStage == CDDS_PREPAINT) OnSliderChanged(notification);
    notification.result = 0; // the slider draws itself
}

void jControlPage::OnSliderChanged(Notification& notification) {
    notification.result = 0;
    UpdateData(true);
    const int32_t position = m_Slider->GetPos();
    if (g_Settings->GetAttribute(TA_TRIGGER_POSITION) == position) return;
    g_Settings->SetAttribute(TA_TRIGGER_POSITION, position);
    m_TriggerPositionText = std::to_string(position);
    UpdateData(false);
    SetModified(true);
}

void jControlPage::OnPositionEditChanged(Notification&) {
    UpdateData(true);
    const char* text = m_TriggerPositionText.c_str();
    char* end = nullptr;
    long number = std::strtol(text, &end, 10);
    if (end == text) return MessageBeep(MB_ICONHAND);
    if (number < 0 || number > 100) {
        number = 50;
        m_TriggerPositionText = "50";
    }
    const auto position = static_cast<int32_t>(number);
    m_Slider->SetPos(position);
    g_Settings->SetAttribute(TA_TRIGGER_POSITION, position);
    UpdateData(false);
    SetModified(true);
}
