// Any bytes as an answer of OpenOCD's Tcl port.

#include "fuzz/target.h"
#include "host/remote/tcl_answer.h"
#include "host/remote/wire.h"

using namespace etmhost;

// `word` as one word of a list, the way a server writes it.
static std::string Word(const std::string& word) {
    std::string text;
    for (const char c : word) {
        if (c == '\n' || c == '\t' || c == '\r' || c == '\f' || c == '\v') {
            text += '\\';
            text += c == '\n' ? 'n' : c == '\t' ? 't' : c == '\r' ? 'r' : c == '\f' ? 'f' : 'v';
        } else {
            if (c == ' ' || c == '{' || c == '}' || c == '"' || c == '\\') text += '\\';
            text += c;
        }
    }
    return text.empty() ? "{}" : text;
}

static void OpenocdAnswer(const uint8_t* data, size_t size) {
    const std::string text(reinterpret_cast<const char*>(data), size);
    for (const char c : Excerpt(text)) Require(c >= 0x20 && c < 0x7F);
    Require(Excerpt(text).size() < 300);

    if (const auto words = ParseTclList(text)) {
        std::string list;
        size_t total = 0;
        for (const std::string& word : *words) {
            list += Word(word) + " ";
            total += word.size();
        }
        Require(total <= size && ParseTclList(list) == words);
    }
    // Whatever a command's result is, it is found in the answer that says it.
    const auto failure = ParseTclResult("1 " + Word(text));
    Require(failure && !failure->succeeded && failure->text == text);
    if (const auto result = ParseTclResult(text)) Require(ParseTclList(text)->size() == 2);

    for (size_t count = 0; count <= size / 2 + 1; ++count) {
        const auto numbers = ParseTclNumbers(text, count);
        if (!numbers) continue;
        Require(numbers->size() == count);
        std::string again;
        for (const uint32_t number : *numbers) again += std::to_string(number) + "\n";
        Require(ParseTclNumbers(again, count) == numbers && !ParseTclNumbers(text, count + 1));
    }
}

static const FuzzTarget kOpenocdAnswer("fuzz_openocd_answer", OpenocdAnswer);
