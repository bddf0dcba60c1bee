// Images of the settings as text: "Enable=1 PcBegin=main".

#pragma once

#include <string>

#include "settings/jTraceSettings.h"

/// Returns the members of `to` that differ from `from`, in their order.
std::string Difference(const jTraceState& from, const jTraceState& to);

/// Sets members. Throws std::out_of_range for a name that does not exist.
void Edit(jTraceState& state, const std::string& members);
