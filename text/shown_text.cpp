#include "text/shown_text.h"

#include <algorithm>

namespace {

bool GoesOn(char byte) {
    return (static_cast<unsigned char>(byte) & 0xC0) == 0x80;
}

} // namespace

std::string_view FirstBytes(std::string_view text, size_t limit) {
    if (text.size() <= limit) return text;
    size_t cut = limit;
    while (cut > 0 && limit - cut < 3 && GoesOn(text[cut])) --cut;
    const bool begins = static_cast<unsigned char>(text[cut]) >= 0xC0;
    return text.substr(0, begins ? cut : limit);
}

std::string ShownText(std::string_view text, size_t limit) {
    std::string shown(FirstBytes(text, limit));
    if (shown.size() < text.size()) shown += kEllipsis;
    return shown;
}

std::string ShownLines(std::string_view text, size_t limit, size_t lineLimit) {
    const std::string_view start = FirstBytes(text, limit);
    std::string shown;
    for (size_t at = 0; at < start.size();) {
        const size_t end = std::min(start.find('\n', at), start.size());
        shown += ShownText(start.substr(at, end - at), lineLimit);
        if (end < start.size()) shown += '\n';
        at = end + 1;
    }
    if (start.size() < text.size() && !shown.ends_with(kEllipsis)) shown += kEllipsis;
    return shown;
}
