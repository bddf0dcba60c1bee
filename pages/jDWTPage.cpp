#include "pages/jDWTPage.h"

#include "pages/enable_rules.h"
#include "toolkit/data_exchange.h"

namespace {

// The comparators that a PC trace mode needs.
constexpr auto StartsOnEvent = [](const int32_t& mode) { return mode == 2 || mode == 4; };
constexpr auto StopsOnEvent = [](const int32_t& mode) { return mode == 3 || mode == 4; };

constexpr EnableRule<int32_t> kDwtRules[] = {
    {1018, StartsOnEvent}, // Begin
    {1019, StopsOnEvent},  // End
};

} // namespace

jDWTPage::jDWTPage() : CPropertyPage(1002) {}

void jDWTPage::DoDataExchange(CDataExchange& exchange) {
    DDX_Radio(exchange, 1014, m_PcTraceMode);       // PC Tracing Mode
    DDX_CBIndex(exchange, 1018, m_BeginComparator); // Begin
    DDX_CBIndex(exchange, 1019, m_EndComparator);   // End
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
        {1014, Event::Clicked, &jDWTPage::OnPcTraceModeChanged}, // No PC Trace
        {1012, Event::Clicked, &jDWTPage::OnPcTraceModeChanged}, // Complete
        {1013, Event::Clicked, &jDWTPage::OnPcTraceModeChanged}, // Start on Event
        {1016, Event::Clicked, &jDWTPage::OnPcTraceModeChanged}, // Stop on Event
        {1015, Event::Clicked, &jDWTPage::OnPcTraceModeChanged}, // Start/Stop
    };
    Dispatch(*this, rows, notification);
}

void jDWTPage::UpdateComparatorControls() {
    UpdateData(true);
    ApplyRules(*this, kDwtRules, m_PcTraceMode);
}
