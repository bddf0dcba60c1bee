// The layout of the capability report on the Status page.

#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

/// Width in pixels of a text with tabs on default stops; wraps at 16 bits.
using TextMeasure = std::function<int16_t(std::string_view)>;

/// Returns the report `text`, up to its first NUL, for a multi-line edit: lines end in carriage
/// return and line feed, and tabs replace the white space behind each colon, as many
/// as bring the values into one column. A line of the report may end in both already. Without
/// `measure`, only the line ends change.
std::string FormatCapabilityReport(std::string_view text, const TextMeasure& measure);
