// jDWTPage: "DWT and ITM", a page that is built with the others but has no tab.
//
// Nothing stands behind its controls: no setting, no command.

#pragma once

#include "toolkit/CPropertyPage.h"

class jDWTPage : public CPropertyPage {
public:
    jDWTPage();

    bool OnSetActive() override;
    /// Refuses to leave the page in mode 2, with a message.
    bool OnKillActive() override;

protected:
    void DoDataExchange(CDataExchange& exchange) override;
    bool OnInitDialog() override;
    void OnNotify(Notification& notification) override;

private:
    void UpdateComparatorControls();
    void OnPcTraceModeChanged(Notification&) { UpdateComparatorControls(); }

    int32_t m_PcTraceMode = 1; // index of the radio button
    int32_t m_BeginComparator = 0;
    int32_t m_EndComparator = 1;
};
