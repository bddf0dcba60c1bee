// The tab "Status", and the layout of its report.

#include "pages/FormatCapabilityReport.h"
#include "tests/pages/PagesTest.h"

namespace {

/// Each character is one wide, tabs stop at multiples of eight.
int16_t Measure(std::string_view text) {
    int column = 0;
    for (const char c : text) column = c == '\t' ? (column / 8 + 1) * 8 : column + 1;
    return static_cast<int16_t>(column);
}

TEST(FormatCapabilityReport, BringsValuesIntoOneColumn) {
    const std::pair<std::string_view, const char*> rows[] = {
        {"", ""},
        // On the first line the colon is not part of what is measured.
        {"1234567: 5\na: 6", "1234567:\t5\r\na:\t6"},
        {"a: 6\n1234567: 5", "a:\t\t6\r\n1234567:\t5"},
        {"123456789: 1\n123456: 2", "123456789:\t1\r\n123456:\t\t2"}, // measured alone
        {"12345\nab: 1\nc: 2", "12345\r\nab:\t\t1\r\nc:\t\t2"},       // widens without a colon
        {"a:\nb: 1\nbcd:", "a:\tb:\t1\r\nbcd:\t"},
        {"a: 1:30\nb: 2", "a:\t1:\t30\r\nb:\t2"},
        {"a:\t \v\f\r1", "a:\t1"},
        {std::string_view("a: 1\0b: 2", 9), "a:\t1"},
        {"1234567: 5\r\nx\r\r\na: 6\r\n", "1234567:\t5\r\nx\r\na:\t6\r\n"},
    };
    for (const auto& [report, laidOut] : rows)
        EXPECT_EQ(FormatCapabilityReport(report, Measure), laidOut) << report;
}

/// Whatever a display measures and a host reports, the layout ends soon.
TEST(FormatCapabilityReport, EndsWithOddMeasuresAndReports) {
    std::string narrow = std::string(30'000, 'x') + ":1\n";
    for (int i = 0; i < 25'000; ++i) narrow += "a:1\n";
    for (const std::string& report : {std::string(100'000, ':'), narrow}) {
        size_t measured = 0;
        const auto staysNarrow = [&](std::string_view text) {
            measured += text.size();
            return int16_t{text.ends_with("x\t")};
        };
        const std::string out = FormatCapabilityReport(report + "\nx: 1\n", staysNarrow);
        EXPECT_LT(measured, 1'000'000u) << "of all that is drawn";
        EXPECT_TRUE(out.ends_with("\t1\r\n"));
        EXPECT_LT(out.size(), 500'000u);
    }
}

class StatusPage : public PagesTest {};

TEST_F(StatusPage, ShowsWhatTheHostSaysAndAsksOnce) {
    const std::string endless(5000, 'x'), shown = endless.substr(0, 4096) + "...";
    const std::string report = "Speed: 5\nNumber of pins: 2\n";
    const struct {
        std::string info, report, refusal;
        int width; // of a character; 0: there is nothing to measure with
        std::string shownInfo, shownReport;
    } rows[] = {
        {"ETB, 4 KB", report, "", 1, "ETB, 4 KB", "Speed:\t\t5\r\nNumber of pins:\t2\r\n"},
        {"ETB, 4 KB", report, "", 0, "ETB, 4 KB", "Speed: 5\r\nNumber of pins: 2\r\n"},
        {endless, "a: " + endless + "\nb: 2\n", "", 1, shown,
         "a:\t" + shown.substr(3) + "\r\nb:\t2\r\n"},
        {"", report, endless, 1, "", "ERROR: " + shown},
    };
    for (const auto& row : rows) {
        host.info = row.info;
        host.report = row.report;
        host.reportEndsWithNul = row.width != 0;
        if (!row.refusal.empty()) host.refusals["capability"] = row.refusal;
        display.SetCharacterWidth(row.width);
        Open(1, [&] {
            for (const int tab : {2, 1, 2}) display.Tab(tab);
            EXPECT_THAT(host.TakeCalls(),
                        testing::ElementsAre("GetInfoText(0)", "Command(capability)"));
            EXPECT_EQ(display.Text(1038), row.shownInfo);
            EXPECT_EQ(display.Text(1063), row.shownReport);
        });
    }
    host.info.reset();
    host.refusals.clear();
    host.report = std::string(300 * 1024, '\n');
    Open(2, [&] { EXPECT_EQ(display.Text(1063).size(), 512 * 1024 + 3); });
}

} // namespace
