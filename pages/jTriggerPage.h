// jTriggerPage: the tab "ETM Trace Settings".
//
// What is traced: which PC trace runs, between which addresses, and whether data
// values and addresses are captured. What the chip lacks is disabled; a Cortex-M3
// takes DWT comparators where others take PC addresses.
//
// Address comparators are scarce. The PC range, the data range and the ETM trigger
// of the General Control page compete for them, and this page settles a conflict by
// asking what to give up.
//
// Nothing reaches Working before CommitPage, but for a trigger that is given up.
//
// Where: jTriggerPage.cpp; who gets a comparator, in jTriggerPageConflicts.cpp.

#pragma once

#include <string>

#include "toolkit/CPropertyPage.h"

class jTriggerPage : public CPropertyPage {
public:
    jTriggerPage();

    bool OnApply() override;
    bool OnSetActive() override;
    bool OnKillActive() override;

protected:
    void DoDataExchange(CDataExchange& exchange) override;
    bool OnInitDialog() override;
    /// What OK means for a page alone. The sheet calls OnApply, whose base would come here.
    void OnOK() override;
    void OnCancel() override;
    void OnNotify(Notification& notification) override;

private:
    void OnTraceOptionChanged(Notification&);
    void OnAddressEditChanged(Notification&);

    void LoadFromSettings();
    /// The page to Working. False, behind a message and with Working as it was, if an
    /// address or a comparator index is bad.
    bool CommitPage();
    /// Evaluates what the selection needs, whatever the chip offers.
    void UpdateModeControls();

    /// The data mode that the check boxes stand for.
    int32_t DataMode() const;
    bool CheckAddresses(int32_t dataMode);

    /// Who needs an address comparator, as bits.
    unsigned ComparatorUses() const;
    bool AskConflict(const char* question);
    /// Both return false if the person keeps things as they were. A trigger that is given
    /// up leaves `uses`.
    bool SettleTriggerConflict(unsigned& uses);
    bool SettleDataRangeConflict(unsigned uses, bool limitChanged);

    int32_t m_DataValues = 0;
    int32_t m_DataAddresses = 0;
    int32_t m_LimitToRange = 0;
    std::string m_DataBeginText;
    std::string m_DataEndText;
    std::string m_PcBeginText;
    std::string m_PcEndText;
    int32_t m_PcMode = -1;
};
