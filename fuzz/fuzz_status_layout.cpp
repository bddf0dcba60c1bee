// Any report as the Status page cuts it and lays it out. The first byte chooses the
// measure, the second how much is shown.

#include <cctype>

#include "fuzz/target.h"
#include "pages/FormatCapabilityReport.h"
#include "text/shown_text.h"

namespace {

/// Tabs stop at multiples of eight characters, each of `width` pixels.
TextMeasure MeasureOf(int width) {
    return [width](std::string_view text) {
        int64_t column = 0;
        for (const char c : text) column = c == '\t' ? (column / 8 + 1) * 8 : column + 1;
        return static_cast<int16_t>(column * width); // wraps for the widest
    };
}

/// What the layout may not change: all but the white space.
std::string Ink(std::string_view text) {
    std::string ink;
    for (const char c : text)
        if (std::isspace(static_cast<unsigned char>(c)) == 0) ink += c;
    return ink;
}

void CheckShown(std::string_view text, size_t limit) {
    const std::string shown = ShownLines(text, limit, limit / 2);
    Require(shown.size() <= limit + (limit + 1) * 3 + 3);
    if (text.find('\n') != text.npos) return;
    const std::string line = ShownText(text, limit);
    if (text.size() <= limit) return Require(line == text);
    Require(line.ends_with(kEllipsis) && line.size() <= limit + 3 && line.size() >= limit);
    Require(text.starts_with(line.substr(0, line.size() - 3)));
}

} // namespace

static void StatusLayout(const uint8_t* data, size_t size) {
    if (size < 2) return;
    const std::string text(reinterpret_cast<const char*>(data) + 2, size - 2);
    const std::string_view report(text.c_str());
    CheckShown(text, data[1]);

    const std::string plain = FormatCapabilityReport(text, {});
    const std::string laidOut = FormatCapabilityReport(text, MeasureOf(data[0]));
    Require(Ink(plain) == Ink(report) && Ink(laidOut) == Ink(report));
    for (const std::string& out : {plain, laidOut})
        for (size_t at = out.find('\n'); at != out.npos; at = out.find('\n', at + 1))
            Require(at > 0 && out[at - 1] == '\r' && (at < 2 || out[at - 2] != '\r'));
    for (size_t at = laidOut.find(':'); at != laidOut.npos; at = laidOut.find(':', at + 1))
        Require(at + 1 < laidOut.size() && laidOut[at + 1] == '\t');
}

static const FuzzTarget kStatusLayout("fuzz_status_layout", StatusLayout);
