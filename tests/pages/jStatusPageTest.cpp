// The tab "Status", and the layout of its report.

#include "pages/FormatCapabilityReport.h"
#include "tests/pages/PagesTest.h"

using ::testing::ElementsAre;

namespace {

/// Each character is one wide, tabs stop at multiples of eight.
int16_t Measure(std::string_view text) {
    int column = 0;
    for (const char c : text) column = c == '\t' ? (column / 8 + 1) * 8 : column + 1;
    return static_cast<int16_t>(column);
}

TEST(FormatCapabilityReport, BringsValuesIntoOneColumn) {
    const struct {
        const char* name;
        std::string_view report;
        const char* laidOut;
    } rows[] = {
        {"empty", "", ""},
        {"two lines", "Speed: 5\nNumber of pins: 2\n", "Speed:\t\t5\r\nNumber of pins:\t2\r\n"},
        // On the first line the colon is not part of what is measured.
        {"widest first", "1234567: 5\na: 6", "1234567:\t5\r\na:\t6"},
        {"widest second", "a: 6\n1234567: 5", "a:\t\t6\r\n1234567:\t5"},
        {"a line is measured alone", "123456789: 1\n123456: 2", "123456789:\t1\r\n123456:\t\t2"},
        {"no colon", "one\ntwo\n", "one\r\ntwo\r\n"},
        {"a line without colon widens", "12345\nab: 1\nc: 2", "12345\r\nab:\t\t1\r\nc:\t\t2"},
        {"line feed behind a colon", "a:\nb: 1\n", "a:\tb:\t1\r\n"},
        {"colon at the end", "a: 1\nbcd:", "a:\t1\r\nbcd:\t"},
        {"second colon", "a: 1:30\nb: 2", "a:\t1:\t30\r\nb:\t2"},
        {"other white space", "a:\t \v\f\r1", "a:\t1"},
        {"ends at a NUL", std::string_view("a: 1\0b: 2", 9), "a:\t1"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        EXPECT_EQ(FormatCapabilityReport(row.report, Measure), row.laidOut);
    }
}

/// Whatever a display measures and a host reports, the layout ends with a text of a
/// size that can be shown.
TEST(FormatCapabilityReport, EndsWithOddMeasuresAndReports) {
    const TextMeasure measures[] = {
        Measure,
        [](std::string_view text) { return int16_t{text.ends_with("x\t")}; }, // stays narrow
        [](std::string_view) { return int16_t{32767}; },
        [](std::string_view text) { return static_cast<int16_t>(text.size() * 0x7FFF); },
    };
    const std::string colons(100'000, ':'), label(30'000, 'x');
    std::string narrow;
    for (int i = 0; i < 25'000; ++i) narrow += "a:1\n";
    for (const TextMeasure& measure : measures)
        for (const std::string& report : {narrow, colons, label + ":1\n" + narrow, label}) {
            const std::string out = FormatCapabilityReport(report + "\nx: 1\n", measure);
            EXPECT_TRUE(out.ends_with("\t1\r\n"));
            EXPECT_LT(out.size(), 500'000u);
        }
}

class StatusPage : public PagesTest {};

TEST_F(StatusPage, ShowsWhatTheHostSaysAndAsksOnce) {
    host.info = "ETB, 4 KB";
    host.report = "Speed: 5\nNumber of pins: 2\n";
    for (const bool endsWithNul : {true, false}) {
        host.reportEndsWithNul = endsWithNul;
        Open(1, [&] {
            display.Tab(2);
            EXPECT_THAT(host.TakeCalls(), ElementsAre("GetInfoText(0)", "Command(capability)"));
            EXPECT_EQ(display.Text(1038), "ETB, 4 KB");
            EXPECT_EQ(display.Text(1063), "Speed:\t\t5\r\nNumber of pins:\t2\r\n");
            display.Tab(1);
            display.Tab(2);
            display.Click(IDC_APPLY_NOW);
            EXPECT_THAT(host.TakeChanges(), ::testing::IsEmpty());
            EXPECT_NE(display.Text(1063), "");
        });
    }
}

TEST_F(StatusPage, ShowsARefusalAndPlainTextWithNothingToMeasureWith) {
    host.refusals["capability"] = "no target: reset it";
    Open(2, [&] {
        EXPECT_EQ(display.Text(1038), "");
        EXPECT_EQ(display.Text(1063), "ERROR: no target: reset it");
    });
    host.refusals.clear();
    host.report = "a: 1\n";
    display.SetCharacterWidth(0);
    Open(2, [&] { EXPECT_EQ(display.Text(1063), "a: 1\r\n"); });
}

} // namespace
