// Events as JSON, one object on each line. docs/etmhost.md tells the form.

#pragma once

#include <string>
#include <string_view>

#include "host/record/Event.h"

namespace record {

/// The number of the form, which its first event "begin" has as "format".
inline constexpr int64_t kFormat = 1;

/// Returns `event` as a line, without its end.
std::string ToJsonLine(const Event& event);

/// Reads what ToJsonLine gives; keys that it does not know are passed over. Throws
/// std::runtime_error, with what is wrong, for another text.
Event FromJsonLine(std::string_view line);

} // namespace record
