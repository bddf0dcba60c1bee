// jControlPage: the tab "General Control".
//
// Trace on and off, when capture stops, where the trigger sits in the buffer and
// what raises it. It is the one page with a live link to the target: a timer of
// 600 ms follows the trace engine's state word while the page is in front, and
// Start, Stop and Trigger Now act at once.
//
// The page holds no setting of its own. Its handlers write most changes through to
// Working at once; CommitPage stores them all when the page is left or applied.
//
// Being the first page, it is the one whose dialog always exists while the sheet is
// open. So it also runs the ETM Configuration dialog for those who ask for a board
// selection: at a tick (g_BoardQueryPending), or at once (RunConfigureDialog).
//
// Where: jControlPage.cpp; what its controls do, in jControlPageHandlers.cpp.

#pragma once

#include <optional>
#include <string>

#include "toolkit/CPropertyPage.h"

class jControlPage : public CPropertyPage {
public:
    jControlPage();
    ~jControlPage() override;

    /// Runs the modal ETM Configuration dialog over this page; g_ConfigAccepted tells
    /// how it ended. It answers a question that waits for a tick too. Returns false if
    /// one runs already.
    bool RunConfigureDialog();

    bool OnApply() override;
    bool OnSetActive() override;
    bool OnKillActive() override;
    void OnTimer(unsigned id) override;

protected:
    void DoDataExchange(CDataExchange& exchange) override;
    bool OnInitDialog() override;
    /// What OK means for a page alone. The sheet calls OnApply, whose base would come here.
    void OnOK() override;
    void OnCancel() override;
    void OnDestroy() override;
    void OnNotify(Notification& notification) override;

private:
    // Handlers of the controls.
    void OnEnableEtm(Notification&);
    void OnStopModeChanged(Notification&);
    void OnAccumulate(Notification&);
    void OnManualMode(Notification&);
    void OnTriggerPin(Notification&);
    void OnTriggerOnAddress(Notification&);
    void OnConfigure(Notification&);
    void OnStart(Notification&);
    void OnStop(Notification&);
    void OnTriggerNow(Notification&);
    void OnSliderCustomDraw(Notification& notification);
    void OnSliderChanged(Notification& notification);
    void OnPositionEditChanged(Notification&);

    /// Working to the page; `first`: the slider is set up, too.
    void LoadFromSettings(bool first);
    /// The page to Working. False, behind a message, for a bad trigger address;
    /// only TA_ENABLE is stored then.
    bool CommitPage();
    /// Evaluates the enable rules; `running`: capture is running.
    void UpdateControls(bool running);
    void RefreshFromState();
    /// The state word; nothing if the host fails to tell, which is reported once.
    std::optional<uint32_t> ReadState();
    void FollowState();
    void ServeBoardQuery();
    bool InitBoardFile(std::string& error);
    bool CommitAndSend(const char* command);
    void FollowStartStop();
    void StopTimer();
    bool TriggersOnAddress() const;

    int32_t m_Enable = 0;
    int32_t m_Accumulate = 0;
    int32_t m_ManualMode = 0;
    int32_t m_TriggerPin = 0;
    int32_t m_TriggerOnAddress = 0;
    int32_t m_StopMode = -1;
    std::string m_TriggerPositionText;
    std::string m_TriggerAddressText;
    uint32_t m_TimerId = 0;       // 0: no timer runs
    int32_t m_LastStateBit = 0;   // bit 1 of the state word when last looked at
    int32_t m_Active = 0;         // the page is in front
    int32_t m_StartStopStale = 0; // Start and Stop have to follow the state word
    bool m_Configuring = false;   // the ETM Configuration dialog runs
    bool m_StateFailed = false;   // the host could not tell its state, and the person knows

    CSliderCtrl* m_Slider = nullptr;
};
