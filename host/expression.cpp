#include "host/expression.h"

#include <algorithm>
#include <optional>

#include "host/words.h"

namespace etmhost {

namespace {

std::optional<uint32_t> DigitValue(char c, uint32_t base) {
    uint32_t value = base;
    if (IsDigit(c)) {
        value = static_cast<uint32_t>(c - '0');
    } else if (c >= 'a' && c <= 'f') {
        value = static_cast<uint32_t>(c - 'a') + 10;
    } else if (c >= 'A' && c <= 'F') {
        value = static_cast<uint32_t>(c - 'A') + 10;
    }
    return value < base ? std::optional(value) : std::nullopt;
}

bool IsNameCharacter(char c) {
    return IsLetter(c) || IsDigit(c) || c == '_' || c == '.';
}

// A recursive descent over the text. The first error stands; everything behind it is left alone.
class Parser {
public:
    Parser(std::string_view text, const Symbols& symbols) : text_(text), symbols_(symbols) {}

    Evaluation Run() {
        Evaluation result;
        result.value = Sum();
        SkipSpace();
        if (error_.empty() && position_ < text_.size()) {
            Fail("unexpected text", text_.substr(position_));
        }
        result.error = error_;
        result.where = where_;
        return result;
    }

private:
    static constexpr int kDeepest = 100; // so that a text of parentheses cannot exhaust the stack

    char Peek(size_t ahead = 0) const {
        return position_ + ahead < text_.size() ? text_[position_ + ahead] : '\0';
    }

    void SkipSpace() {
        while (IsBlank(Peek())) {
            ++position_;
        }
        if (Peek() == '/' && Peek(1) == '/') {
            position_ = std::min(text_.find_first_of("\r\n", position_), text_.size());
        }
    }

    uint32_t Fail(const std::string& what, std::string_view where = {}) {
        if (error_.empty()) {
            error_ = what;
            where_ = where;
        }
        return 0;
    }

    uint32_t Sum() {
        uint32_t value = Term();
        while (error_.empty()) {
            SkipSpace();
            if (Peek() == '+') {
                ++position_;
                value += Term();
            } else if (Peek() == '-') {
                ++position_;
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
            negative ^= Peek() == '-';
            ++position_;
            SkipSpace();
        }
        const uint32_t value = Operand();
        return negative ? 0 - value : value;
    }

    uint32_t Operand() {
        const char c = Peek();
        if (c == '(') {
            return Parenthesis();
        }
        if (IsDigit(c) || (c == '$' && DigitValue(Peek(1), 16))) {
            return Number();
        }
        if (c == '\'') {
            return Character();
        }
        if (IsLetter(c) || c == '_') {
            return Name();
        }
        return position_ < text_.size() ? Fail("value expected at", text_.substr(position_))
                                        : Fail("value expected at the end");
    }

    uint32_t Parenthesis() {
        if (++depth_ > kDeepest) {
            return Fail("too many parentheses");
        }
        ++position_;
        const uint32_t value = Sum();
        SkipSpace();
        if (Peek() != ')') {
            return Fail("\")\" expected");
        }
        ++position_;
        --depth_;
        return value;
    }

    uint32_t Name() {
        const size_t begin = position_;
        while (IsNameCharacter(Peek())) {
            ++position_;
        }
        const std::string_view name = text_.substr(begin, position_ - begin);
        const auto found = symbols_.find(name);
        return found != symbols_.end() ? found->second : Fail("unknown symbol", name);
    }

    // Whether the digits at the cursor end in the h of a hexadecimal number.
    bool HasHexSuffix() const {
        size_t ahead = 1;
        while (DigitValue(Peek(ahead), 16) || Peek(ahead) == '_') {
            ++ahead;
        }
        return Peek(ahead) == 'h' || Peek(ahead) == 'H';
    }

    uint32_t Number() {
        const size_t begin = position_;
        const char second = Peek() == '0' ? Peek(1) : '\0';
        uint32_t base = 10;
        bool suffix = false;
        if (Peek() == '$') {
            base = 16;
            position_ += 1;
        } else if (second == 'x' || second == 'X') {
            base = 16;
            position_ += 2;
        } else if (HasHexSuffix()) { // also 0b1h, which is 0xB1
            base = 16;
            suffix = true;
        } else if (second == 'b' || second == 'B') {
            base = 2;
            position_ += 2;
        }
        uint32_t value = 0;
        int digits = 0;
        for (;; ++position_) {
            if (const auto digit = DigitValue(Peek(), base)) {
                value = value * base + *digit;
                ++digits;
            } else if (Peek() != '_' || base == 10) {
                break;
            }
        }
        position_ += suffix ? 1 : 0;
        value <<= Scale();
        if (digits == 0 || IsNameCharacter(Peek())) {
            while (IsNameCharacter(Peek())) {
                ++position_;
            }
            return Fail("invalid number", text_.substr(begin, position_ - begin));
        }
        return value;
    }

    int Scale() {
        if (IsLetter(Peek(1))) {
            return 0;
        }
        const char c = Peek();
        const int shift = c == 'k' || c == 'K' ? 10 : c == 'm' || c == 'M' ? 20 : 0;
        position_ += shift != 0 ? 1 : 0;
        return shift;
    }

    uint32_t Character() {
        const size_t begin = position_++;
        uint32_t value = 0;
        int bytes = 0;
        while (position_ < text_.size()) {
            char c = text_[position_++];
            if (c == '\n' || c == '\r') {
                break;
            }
            if (c == '\'') {
                if (Peek() != '\'') {
                    return bytes <= 4 ? value : Fail("too long", Taken(begin));
                }
                ++position_; // a doubled quote stands for nothing
                continue;
            }
            if (c == '\\' && position_ < text_.size()) {
                c = text_[position_++];
                c = c == 'n' ? '\n' : c == 'r' ? '\r' : c == 't' ? '\t' : c;
            }
            value = value << 8 | static_cast<uint32_t>(static_cast<signed char>(c));
            ++bytes;
        }
        return Fail("quote not closed", Taken(begin));
    }

    std::string_view Taken(size_t begin) const { return text_.substr(begin, position_ - begin); }

    std::string_view text_;
    const Symbols& symbols_;
    size_t position_ = 0;
    int depth_ = 0;
    std::string error_, where_;
};

} // namespace

std::string Evaluation::ErrorText() const {
    return where.empty() ? error : error + " \"" + Escape(where) + "\"";
}

Evaluation Evaluate(std::string_view text, const Symbols& symbols) {
    return Parser(text, symbols).Run();
}

} // namespace etmhost
