#include "host/remote/tcl_answer.h"

#include "host/support/words.h"

namespace etmhost {

namespace {

bool IsSpace(char c) {
    return c == ' ' || (c >= '\t' && c <= '\r');
}

// What a backslash makes of the character behind it.
char Escaped(char c) {
    switch (c) {
    case 'n':
        return '\n';
    case 't':
        return '\t';
    case 'r':
        return '\r';
    case 'f':
        return '\f';
    case 'v':
        return '\v';
    default:
        return c;
    }
}

// Takes one word off `text`, which begins with it. Returns false if it has no end.
bool TakeListWord(std::string_view& text, std::string& word) {
    const char first = text.front();
    size_t at = first == '{' || first == '"' ? 1 : 0, depth = 1;
    for (; at < text.size(); ++at) {
        const char c = text[at];
        if (first == '{') { // all but the outer braces stays as it is
            if (c == '{') ++depth;
            if (c == '}' && --depth == 0) break;
            word += c;
            if (c == '\\' && ++at < text.size()) word += text[at];
        } else if (first == '"' ? c == '"' : IsSpace(c)) {
            break;
        } else if (c == '\\') {
            if (++at == text.size()) return false;
            word += Escaped(text[at]);
        } else {
            word += c;
        }
    }
    if (first == '{' || first == '"') {
        if (at >= text.size()) return false; // not closed
        ++at;
        if (at < text.size() && !IsSpace(text[at])) return false;
    }
    text.remove_prefix(at);
    return true;
}

} // namespace

std::optional<std::vector<std::string>> ParseTclList(std::string_view text) {
    std::vector<std::string> words;
    for (;;) {
        while (!text.empty() && IsSpace(text.front())) text.remove_prefix(1);
        if (text.empty()) return words;
        if (!TakeListWord(text, words.emplace_back())) return std::nullopt;
    }
}

std::optional<TclResult> ParseTclResult(std::string_view answer) {
    std::optional<std::vector<std::string>> words = ParseTclList(answer);
    if (!words || words->size() != 2 || words->front().size() != 1 || words->front()[0] < '0' ||
        words->front()[0] > '9')
        return std::nullopt;
    return TclResult{words->front() == "0", std::move(words->back())};
}

std::optional<std::vector<uint32_t>> ParseTclNumbers(std::string_view value, size_t count) {
    const std::optional<std::vector<std::string>> words = ParseTclList(value);
    if (!words || words->size() != count) return std::nullopt;
    std::vector<uint32_t> numbers;
    for (const std::string& word : *words) {
        const std::optional<uint64_t> number = ParseNumber(word);
        if (!number || *number > UINT32_MAX) return std::nullopt;
        numbers.push_back(static_cast<uint32_t>(*number));
    }
    return numbers;
}

} // namespace etmhost
