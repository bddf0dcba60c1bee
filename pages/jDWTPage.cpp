#include "pages/jDWTPage.h"

#include "pages/enable_rules.h"
#include "toolkit/data_exchange.h"

namespace {

// The comparators that a PC trace mode needs.
constexpr auto StartsOnEvent = [](const int32_t& mode) { return mode == 2 || mode == 4; };
constexpr auto StopsOnEvent = [](const int32_t& mode) { return mode == 3 || mode == 4; };

constexpr EnableRule<int32_t> kRules[] = {
    {1018, StartsOnEvent},
    {1019, StopsOnEvent},
};

} // namespace

jDWTPage::jDWTPage() : CPropertyPage(1002) {}

void jDWTPage::DoDataExchange(CDataExchange& exchange) {
    DDX_Radio(exchange, 1014, m_PcTraceMode);
    DDX_CBIndex(exchange, 1018, m_BeginComparator);
    DDX_CBIndex(exchange, 1019, m_EndComparator);
}

bool jDWTPage::OnInitDialog() {
    CPropertyPage::OnInitDialog();
    UpdateComparatorControls();
    return true;
}

bool jDWTPage::OnSetActive() {
    return CPropertyPage::OnSetActive();
}

bool jDWTPage::OnKillActive() {
    UpdateData(true);
    if (m_PcTraceMode == 2) {
        MessageBox("Simulation of error in DWT triggers", nullptr, MB_OK);
        return false;
    }
    return CPropertyPage::OnKillActive();
}

void jDWTPage::OnNotify(Notification& notification) {
    static constexpr MessageRow<jDWTPage> rows[] = {
        {1014, Event::Clicked, &jDWTPage::OnPcTraceModeChanged},
        {1012, Event::Clicked, &jDWTPage::OnPcTraceModeChanged},
        {1013, Event::Clicked, &jDWTPage::OnPcTraceModeChanged},
        {1016, Event::Clicked, &jDWTPage::OnPcTraceModeChanged},
        {1015, Event::Clicked, &jDWTPage::OnPcTraceModeChanged},
    };
    Dispatch(*this, rows, notification);
}

void jDWTPage::UpdateComparatorControls() {
    UpdateData(true);
    ApplyRules(*this, kRules, m_PcTraceMode);
}
