// The answers of OpenOCD's Tcl port.

#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace etmhost {

/// Returns the words of a Tcl list; nothing if `text` is none. Braces, quotes and backslashes are
/// taken off, as a Tcl list has them.
std::optional<std::vector<std::string>> ParseTclList(std::string_view text);

/// How a command under "catch" ended.
struct TclResult {
    bool succeeded;
    std::string text; ///< its value, or its error text
};

/// Reads the answer to "list [catch {COMMAND} v] $v"; nothing if it is another thing.
std::optional<TclResult> ParseTclResult(std::string_view answer);

/// Reads the value of read_memory: exactly `count` numbers of at most 32 bits, in C notation;
/// nothing if it is another thing.
std::optional<std::vector<uint32_t>> ParseTclNumbers(std::string_view value, size_t count);

} // namespace etmhost
