// What is shown of long texts.
//
// A window that is given megabytes, or a line without end, stands still. What is
// shown is therefore cut, and an ellipsis tells so; what is sent never is. The encoding
// of the texts is not known: if it is UTF-8, no character is divided.

#pragma once

#include <cstddef>
#include <string>
#include <string_view>

inline constexpr const char* kEllipsis = "...";

/// The bytes of a line that a window shows.
inline constexpr size_t kShownLine = 4 * 1024;

/// Returns the start of `text`: `limit` bytes, or up to three less where the cut would
/// divide a character.
std::string_view FirstBytes(std::string_view text, size_t limit);

/// Returns `text`, or if it is longer than `limit` bytes its start and an ellipsis.
std::string ShownText(std::string_view text, size_t limit);

/// The same, with each line cut at `lineLimit` bytes besides. Lines end at a line feed.
std::string ShownLines(std::string_view text, size_t limit, size_t lineLimit);
