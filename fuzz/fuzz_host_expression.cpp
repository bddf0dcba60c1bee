// Any text as an address expression of the host.

#include "fuzz/target.h"
#include "host/target/expression.h"

using namespace etmhost;

static void HostExpression(const uint8_t* data, size_t size) {
    static const Symbols symbols = {{"main", 0x8000}, {"a.b", 1}, {"_", 0xFFFFFFFF}};
    const std::string text(reinterpret_cast<const char*>(data), size);
    const Evaluation result = Evaluate(text, symbols);
    if (!result.error.empty()) {
        for (const char c : result.ErrorText()) Require((c & 0xE0) != 0);
        Require(text.find(result.where) != text.npos);
        return;
    }
    // Signs, blanks and what stands ahead of an expression do not change what it means.
    Require(Evaluate(" \t" + text, symbols).value == result.value);
    Require(Evaluate("--" + text, symbols).value == result.value);
    Require(Evaluate("5+" + text, symbols).value == result.value + 5);
    Require(Evaluate(text + "// why", symbols).value == result.value);
}

static const FuzzTarget kHostExpression("fuzz_host_expression", HostExpression);
