// Texts and the tokens that they are cut into.

#include "text/TxtScan.h"

#include <gtest/gtest.h>

#include <sstream>

namespace {

/// "kind:text" of each token up to the end or an error, with "=number" behind kinds 2,
/// 3 and 5; then the place where the scan stopped: "line.column+offset".
std::string Dump(const std::string& text) {
    TxtScan scan(text.c_str(), -1);
    std::ostringstream dump;
    dump.precision(17);
    do {
        scan.GetToken();
        dump << scan.Kind << ":" << scan.Text;
        if (scan.Kind == TK_DECIMAL || scan.Kind == TK_INTEGER) dump << "=" << scan.Value.Integer;
        if (scan.Kind == TK_FLOAT) dump << "=" << scan.Value.Float;
        dump << " ";
    } while (scan.Kind != TK_ERROR && scan.Kind != TK_END);
    dump << scan.Line << "." << scan.Column << "+" << scan.Cursor - text.c_str();
    return dump.str();
}

TEST(TxtScan, CutsTextsIntoTokens) {
    const struct {
        const char *text, *dump;
    } rows[] = {
        {" \t\r\n  // rest", "8: 2.3+13"},
        {"a/b / \v\f", "1:a 7:/ 1:b 7:/ 7:\v 7:\f 8: 1.9+8"},
        {"$ $g @-\x80\xFF", "7:$ 7:$ 1:g 7:@ 7:- 7:\x80 7:\xFF 8: 1.10+9"},
        {"_a9//x\nZz__ fh", "1:_a9 1:Zz__ 1:fh 8: 2.8+14"},
        {"4294967295 4294967296 007abc 1_0",
         "2:4294967295=-1 2:4294967296=0 2:007=7 1:abc 2:1=1 1:_0 8: 1.33+32"},
        {"12k 1M 3K 4m 12kb 1kk 2k_", "3:12=12288 3:1=1048576 3:3=3072 3:4=4194304 2:12=12 1:kb "
                                      "2:1=1 1:kk 3:2=2048 1:_ 8: 1.26+25"},
        {"0x1F 0X1f $1F $a", "3:1F=31 3:1f=31 3:1F=31 3:a=10 8: 1.17+16"},
        {"0fh 12H 0_fh 0b1h 1e5h", "3:0f=15 3:12=18 3:0f=15 3:0b1=177 3:1e5=485 8: 1.23+22"},
        {"0x_1__2_ 0x123456789", "3:12=18 3:123456789=591751049 8: 1.21+20"},
        {"0x1k 0x1m 12hk 0x1k2", "3:1=1024 3:1=1048576 3:12=18432 3:1=1024 2:2=2 8: 1.21+20"},
        {"0b101 0B1_01 0b1k 0b1-", "3:101=5 3:101=5 3:1=1024 3:1=1 7:- 8: 1.23+22"},
        {"12. 1e5 1E+2 2.5e-1", "5:12.=12 5:1e5=100000 5:1E+2=100 5:2.5e-1=0.25 8: 1.20+19"},
        {"1.5k 1.2.3", "5:1.5=1.5 1:k 5:1.2=1.2 7:. 2:3=3 8: 1.11+10"},
        {"1e400 1e-400 0e99999999999 0.1e99999999999",
         "5:1e400=inf 5:1e-400=0 5:0e99999999999=0 5:0.1e99999999999=inf 8: 1.43+42"},
        {R"("a b" "" "a""b" "//")", R"(4:a b 4: 4:ab 4:// 8: 1.21+20)"},
        {R"("a\tb\n\r\"\\\q")", "4:a\tb\n\r\"\\q 8: 1.17+16"},
        {"'A' '' 'ABCD' 'A\xFF' '\\''", "3:=65 3:=0 3:=1094861636 3:=-1 3:=39 8: 1.24+23"},
        {"  \"a\nb\"", "0:String not terminated 1.3+2"},
    };
    for (const auto& row : rows) EXPECT_EQ(Dump(row.text), row.dump) << row.text;

    EXPECT_TRUE(Dump("0." + std::string(400, '0') + "1").ends_with("=0 8: 1.404+403"));

    const auto expectError = [](const std::string& message, const std::vector<std::string>& texts) {
        for (const std::string& text : texts)
            EXPECT_EQ(Dump(text), "0:" + message + " 1.1+0") << text;
    };
    expectError("Invalid hex number", {"0x_ ", "12hz", "$fh", "0x10h", "0X1kb"});
    expectError("Invalid binary number", {"0B_", "0b102", "0b1kb", "0b1k1"});
    expectError("Too long character constant", {"'ABCDE'", "'" + std::string(3000, 'A') + "'"});
    expectError("String not terminated", {"'a\r'", "\"a\\", "'''", "\"" + std::string(3000, 'A')});
}

TEST(TxtScan, RefusesATokenThatItsBufferCannotHold) {
    for (const size_t length : {2047, 2048, 100000}) {
        const std::string body(length, '1');
        for (const std::string& token :
             {"a" + body.substr(1), "\"" + body + "\"", "0x" + body, body, body.substr(1) + "."}) {
            const std::string text = " " + token + " b";
            TxtScan scan(text.c_str(), -1);
            const bool fits = length == 2047;
            EXPECT_EQ(scan.GetToken() != TK_ERROR, fits) << token.substr(0, 2) << length;
            EXPECT_EQ(std::string(scan.Text) == "Token too long", !fits);
            EXPECT_EQ(scan.Cursor - text.c_str(), fits ? token.size() + 1 : 1);
        }
    }
}

TEST(TxtScan, SaysWhatWasMissed) {
    TxtScan scan(nullptr, -1);
    EXPECT_STREQ(scan.Text, "Init not called");
    EXPECT_EQ(scan.Kind, TK_ERROR);
    for (int again = 0; again < 2; ++again) EXPECT_EQ(scan.GetToken(), TK_END);
    scan.Init("\n 7 //", -1);
    EXPECT_STREQ(scan.Text, "GetToken not called");
    EXPECT_EQ(scan.GetToken(), TK_DECIMAL);
    scan.Init(nullptr, 10);
    EXPECT_EQ(std::pair(scan.Line, scan.Column), std::pair(1, 1));
    EXPECT_EQ(scan.GetToken(), TK_END);
    EXPECT_EQ(scan.Value.Integer, 7) << "a token without a number leaves the last one";
}

TEST(TxtScan, EndsBetweenTokensWhereTheLengthSays) {
    for (const auto& [length, tokens] :
         {std::pair{0, 0}, {1, 1}, {3, 1}, {4, 2}, {8, 2}, {12, 2}, {13, 3}}) {
        TxtScan scan("ab cd // ef\ngh", length);
        int read = 0;
        while (scan.GetToken() == TK_IDENT) ++read;
        EXPECT_EQ(scan.Kind, TK_END) << length;
        EXPECT_EQ(read, tokens) << length;
    }
}

} // namespace
