#include "bench/PeerScanner.h"

#include <charconv>
#include <cstring>

#include "text/TxtScan.h"

void PeerScanner::Init(const char* text) {
    m_Cursor = m_LineStart = TokenStart = reinterpret_cast<const unsigned char*>(text);
    Line = Column = 1;
    Text[0] = '\0';
    Kind = TK_ERROR;
}

/// Copies the token's text and moves behind the token, which ends at m_Cursor.
int32_t PeerScanner::Take(int32_t kind, const unsigned char* begin, const unsigned char* end) {
    const auto size = static_cast<size_t>(end - begin);
    if (size >= sizeof Text) return Kind = TK_ERROR;
    std::memcpy(Text, begin, size);
    Text[size] = '\0';
    Column = static_cast<int32_t>(m_Cursor - m_LineStart) + 1;
    return Kind = kind;
}

int32_t PeerScanner::TakeHex(const unsigned char* begin, const unsigned char* end) {
    uint32_t value = 0;
    for (const unsigned char* at = begin; at != end; ++at)
        value = value * 16 + static_cast<uint32_t>(*at <= '9' ? *at - '0' : (*at & 15) + 9);
    Value.Integer = static_cast<int32_t>(value);
    return Take(TK_INTEGER, begin, end);
}

int32_t PeerScanner::TakeQuoted(int32_t kind) {
    size_t size = 0;
    uint32_t constant = 0;
    for (const unsigned char* at = TokenStart + 1; at != m_Cursor - 1; ++at) {
        if (*at == '\\') ++at;
        if (size == sizeof Text - 1) return Kind = TK_ERROR;
        Text[size++] = static_cast<char>(*at);
        constant = constant << 8 | *at;
    }
    if (kind == TK_INTEGER) {
        Value.Integer = static_cast<int32_t>(constant);
        size = 0;
    }
    Text[size] = '\0';
    Column = static_cast<int32_t>(m_Cursor - m_LineStart) + 1;
    return Kind = kind;
}

static uint32_t ReadDecimal(const unsigned char* begin, const unsigned char* end) {
    uint32_t value = 0;
    for (; begin != end; ++begin) value = value * 10 + static_cast<uint32_t>(*begin - '0');
    return value;
}

int32_t PeerScanner::GetToken() {
    const unsigned char* marker = nullptr;
    const unsigned char* at = m_Cursor;
    for (;;) {
        TokenStart = at;
/*!re2c
        re2c:define:YYCTYPE = "unsigned char";
        re2c:define:YYCURSOR = at;
        re2c:define:YYMARKER = marker;
        re2c:yyfill:enable = 0;

        digit = [0-9];
        hex = [0-9a-fA-F];
        exponent = [eE] [+-]? digit+;

        [ \t\r]+                    { continue; }
        "\n"                        { ++Line; m_LineStart = at; continue; }
        "//" [^\n\x00]*             { continue; }
        "\x00"                      { m_Cursor = at - 1; Text[0] = '\0'; return Kind = TK_END; }
        [a-zA-Z_] [a-zA-Z_0-9]*     { m_Cursor = at; return Take(TK_IDENT, TokenStart, at); }
        digit+                      {
            Value.Integer = static_cast<int32_t>(ReadDecimal(TokenStart, at));
            m_Cursor = at;
            return Take(TK_DECIMAL, TokenStart, at);
        }
        digit+ [kKmM]               {
            const uint32_t value = ReadDecimal(TokenStart, at - 1);
            Value.Integer = static_cast<int32_t>(value << ((at[-1] | 32) == 'k' ? 10 : 20));
            m_Cursor = at;
            return Take(TK_INTEGER, TokenStart, at - 1);
        }
        "0" [xX] hex+               { m_Cursor = at; return TakeHex(TokenStart + 2, at); }
        "$" hex+                    { m_Cursor = at; return TakeHex(TokenStart + 1, at); }
        digit hex* [hH]             { m_Cursor = at; return TakeHex(TokenStart, at - 1); }
        digit+ ("." digit* exponent? | exponent) {
            const auto* const text = reinterpret_cast<const char*>(TokenStart);
            std::from_chars(text, text + (at - TokenStart), Value.Float);
            m_Cursor = at;
            return Take(TK_FLOAT, TokenStart, at);
        }
        ["] ([^"\\\n\r\x00] | [\\] [^\x00])* ["] { m_Cursor = at; return TakeQuoted(TK_STRING); }
        ['] ([^'\\\n\r\x00] | [\\] [^\x00])* ['] { m_Cursor = at; return TakeQuoted(TK_INTEGER); }
        *                           { m_Cursor = at; return Take(TK_PUNCT, TokenStart, at); }
*/
    }
}
