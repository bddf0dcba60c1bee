// The conversation between the host and the module, one line per call.

#pragma once

#include <cstdint>
#include <ostream>
#include <string>

namespace etmhost {

class Journal {
public:
    /// Writes to `out`, which must outlive the journal; null: writes nothing.
    explicit Journal(std::ostream* out = nullptr) : out_(out) {}

    bool enabled() const { return out_ != nullptr; }

    /// A call of the module to the host with the host's answer: "call -> answer".
    void Call(const std::string& call, const std::string& answer);

    /// A step of the host itself: "-- text".
    void Step(const std::string& text);

private:
    std::ostream* out_;
};

/// Returns `text` in double quotes, on one line: quotes, backslashes and bytes below 32 are
/// escaped. Null gives "null", without quotes.
std::string Quote(const char* text);

/// Returns "0x" and the hexadecimal digits of `value`.
std::string Hex(uint32_t value);

/// Returns "yes" or "no".
std::string YesNo(bool value);

} // namespace etmhost
