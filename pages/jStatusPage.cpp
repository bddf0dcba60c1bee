#include "pages/jStatusPage.h"

#include "frame/interfaces/IOrnVETMTrace.h"
#include "frame/slots.h"
#include "pages/FormatCapabilityReport.h"
#include "settings/ReportStream.h"
#include "text/shown_text.h"
#include "toolkit/data_exchange.h"

namespace {

constexpr size_t kShownReport = 256 * 1024; // bytes

/// The measure of a control's font; empty if there is nothing to measure with.
TextMeasure MeasureOf(const CWnd& control) {
    int width = 0;
    if (!control.MeasureTabbedText("", width)) return {};
    return [&control](std::string_view text) {
        int pixels = 0;
        control.MeasureTabbedText(text, pixels);
        return static_cast<int16_t>(pixels);
    };
}

} // namespace

jStatusPage::jStatusPage() : CPropertyPage(106) {}

void jStatusPage::DoDataExchange(CDataExchange& exchange) {
    DDX_Text(exchange, 1038, m_InfoText);      // Emulator/ETB Info
    DDX_Text(exchange, 1063, m_ResourcesText); // ETM Resources
    DDX_Check(exchange, 1064, m_HiddenCheck);  // out of sight
}

bool jStatusPage::OnInitDialog() {
    CPropertyPage::OnInitDialog();
    if (g_VETMTrace != nullptr) {
        if (const char* info = g_VETMTrace->GetInfoText(0))
            m_InfoText = ShownText(info, kShownLine);
        m_ResourcesText = ReadResources();
    }
    UpdateData(false);
    return true;
}

std::string jStatusPage::ReadResources() const {
    ReportStream report;
    if (const char* refusal = g_VETMTrace->Command("capability", &report))
        return "ERROR: " + ShownText(refusal, kShownLine);
    const std::string shown = ShownLines(report.GetText(), kShownReport, kShownLine);
    return FormatCapabilityReport(shown, MeasureOf(*GetDlgItem(1063)));
}
