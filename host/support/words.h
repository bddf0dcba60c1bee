// Small routines on 8-bit text, ASCII rules, without locale.

#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace etmhost {

bool IsBlank(char c); ///< space or tab
bool IsDigit(char c);
bool IsLetter(char c);

/// Compares without regard to the case of ASCII letters.
bool EqualNoCase(std::string_view a, std::string_view b);

/// Returns `text` without blanks in front.
std::string_view SkipBlanks(std::string_view text);

/// Returns `text` without blanks in front and behind.
std::string_view Trim(std::string_view text);

/// Cuts the first word, up to a blank or a character of `stops`, off `text` and returns it;
/// `text` keeps what follows, without blanks in front.
std::string_view TakeWord(std::string_view& text, std::string_view stops = {});

/// Returns `text` on one line: each control character becomes an escape such as \n or \x1B, and
/// each character of `marked` gets a backslash in front.
std::string Escape(std::string_view text, std::string_view marked = {});

/// Returns `text` in double quotes, on one line: quotes, backslashes and bytes below 32 are
/// escaped. Null gives "null", without quotes.
std::string Quote(const char* text);
std::string Quote(const std::string& text);

/// Returns "0x" and the hexadecimal digits of `value`.
std::string Hex(uint32_t value);

/// Returns what to say behind an unknown `name`: "; did you mean "NEAR"?" with the one of `names`
/// that differs least, by no more than a few letters, or that alone begins so; else "; " and
/// `otherwise`, if there is that.
std::string DidYouMean(std::string_view name, const std::vector<std::string>& names,
                       const std::string& otherwise = {});

/// Returns the whole number that `text` is, decimal or hexadecimal behind 0x; nothing if it is
/// none, or takes more than 64 bits.
std::optional<uint64_t> ParseNumber(std::string_view text);

/// Returns "yes" or "no".
std::string YesNo(bool value);

} // namespace etmhost
