// Texts and the tokens that they are cut into.

#include "text/TxtScan.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <string>

namespace {

/// "kind:text" of each token up to the end or an error, with "=number" behind kinds 2,
/// 3 and 5; then the place where the scan stopped: "line.column+offset".
std::string Dump(const std::string& text) {
    TxtScan scan(text.c_str(), -1);
    std::string dump;
    do {
        scan.GetToken();
        dump += std::to_string(scan.Kind) + ":";
        for (const char* ch = scan.Text; *ch != '\0'; ++ch) {
            char shown[8];
            const bool printable = *ch >= ' ' && *ch <= '~';
            std::snprintf(shown, sizeof shown, printable ? "%c" : "\\%02x",
                          static_cast<unsigned char>(*ch));
            dump += shown;
        }
        char number[40] = "";
        if (scan.Kind == TK_DECIMAL || scan.Kind == TK_INTEGER)
            std::snprintf(number, sizeof number, "=%d", scan.Value.Integer);
        if (scan.Kind == TK_FLOAT) std::snprintf(number, sizeof number, "=%.17g", scan.Value.Float);
        dump += number;
        dump += " ";
    } while (scan.Kind != TK_ERROR && scan.Kind != TK_END);
    return dump + std::to_string(scan.Line) + "." + std::to_string(scan.Column) + "+" +
           std::to_string(scan.Cursor - text.c_str());
}

struct Row {
    std::string text;
    std::string dump;
};

TEST(TxtScan, CutsTextsIntoTokens) {
    const Row rows[] = {
        // Nothing, blanks, comments, punctuation
        {"", "8: 1.1+0"},
        {" \t\r\n  ", "8: 2.3+6"},
        {"// all of it", "8: 1.1+12"},
        {"a//x\nb", "1:a 1:b 8: 2.2+6"},
        {"a/b / /", "1:a 7:/ 1:b 7:/ 7:/ 8: 1.8+7"},
        {"\v\f", "7:\\0b 7:\\0c 8: 1.3+2"},
        {"$ $g @-\x80\xFF", "7:$ 7:$ 1:g 7:@ 7:- 7:\\80 7:\\ff 8: 1.10+9"},
        // Names
        {"_a9 Zz__ fh", "1:_a9 1:Zz__ 1:fh 8: 1.12+11"},
        {"ETM PC = from main+4", "1:ETM 1:PC 7:= 1:from 1:main 7:+ 2:4=4 8: 1.21+20"},
        // Decimal numbers
        {"0 12 007", "2:0=0 2:12=12 2:007=7 8: 1.9+8"},
        {"4294967295 4294967296", "2:4294967295=-1 2:4294967296=0 8: 1.22+21"},
        {"12abc 1_000", "2:12=12 1:abc 2:1=1 1:_000 8: 1.12+11"},
        {"12k 1M 3K 4m 12kb 1kk 2k_", "3:12=12288 3:1=1048576 3:3=3072 3:4=4194304 2:12=12 1:kb "
                                      "2:1=1 1:kk 3:2=2048 1:_ 8: 1.26+25"},
        {"4194304k 2k5", "3:4194304=0 3:2=2048 2:5=5 8: 1.13+12"},
        // Hexadecimal numbers
        {"0x1F 0X1f $1F $a", "3:1F=31 3:1f=31 3:1F=31 3:a=10 8: 1.17+16"},
        {"0fh 12H 0_fh 0b1h 1e5h", "3:0f=15 3:12=18 3:0f=15 3:0b1=177 3:1e5=485 8: 1.23+22"},
        {"0x_1__2_ 0x123456789", "3:12=18 3:123456789=591751049 8: 1.21+20"},
        {"0x1k 0x1m 12hk 0x1k2", "3:1=1024 3:1=1048576 3:12=18432 3:1=1024 2:2=2 8: 1.21+20"},
        {"a 0x1kb", "1:a 0:Invalid hex number 1.3+2"},
        // Binary numbers
        {"0b101 0B1_01 0b1k 0b1-", "3:101=5 3:101=5 3:1=1024 3:1=1 7:- 8: 1.23+22"},
        // Floats, and those that were given up
        {"1.5 12. 1e5 1E+2 2.5e-1", "5:1.5=1.5 5:12.=12 5:1e5=100000 5:1E+2=100 5:2.5e-1=0.25 "
                                    "8: 1.24+23"},
        {"1.5k 1.2.3", "5:1.5=1.5 1:k 5:1.2=1.2 7:. 2:3=3 8: 1.11+10"},
        {"12.5e", "2:12.5e=12 7:. 2:5e=5 1:e 8: 1.6+5"},
        {"1e 1e+ 1.e-x", "2:1e=1 1:e 2:1e+=1 1:e 7:+ 2:1.e-=1 7:. 1:e 7:- 1:x 8: 1.13+12"},
        {"1e400 1e-400 0e99999999999 0.1e99999999999",
         "5:1e400=inf 5:1e-400=0 5:0e99999999999=0 5:0.1e99999999999=inf 8: 1.43+42"},
        // Strings and character constants
        {R"("a b" "" "a""b" "//")", R"(4:a b 4: 4:ab 4:// 8: 1.21+20)"},
        {R"("a\tb\n\r\"\\\q")", R"(4:a\09b\0a\0d"\q 8: 1.17+16)"},
        {"'A' 'AB' '' 'ABCD'", "3:=65 3:=16706 3:=0 3:=1094861636 8: 1.19+18"},
        {"'\x80' 'A\xFF' '\\n' '\\''", "3:=-128 3:=-1 3:=10 3:=39 8: 1.19+18"},
        {"  \"a\nb\"", "0:String not terminated 1.3+2"},
    };
    for (const Row& row : rows) EXPECT_EQ(Dump(row.text), row.dump) << row.text;

    const auto expectError = [](const std::string& message, std::vector<std::string> texts) {
        for (const std::string& text : texts)
            EXPECT_EQ(Dump(text), "0:" + message + " 1.1+0") << text;
    };
    expectError("Invalid hex number", {"0x", "0x_ ", "12hz", "$fh", "0x10h", "0x1g", "0X1kb"});
    expectError("Invalid binary number", {"0b", "0B_", "0b102", "0b1kb", "0b1k1"});
    expectError("Too long character constant", {"'ABCDE'", "'" + std::string(3000, 'A') + "'"});
    expectError("String not terminated",
                {"\"abc", "'a\r'", "\"a\\", "'''", "'ABCDEF", "\"" + std::string(3000, 'A')});
}

TEST(TxtScan, RefusesATokenThatItsBufferCannotHold) {
    for (const size_t length : {2047, 2048, 100000}) {
        const std::string body(length, '1');
        for (const std::string& token : {"a" + body.substr(1), "\"" + body + "\"", "0x" + body,
                                         "0b" + body, body, body.substr(1) + "."}) {
            const std::string text = " " + token + " b";
            TxtScan scan(text.c_str(), -1);
            const bool fits = length == 2047;
            for (int again = 0; again < (fits ? 1 : 2); ++again) {
                EXPECT_EQ(scan.GetToken() != TK_ERROR, fits) << token.substr(0, 2) << length;
                EXPECT_EQ(std::string(scan.Text) == "Token too long", !fits);
                EXPECT_EQ(scan.Cursor - text.c_str(), fits ? token.size() + 1 : 1);
            }
        }
    }
}

TEST(TxtScan, SaysWhatWasMissed) {
    TxtScan scan(nullptr, -1);
    EXPECT_STREQ(scan.Text, "Init not called");
    EXPECT_EQ(scan.Kind, TK_ERROR);
    EXPECT_EQ(scan.GetToken(), TK_END);
    EXPECT_EQ(scan.GetToken(), TK_END);
    EXPECT_STREQ(scan.Text, "");
    scan.Init("\n 7", -1);
    EXPECT_STREQ(scan.Text, "GetToken not called");
    EXPECT_EQ(scan.GetToken(), TK_DECIMAL);
    scan.Init(nullptr, 10);
    EXPECT_EQ(scan.Line, 1);
    EXPECT_EQ(scan.Column, 1);
    EXPECT_EQ(scan.GetToken(), TK_END);
    EXPECT_EQ(scan.Value.Integer, 7) << "a token without a number leaves the last one";
}

TEST(TxtScan, KeepsTheStartOfTheLastToken) {
    const char* const text = "abc def //";
    TxtScan scan(text, -1);
    scan.GetToken();
    scan.GetToken();
    EXPECT_EQ(scan.TokenStart, text + 4);
    EXPECT_EQ(scan.Column, 8);
    scan.GetToken();
    EXPECT_EQ(scan.TokenStart, scan.End);
}

TEST(TxtScan, EndsBetweenTokensWhereTheLengthSays) {
    const char* const text = "ab cd // ef\ngh";
    for (const auto& [length, tokens] :
         {std::pair{0, 0}, {1, 1}, {2, 1}, {3, 1}, {4, 2}, {8, 2}, {12, 2}, {13, 3}, {14, 3}}) {
        TxtScan scan(text, length);
        int read = 0;
        while (scan.GetToken() == TK_IDENT) ++read;
        EXPECT_EQ(scan.Kind, TK_END) << length;
        EXPECT_EQ(read, tokens) << length;
    }
}

} // namespace
