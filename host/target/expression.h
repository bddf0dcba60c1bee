// Address expressions, as a person types them into the dialog.

#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <string>
#include <string_view>

namespace etmhost {

/// Addresses by symbol name.
using Symbols = std::map<std::string, uint32_t, std::less<>>;

/// What became of an expression: a value, or what is wrong with it.
struct Evaluation {
    uint32_t value = 0;
    std::string error; ///< empty: `value` holds the result
    std::string where; ///< the piece of the text that is wrong; empty: none in particular

    /// Returns the error and the piece, on one line.
    std::string ErrorText() const;
};

/// Evaluates `text`: numbers, character constants and `symbols`, joined by + and -, with
/// parentheses and signs. Numbers are decimal, hexadecimal (0x1F, 1Fh, $1F) or binary (0b101), with
/// `_` between hexadecimal and binary digits, and may end in k or M (times 1024 or 1024 * 1024).
/// "//" begins a comment. The result has 32 bits; what exceeds them is lost.
Evaluation Evaluate(std::string_view text, const Symbols& symbols);

} // namespace etmhost
