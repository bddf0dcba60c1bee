#include "host/expression.h"

#include <gtest/gtest.h>

#include "host/journal.h"

namespace etmhost {
namespace {

const Symbols kSymbols = {{"main", 0x8000}, {"_start", 0x20}, {"table.1", 4}, {"fh", 7}};

// The value in hexadecimal, or the error text.
std::string Result(const std::string& text) {
    const Evaluation result = Evaluate(text, kSymbols);
    return result.error.empty() ? Hex(result.value) : result.error;
}

struct Case {
    std::string text;
    std::string result;
};

TEST(Expression, Values) {
    const Case rows[] = {
        // numbers
        {"0", "0x0"},
        {"4096", "0x1000"},
        {"0x1000", "0x1000"},
        {"0X1f", "0x1F"},
        {"$1F", "0x1F"},
        {"0fh", "0xF"},
        {"1e5h", "0x1E5"},
        {"0b1h", "0xB1"},
        {"0b1_01", "0x5"},
        {"0xFFFF_0000", "0xFFFF0000"},
        {"12k", "0x3000"},
        {"1M", "0x100000"},
        {"0x1k", "0x400"},
        {"0x123456789", "0x23456789"},
        {"4294967297", "0x1"},
        // character constants
        {"'AB'", "0x4142"},
        {"''", "0x0"},
        {"'\\n'", "0xA"},
        {"'a''b'", "0x6162"},
        {"'\xFF'", "0xFFFFFFFF"},
        // symbols, sums, signs, parentheses
        {"main", "0x8000"},
        {"fh", "0x7"},
        {"table.1", "0x4"},
        {" main + 4 ", "0x8004"},
        {"main-_start+1", "0x7FE1"},
        {"main-(_start+1)", "0x7FDF"},
        {"-4", "0xFFFFFFFC"},
        {"- -4", "0x4"},
        {"0-1", "0xFFFFFFFF"},
        {"((2))", "0x2"},
        {"0x100 // the vector table", "0x100"},
    };
    for (const Case& row : rows) {
        EXPECT_EQ(Result(row.text), row.result) << row.text;
    }
}

TEST(Expression, Refusals) {
    const Case rows[] = {
        {"", "value expected at the end"},
        {"// nothing", "value expected at the end"},
        {"main +", "value expected at the end"},
        {"* 4", "value expected at \"* 4\""},
        {"1 2", "unexpected text \"2\""},
        {"main)", "unexpected text \")\""},
        {"(main", "\")\" expected"},
        {"nowhere", "unknown symbol \"nowhere\""},
        {"Main", "unknown symbol \"Main\""},
        {"12abc", "invalid number \"12abc\""},
        {"1_000", "invalid number \"1_000\""},
        {"1.5", "invalid number \"1.5\""},
        {"1e5", "invalid number \"1e5\""},
        {"12kb", "invalid number \"12kb\""},
        {"0x", "invalid number \"0x\""},
        {"0b102", "invalid number \"0b102\""},
        {"12hz", "invalid number \"12hz\""},
        {"0x10h", "invalid number \"0x10h\""},
        {"$", "value expected at \"$\""},
        {"'abcde'", "too long \"'abcde'\""},
        {"'a", "quote not closed \"'a\""},
        {"'a\\", "quote not closed \"'a\\\""},
        {"1\n", "unexpected text \"\n\""},
        {"1 // a\n2", "unexpected text \"\n2\""},
    };
    for (const Case& row : rows) {
        EXPECT_EQ(Result(row.text), row.result) << row.text;
    }
}

TEST(Expression, DeepNestingEndsInAnError) {
    const size_t depth = 1000000;
    EXPECT_EQ(Result(std::string(depth, '(') + "1" + std::string(depth, ')')),
              "too many parentheses");
    EXPECT_EQ(Result(std::string(depth, '-') + "1"), "0x1");
}

} // namespace
} // namespace etmhost
