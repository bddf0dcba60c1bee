// jTriggerPage: who gets the address comparators.
//
// With two pairs or more, the one rule is that the ETM trigger excludes address
// ranges. With one pair the data range excludes every other user, and the last click
// decides what the question offers to give up: what came later wins.

#include "pages/jTriggerPage.h"

#include "frame/slots.h"
#include "settings/jTraceSettings.h"

namespace {

constexpr unsigned kUsedByPc = 1;
constexpr unsigned kUsedByTrigger = 2;

constexpr const char* kRangeReason = "Cannot use PC and data address ranges in same time.";
constexpr const char* kTriggerReason =
    "Cannot use ETM trigger and data address range in same time.";

struct DataRangeConflict {
    const char* reason;
    const char* object; // what Yes gives up
};

constexpr DataRangeConflict kNewcomerIsPcMode = {kRangeReason, "data address range?"};
// The newcomer is the data range; the index is who else uses the pair.
constexpr DataRangeConflict kNewcomerIsDataRange[] = {
    {},
    {kRangeReason, "PC address range?"},
    {kTriggerReason, "ETM trigger?"},
    {kRangeReason, "ETM trigger and PC address range?"},
};

} // namespace

void jTriggerPage::OnTraceOptionChanged(Notification&) {
    const int32_t oldMode = m_PcMode;
    const int32_t oldLimit = m_LimitToRange;
    UpdateData(true);
    unsigned uses = ComparatorUses();
    if (!SettleTriggerConflict(uses)) {
        m_PcMode = oldMode;
        UpdateData(false);
        return;
    }
    if (!SettleDataRangeConflict(uses, m_LimitToRange != oldLimit)) {
        m_PcMode = oldMode;
        m_LimitToRange = oldLimit;
        UpdateData(false);
        return;
    }
    UpdateModeControls();
    SetModified(true);
}

unsigned jTriggerPage::ComparatorUses() const {
    unsigned uses = 0;
    if (m_PcMode >= PC_START) uses |= kUsedByPc;
    if (g_Settings->GetAttribute(TA_STOP_MODE) == STOP_AFTER_TRIGGER &&
        g_Settings->GetAttribute(TA_TRIGGER_ON_ADDRESS) != 0)
        uses |= kUsedByTrigger;
    return uses;
}

bool jTriggerPage::AskConflict(const char* question) {
    return MessageBox(question, "Conflicting Settings Used", MB_YESNO | MB_ICONQUESTION) == IDYES;
}

bool jTriggerPage::SettleTriggerConflict(unsigned& uses) {
    if (m_PcMode < PC_START_STOP || (uses & kUsedByTrigger) == 0) return true;
    if (!AskConflict("Address range cannot be used if ETM trigger is enabled.\n"
                     "Do you want to disable ETM trigger generation now?"))
        return false;
    g_Settings->SetAttribute(TA_TRIGGER_ON_ADDRESS, 0);
    uses &= ~kUsedByTrigger;
    return true;
}

bool jTriggerPage::SettleDataRangeConflict(unsigned uses, bool limitChanged) {
    if (uses == 0 || g_Settings->Working.AddressComparatorPairs >= 2 || m_LimitToRange == 0)
        return true;
    const DataRangeConflict& conflict =
        limitChanged ? kNewcomerIsDataRange[uses] : kNewcomerIsPcMode;
    const std::string question = std::string("Only one address comparator pair is available.\n") +
                                 conflict.reason + "\n\nDo you want to disable the " +
                                 conflict.object + "\n";
    if (!AskConflict(question.c_str())) return false;
    if (limitChanged) {
        g_Settings->SetAttribute(TA_TRIGGER_ON_ADDRESS, 0);
        m_PcMode = PC_ALL;
    } else {
        m_LimitToRange = 0;
    }
    UpdateData(false);
    return true;
}
