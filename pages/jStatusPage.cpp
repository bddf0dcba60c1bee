#include "pages/jStatusPage.h"

#include <sstream>

#include "frame/interfaces/IOrnVETMTrace.h"
#include "frame/slots.h"
#include "pages/FormatCapabilityReport.h"
#include "toolkit/CWinApp.h"
#include "toolkit/data_exchange.h"

namespace {

/// The measure of a control's font; empty if there is nothing to measure with.
TextMeasure MeasureOf(const CWnd* control) {
    int width = 0;
    Display& display = AfxGetApp()->GetDisplay();
    if (control == nullptr || !display.MeasureTabbedText(*control, "", width)) return {};
    return [control, &display](std::string_view text) {
        int pixels = 0;
        display.MeasureTabbedText(*control, text, pixels);
        return static_cast<int16_t>(pixels);
    };
}

} // namespace

jStatusPage::jStatusPage() : CPropertyPage(106) {}

void jStatusPage::DoDataExchange(CDataExchange& exchange) {
    DDX_Text(exchange, 1038, m_InfoText);
    DDX_Text(exchange, 1063, m_ResourcesText);
    DDX_Check(exchange, 1064, m_HiddenCheck);
}

bool jStatusPage::OnInitDialog() {
    CPropertyPage::OnInitDialog();
    if (g_VETMTrace != nullptr) {
        if (const char* info = g_VETMTrace->GetInfoText(0)) m_InfoText = info;
        m_ResourcesText = ReadResources();
    }
    UpdateData(false);
    return true;
}

std::string jStatusPage::ReadResources() const {
    std::ostringstream report;
    if (const char* refusal = g_VETMTrace->Command("capability", &report))
        return std::string("ERROR: ") + refusal;
    return FormatCapabilityReport(report.str(), MeasureOf(GetDlgItem(1063)));
}
