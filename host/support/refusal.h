// What is refused, and how a person is told.

#pragma once

#include <optional>
#include <ostream>
#include <string>
#include <string_view>

namespace etmhost {

/// Why something was refused, for people; nothing if it was carried out. A board file may have
/// several reasons, one per line.
using Refusal = std::optional<std::string>;

/// Writes a line "COMMAND: REASON" for each line of `reasons`. Control characters in the command
/// and in the reasons are escaped, so that a refusal never takes more than its line.
void PrintRefusal(std::ostream& out, std::string_view command, std::string_view reasons);

} // namespace etmhost
