// Events as JSON, one object on each line. docs/etmhost.md tells the form.

#pragma once

#include <string>
#include <string_view>

#include "host/record/Event.h"

namespace record {

/// The number of the form, which its first event "begin" has as "format".
inline constexpr int64_t kFormat = 1;

/// Returns `event` as a line, without its end. The line has a sum of itself in it.
std::string ToJsonLine(const Event& event);

/// Reads what ToJsonLine gives; keys that it does not know are passed over. Throws
/// std::runtime_error, with what is wrong, for another text. `altered`, unless null, receives
/// whether the event is another than the one of which the line's sum was made; a line without a sum
/// is none that was altered.
Event FromJsonLine(std::string_view line, bool* altered = nullptr);

} // namespace record
