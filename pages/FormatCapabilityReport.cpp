#include "pages/FormatCapabilityReport.h"

#include <cctype>

namespace {

// How many characters may be measured for one report: some for each of its own, and
// some for the short. Reports of a hundred lines need some ten thousand. One that is made
// to be slow, with a label of a page's length, a line full of colons or a measure that
// never grows, falls back to single tabs and ends soon.
constexpr size_t kMeasuredPerCharacter = 2;
constexpr size_t kMeasuredAtLeast = 200'000;

bool IsSpace(char c) {
    return std::isspace(static_cast<unsigned char>(c)) != 0;
}

/// The stretch of text in front of a colon that asks for the widest column, judged by
/// its length. The count goes on behind a line without a colon, and takes the line
/// feed with it, so that from the second line on the stretch includes the colon.
std::string_view FindWidestLabel(std::string_view report) {
    std::string_view widest;
    size_t count = 0;
    bool counting = true; // false between the first colon of a line and its end
    size_t lineStart = 0;
    for (size_t i = 0; i < report.size(); ++i) {
        if (report[i] == ':') {
            if (count > widest.size()) widest = report.substr(lineStart, count);
            count = 0;
            counting = false;
        } else if (report[i] == '\n') {
            lineStart = i + 1;
            counting = true;
            ++count;
        } else if (counting) {
            ++count;
        }
    }
    return widest;
}

/// The column in which the values stand.
class ValueColumn {
public:
    ValueColumn(const TextMeasure& measure, std::string_view widestLabel, size_t budget)
        : m_Measure(measure), m_Budget(budget) {
        m_Position = measure(std::string(widestLabel) + '\t');
    }

    bool IsReachedBy(std::string_view line) {
        if (line.size() > m_Budget) return true;
        m_Budget -= line.size();
        return m_Measure(line) >= m_Position;
    }

private:
    const TextMeasure& m_Measure;
    int16_t m_Position;
    size_t m_Budget; // characters that may still be measured
};

std::string WithLineEnds(std::string_view report) {
    std::string out;
    for (const char c : report) {
        if (c == '\n') out += '\r';
        out += c;
    }
    return out;
}

/// Without the carriage returns in front of line feeds, for hosts that write both.
std::string WithLineFeeds(std::string_view report) {
    std::string out;
    for (const char c : report) {
        if (c == '\n') out.resize(out.find_last_not_of('\r') + 1);
        out += c;
    }
    return out;
}

} // namespace

std::string FormatCapabilityReport(std::string_view text, const TextMeasure& measure) {
    const std::string report = WithLineFeeds(text.substr(0, text.find('\0')));
    if (!measure) return WithLineEnds(report);

    const size_t budget = kMeasuredAtLeast + kMeasuredPerCharacter * report.size();
    ValueColumn column(measure, FindWidestLabel(report), budget);
    std::string out;
    size_t lineOffset = 0; // in `out`
    for (size_t i = 0; i < report.size();) {
        const char c = report[i++];
        if (c == '\n') {
            out += '\r';
            lineOffset = out.size() + 1;
        }
        out += c;
        if (c != ':') continue;
        while (i < report.size() && IsSpace(report[i])) ++i;
        do out += '\t';
        while (!column.IsReachedBy(std::string_view(out).substr(lineOffset)));
    }
    return out;
}
