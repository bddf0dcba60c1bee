#include "host/target/expression.h"

#include <algorithm>
#include <optional>

#include "host/support/words.h"

namespace etmhost {

namespace {

std::optional<uint32_t> DigitValue(char c, uint32_t base) {
    uint32_t value = base;
    if (IsDigit(c))
        value = static_cast<uint32_t>(c - '0');
    else if (c >= 'a' && c <= 'f')
        value = static_cast<uint32_t>(c - 'a') + 10;
    else if (c >= 'A' && c <= 'F')
        value = static_cast<uint32_t>(c - 'A') + 10;
    return value < base ? std::optional(value) : std::nullopt;
}

bool IsNameCharacter(char c) {
    return IsLetter(c) || IsDigit(c) || c == '_' || c == '.';
}

// A recursive descent over the text. The first error stands; everything behind it is left alone.
class Parser {
public:
    Parser(std::string_view text, const Symbols& symbols) : m_Text(text), m_Symbols(symbols) {}

    Evaluation Run() {
        Evaluation result;
        result.value = Sum();
        SkipSpace();
        if (m_Error.empty() && m_Position < m_Text.size())
            Fail("unexpected text", m_Text.substr(m_Position));
        result.error = m_Error;
        result.where = m_Where;
        return result;
    }

private:
    static constexpr int kDeepest = 100; // so that a text of parentheses cannot exhaust the stack

    char Peek(size_t ahead = 0) const {
        return m_Position + ahead < m_Text.size() ? m_Text[m_Position + ahead] : '\0';
    }

    void SkipSpace() {
        while (IsBlank(Peek())) ++m_Position;
        if (Peek() == '/' && Peek(1) == '/')
            m_Position = std::min(m_Text.find_first_of("\r\n", m_Position), m_Text.size());
    }

    uint32_t Fail(const std::string& what, std::string_view where = {}) {
        if (m_Error.empty()) {
            m_Error = what;
            m_Where = where;
        }
        return 0;
    }

    uint32_t Sum() {
        uint32_t value = Term();
        while (m_Error.empty()) {
            SkipSpace();
            if (Peek() == '+') {
                ++m_Position;
                value += Term();
            } else if (Peek() == '-') {
                ++m_Position;
                value -= Term();
            } else {
                break;
            }
        }
        return value;
    }

    uint32_t Term() {
        bool negative = false;
        SkipSpace();
        while (Peek() == '+' || Peek() == '-') {
            if (Peek() == '-') negative = !negative;
            ++m_Position;
            SkipSpace();
        }
        const uint32_t value = Operand();
        return negative ? 0 - value : value;
    }

    uint32_t Operand() {
        const char c = Peek();
        if (c == '(') return Parenthesis();
        if (IsDigit(c) || (c == '$' && DigitValue(Peek(1), 16))) return Number();
        if (c == '\'') return Character();
        if (IsLetter(c) || c == '_') return Name();
        return m_Position < m_Text.size() ? Fail("value expected at", m_Text.substr(m_Position))
                                          : Fail("value expected at the end");
    }

    uint32_t Parenthesis() {
        if (++m_Depth > kDeepest) return Fail("too many parentheses");
        ++m_Position;
        const uint32_t value = Sum();
        SkipSpace();
        if (Peek() != ')') return Fail("\")\" expected");
        ++m_Position;
        --m_Depth;
        return value;
    }

    uint32_t Name() {
        const size_t begin = m_Position;
        while (IsNameCharacter(Peek())) ++m_Position;
        const std::string_view name = m_Text.substr(begin, m_Position - begin);
        const auto found = m_Symbols.find(name);
        return found != m_Symbols.end() ? found->second : Fail("unknown symbol", name);
    }

    // Whether the digits at the cursor end in the h of a hexadecimal number.
    bool HasHexSuffix() const {
        size_t ahead = 1;
        while (DigitValue(Peek(ahead), 16) || Peek(ahead) == '_') ++ahead;
        return Peek(ahead) == 'h' || Peek(ahead) == 'H';
    }

    uint32_t Number() {
        const size_t begin = m_Position;
        const char second = Peek() == '0' ? Peek(1) : '\0';
        uint32_t base = 10;
        bool suffix = false;
        if (Peek() == '$') {
            base = 16;
            m_Position += 1;
        } else if (second == 'x' || second == 'X') {
            base = 16;
            m_Position += 2;
        } else if (HasHexSuffix()) { // also 0b1h, which is 0xB1
            base = 16;
            suffix = true;
        } else if (second == 'b' || second == 'B') {
            base = 2;
            m_Position += 2;
        }
        uint32_t value = 0;
        int digits = 0;
        for (;; ++m_Position) {
            if (const auto digit = DigitValue(Peek(), base)) {
                value = value * base + *digit;
                ++digits;
            } else if (Peek() != '_' || base == 10) {
                break;
            }
        }
        m_Position += suffix ? 1 : 0;
        value <<= Scale();
        if (digits == 0 || IsNameCharacter(Peek())) {
            while (IsNameCharacter(Peek())) ++m_Position;
            return Fail("invalid number", m_Text.substr(begin, m_Position - begin));
        }
        return value;
    }

    int Scale() {
        if (IsLetter(Peek(1))) return 0;
        const char c = Peek();
        const int shift = c == 'k' || c == 'K' ? 10 : c == 'm' || c == 'M' ? 20 : 0;
        m_Position += shift != 0 ? 1 : 0;
        return shift;
    }

    uint32_t Character() {
        const size_t begin = m_Position++;
        uint32_t value = 0;
        int bytes = 0;
        while (m_Position < m_Text.size()) {
            char c = m_Text[m_Position++];
            if (c == '\n' || c == '\r') break;
            if (c == '\'') {
                if (Peek() != '\'') return bytes <= 4 ? value : Fail("too long", Taken(begin));
                ++m_Position; // a doubled quote stands for nothing
                continue;
            }
            if (c == '\\' && m_Position < m_Text.size()) {
                c = m_Text[m_Position++];
                c = c == 'n' ? '\n' : c == 'r' ? '\r' : c == 't' ? '\t' : c;
            }
            value = value << 8 | static_cast<uint32_t>(static_cast<signed char>(c));
            ++bytes;
        }
        return Fail("quote not closed", Taken(begin));
    }

    std::string_view Taken(size_t begin) const { return m_Text.substr(begin, m_Position - begin); }

    std::string_view m_Text;
    const Symbols& m_Symbols;
    size_t m_Position = 0;
    int m_Depth = 0;
    std::string m_Error, m_Where;
};

} // namespace

std::string Evaluation::ErrorText() const {
    return where.empty() ? error : error + " \"" + Escape(where) + "\"";
}

Evaluation Evaluate(std::string_view text, const Symbols& symbols) {
    return Parser(text, symbols).Run();
}

} // namespace etmhost
