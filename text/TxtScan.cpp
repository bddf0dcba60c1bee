#include "text/TxtScan.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstring>
#include <limits>

namespace {

// What a byte can be; a byte of 0x80 or above is nothing of it.
enum : uint8_t {
    kDigit = 1,
    kLetter = 2,
    kHexDigit = 4,
    kNamePart = 8, // of an identifier
    kBlank = 16,   // all of them but the line feed
};

struct ByteClasses {
    uint8_t Of[256] = {};

    constexpr ByteClasses() {
        const auto add = [this](unsigned char first, unsigned char last, int classes) {
            for (unsigned ch = first; ch <= last; ++ch) Of[ch] |= static_cast<uint8_t>(classes);
        };
        add('0', '9', kDigit | kHexDigit | kNamePart);
        add('A', 'Z', kLetter | kNamePart);
        add('a', 'z', kLetter | kNamePart);
        add('A', 'F', kHexDigit);
        add('a', 'f', kHexDigit);
        add('_', '_', kNamePart);
        for (const char blank : {' ', '\t', '\r'}) add(blank, blank, kBlank);
    }
};

constexpr ByteClasses kClasses;

bool Is(char ch, int classes) {
    return (kClasses.Of[static_cast<unsigned char>(ch)] & classes) != 0;
}

bool IsDigit(char ch) {
    return Is(ch, kDigit);
}

bool IsLetter(char ch) {
    return Is(ch, kLetter);
}

bool IsHexDigit(char ch) {
    return Is(ch, kHexDigit);
}

/// The value of a digit of a hexadecimal number; 16 for any other byte.
uint32_t DigitValue(char ch) {
    if (!IsHexDigit(ch)) return 16;
    return static_cast<uint32_t>(ch & 0xF) + (IsDigit(ch) ? 0 : 9);
}

/// True for `ch` and its capital; `small` is a small letter.
bool IsLetterOf(char ch, char small) {
    return ch == small || ch == small - 'a' + 'A';
}

/// What a well-formed number that no double holds becomes: 0 or infinity.
double BeyondRange(const char* number, const char* behind) {
    int64_t power = 0; // of ten, of the first digit that is no zero
    bool point = false;
    bool significant = false;
    for (; number != behind && !IsLetter(*number); ++number) {
        point |= *number == '.';
        significant |= *number > '0';
        if (IsDigit(*number) && point != significant) power += point ? -1 : 1;
    }
    if (number != behind) {
        const bool negative = number[1] == '-';
        const char* const digits = number + (IsDigit(number[1]) ? 1 : 2);
        int32_t exponent = 0;
        if (std::from_chars(digits, behind, exponent).ec != std::errc())
            exponent = std::numeric_limits<int32_t>::max();
        power += negative ? -int64_t{exponent} : int64_t{exponent};
    }
    return power > 0 ? HUGE_VAL : 0.0;
}

} // namespace

/// Fills the buffer of a token. What does not fit is only counted. It is handed on by value:
/// nobody holds its address then, and it stays in registers while a token is read.
class TxtScan::TokenText {
public:
    explicit TokenText(char* buffer) : m_Buffer(buffer) {}

    void Add(char ch) {
        if (m_Length < kTextSize - 1) m_Buffer[m_Length] = ch;
        ++m_Length;
    }
    size_t GetLength() const { return m_Length; }
    /// Ends the text. Returns false if it did not fit.
    bool Terminate() {
        m_Buffer[std::min(m_Length, kTextSize - 1)] = '\0';
        return m_Length < kTextSize;
    }

private:
    char* m_Buffer;
    size_t m_Length = 0;
};

TxtScan::TxtScan(const char* text, int32_t length) : Value{}, Text(new char[kTextSize]) {
    Init(text, length);
    if (text == nullptr) Fail("Init not called");
}

TxtScan::~TxtScan() {
    delete[] Text;
}

void TxtScan::Init(const char* text, int32_t length) {
    if (text == nullptr) {
        text = "";
        length = 0;
    }
    Cursor = text;
    TokenStart = text;
    End = text + (length >= 0 ? static_cast<size_t>(length) : std::strlen(text));
    Line = 1;
    Column = 1;
    Fail("GetToken not called");
}

int32_t TxtScan::GetToken() {
    SkipBlanksAndComments();
    const char* const at = TokenStart = Cursor;
    const char first = *at;
    if (at >= End || first == '\0') {
        Text[0] = '\0';
        return Kind = TK_END;
    }
    if (Is(first, kNamePart)) return Is(first, kDigit) ? ScanNumber() : ScanIdentifier();
    if (first == '"' || first == '\'') return ScanQuoted();
    if (first == '$' && IsHexDigit(at[1])) return ScanRadix(at + 1, 4, false);
    TokenText text(Text);
    text.Add(first);
    return Accept(TK_PUNCT, at + 1, text);
}

// What nearly all tokens need becomes part of GetToken; the rest stays out of its way.
inline void TxtScan::SkipBlanksAndComments() {
    const char* const end = End;
    const char* at = Cursor;
    const char* counted = at; // Column tells where this is
    int32_t column = Column;
    while (at < end) {
        if (Is(*at, kBlank)) {
            ++at;
        } else if (*at == '\n') {
            counted = ++at;
            ++Line;
            column = 1;
        } else if (*at == '/' && at[1] == '/') {
            column += static_cast<int32_t>(at - counted);
            counted = at = std::find(at, end, '\n');
        } else {
            break;
        }
    }
    Cursor = at;
    Column = column + static_cast<int32_t>(at - counted);
}

