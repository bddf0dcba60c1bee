#include "host/support/words.h"

#include <algorithm>
#include <charconv>
#include <cstdio>
#include <numeric>
#include <utility>

namespace etmhost {

namespace {

char Lower(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

// How many letters are wrong, missing, too many or exchanged with their neighbour.
size_t Distance(std::string_view a, std::string_view b) {
    std::vector<size_t> before, last(b.size() + 1), row(b.size() + 1);
    std::iota(last.begin(), last.end(), 0);
    for (size_t i = 1; i <= a.size(); ++i) {
        row[0] = i;
        for (size_t j = 1; j <= b.size(); ++j) {
            const bool same = Lower(a[i - 1]) == Lower(b[j - 1]);
            row[j] = std::min({last[j] + 1, row[j - 1] + 1, last[j - 1] + (same ? 0 : 1)});
            if (i > 1 && j > 1 && Lower(a[i - 1]) == Lower(b[j - 2]) &&
                Lower(a[i - 2]) == Lower(b[j - 1]))
                row[j] = std::min(row[j], before[j - 2] + 1);
        }
        before = std::exchange(last, row);
    }
    return last.back();
}

} // namespace

bool IsBlank(char c) {
    return c == ' ' || c == '\t';
}

bool IsDigit(char c) {
    return c >= '0' && c <= '9';
}

bool IsLetter(char c) {
    return Lower(c) >= 'a' && Lower(c) <= 'z';
}

bool EqualNoCase(std::string_view a, std::string_view b) {
    return std::equal(
        a.begin(), a.end(), b.begin(), b.end(),
        [](char x, char y) { return Lower(x) == Lower(y); });
}

std::string_view SkipBlanks(std::string_view text) {
    text.remove_prefix(std::min(text.find_first_not_of(" \t"), text.size()));
    return text;
}

std::string_view Trim(std::string_view text) {
    text = SkipBlanks(text);
    while (!text.empty() && IsBlank(text.back())) text.remove_suffix(1);
    return text;
}

std::string_view TakeWord(std::string_view& text, std::string_view stops) {
    text = SkipBlanks(text);
    size_t end = 0;
    while (end < text.size() && !IsBlank(text[end]) &&
           stops.find(text[end]) == std::string_view::npos)
        ++end;
    const std::string_view word = text.substr(0, end);
    text = SkipBlanks(text.substr(end));
    return word;
}

std::string Escape(std::string_view text, std::string_view marked) {
    std::string escaped;
    for (const char c : text) {
        const unsigned char byte = static_cast<unsigned char>(c);
        if (c == '\n' || c == '\r' || c == '\t') {
            escaped += c == '\n' ? "\\n" : c == '\r' ? "\\r" : "\\t";
        } else if (byte < 0x20 || byte == 0x7F) {
            char code[8];
            std::snprintf(code, sizeof code, "\\x%02X", byte);
            escaped += code;
        } else {
            escaped += marked.find(c) != std::string_view::npos ? "\\" : "";
            escaped += c;
        }
    }
    return escaped;
}

std::string Quote(const char* text) {
    return text != nullptr ? "\"" + Escape(text, "\"\\") + "\"" : "null";
}

std::string Quote(const std::string& text) {
    return Quote(text.c_str());
}

std::string Hex(uint32_t value) {
    char text[16];
    std::snprintf(text, sizeof text, "0x%X", static_cast<unsigned>(value));
    return text;
}

std::string DidYouMean(std::string_view name, const std::vector<std::string>& names,
                       const std::string& otherwise) {
    constexpr size_t kLongest = 64; // a longer one is no slip of the hand
    const std::string* nearest = nullptr;
    size_t least = name.size() <= kLongest ? std::min<size_t>(name.size() / 3, 3) + 1 : 0;
    for (const std::string& candidate : names) {
        const auto [shorter, longer] = std::minmax({name.size(), candidate.size()});
        const size_t missing = longer - shorter; // at least that far away
        const size_t distance = missing < least ? Distance(name, candidate) : missing;
        if (distance >= least) continue;
        least = distance;
        nearest = &candidate;
    }
    const auto begun = [&](const std::string& candidate) {
        return name.size() > 2 && EqualNoCase(name, candidate.substr(0, name.size()));
    };
    if (nearest == nullptr && std::ranges::count_if(names, begun) == 1)
        nearest = &*std::ranges::find_if(names, begun);
    if (nearest != nullptr) return "; did you mean \"" + *nearest + "\"?";
    return otherwise.empty() ? "" : "; " + otherwise;
}

std::optional<uint64_t> ParseNumber(std::string_view text) {
    const bool hex = text.starts_with("0x") || text.starts_with("0X");
    if (hex) text.remove_prefix(2);
    uint64_t number = 0;
    const char* const end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, number, hex ? 16 : 10);
    if (error != std::errc() || stop != end) return std::nullopt;
    return number;
}

std::string YesNo(bool value) {
    return value ? "yes" : "no";
}

} // namespace etmhost