inline int32_t TxtScan::ScanIdentifier() {
    TokenText text(Text);
    const char* at = Cursor;
    do text.Add(*at++);
    while (Is(*at, kNamePart));
    return Accept(TK_IDENT, at, text);
}

inline int32_t TxtScan::ScanNumber() {
    TokenText text(Text);
    uint32_t value = 0;
    const char* at = Cursor;
    for (; IsDigit(*at); text.Add(*at++)) value = value * 10 + DigitValue(*at);
    if (Is(*at, kNamePart) || *at == '.') return ScanOtherNumber();
    Value.Integer = static_cast<int32_t>(value);
    return Accept(TK_DECIMAL, at, text);
}

/// Reads a number that is more than decimal digits.
int32_t TxtScan::ScanOtherNumber() {
    const bool zero = *Cursor == '0';
    if (zero && IsLetterOf(Cursor[1], 'x')) return ScanRadix(Cursor + 2, 4, false);

    // 0b1h is hexadecimal: the suffix decides before the binary prefix does.
    const char* stop = Cursor + 1;
    while (IsHexDigit(*stop) || *stop == '_') ++stop;
    if (IsLetterOf(*stop, 'h')) return ScanRadix(Cursor, 4, true);

    if (zero && IsLetterOf(Cursor[1], 'b')) return ScanRadix(Cursor + 2, 1, false);
    return ScanDecimal();
}

/// Reads digits of `bits` bits each; `suffixed`: an "h" stands behind them.
int32_t TxtScan::ScanRadix(const char* digits, uint32_t bits, bool suffixed) {
    const bool binary = bits == 1;
    const char* const message = binary ? "Invalid binary number" : "Invalid hex number";
    TokenText text(Text);
    uint32_t value = 0;
    const char* at = digits;
    for (;; ++at) {
        if (*at == '_') continue;
        const uint32_t digit = DigitValue(*at);
        if (digit >= 1u << bits) break;
        text.Add(*at);
        value = (value << bits) | digit;
    }
    if (text.GetLength() == 0) return Fail(message);
    if (suffixed) ++at;
    at = ApplyScale(at, value);
    if (IsLetter(*at) || (binary && IsDigit(*at))) return Fail(message);
    Value.Integer = static_cast<int32_t>(value);
    return Accept(TK_INTEGER, at, text);
}

int32_t TxtScan::ScanDecimal() {
    TokenText text(Text);
    uint32_t value = 0;
    const char* at = Cursor;
    for (; IsDigit(*at); ++at) {
        text.Add(*at);
        value = value * 10 + DigitValue(*at);
    }
    const char* const behindInteger = at;

    bool isFloat = *at == '.';
    if (isFloat) do
            text.Add(*at++);
        while (IsDigit(*at));
    if (IsLetterOf(*at, 'e')) {
        text.Add(*at++);
        if (*at == '+' || *at == '-') text.Add(*at++);
        isFloat = IsDigit(*at);
        while (IsDigit(*at)) text.Add(*at++);
    }
    if (isFloat) {
        Value.Float = 0.0;
        const auto result = std::from_chars(Cursor, at, Value.Float);
        if (result.ec != std::errc()) Value.Float = BeyondRange(Cursor, at);
        return Accept(TK_FLOAT, at, text);
    }

    // An exponent without digits is no part of the number, but stays in its text.
    const char* const behind = ApplyScale(behindInteger, value);
    Value.Integer = static_cast<int32_t>(value);
    return Accept(behind == behindInteger ? TK_DECIMAL : TK_INTEGER, behind, text);
}

int32_t TxtScan::ScanQuoted() {
    const char quote = *Cursor;
    TokenText text(Text);
    uint32_t constant = 0;
    const char* at = Cursor + 1;
    for (;; ++at) {
        char ch = *at;
        if (ch == quote) {
            if (at[1] != quote) break;
            ++at;
            continue;
        }
        if (ch == '\\') {
            ch = *++at;
            if (ch == '\0') return Fail("String not terminated");
            if (ch == 'n')
                ch = '\n';
            else if (ch == 'r')
                ch = '\r';
            else if (ch == 't')
                ch = '\t';
        } else if (ch == '\0' || ch == '\n' || ch == '\r') {
            return Fail("String not terminated");
        }
        text.Add(ch);
        constant = (constant << 8) | static_cast<uint32_t>(static_cast<signed char>(ch));
    }
    if (quote == '"') return Accept(TK_STRING, at + 1, text);

    if (text.GetLength() > 4) return Fail("Too long character constant");
    Value.Integer = static_cast<int32_t>(constant);
    TokenText none(Text);
    return Accept(TK_INTEGER, at + 1, none);
}

/// Returns the position behind a scale suffix at `at`, if one stands there.
const char* TxtScan::ApplyScale(const char* at, uint32_t& value) {
    if (IsLetter(*at) && IsLetter(at[1])) return at;
    if (IsLetterOf(*at, 'k'))
        value <<= 10;
    else if (IsLetterOf(*at, 'm'))
        value <<= 20;
    else
        return at;
    return at + 1;
}

/// Ends the token that fills `text`, and moves behind it.
int32_t TxtScan::Accept(TokenKind kind, const char* behind, TokenText text) {
    if (!text.Terminate()) return Fail("Token too long");
    Column += static_cast<int32_t>(behind - Cursor);
    Cursor = behind;
    return Kind = kind;
}

int32_t TxtScan::Fail(const char* message) {
    std::memcpy(Text, message, std::strlen(message) + 1);
    return Kind = TK_ERROR;
}
