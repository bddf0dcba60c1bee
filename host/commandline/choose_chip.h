// Which chip is simulated.

#pragma once

#include <span>
#include <string>
#include <vector>

#include "host/target/chips.h"

namespace etmhost {

std::vector<std::string> NamesOf(std::span<const Chip> chips);

/// Returns the program's chip `name`; or that of `file`, unless that is empty, with the option
/// `variant` of its description, unless that is. Throws HostError if there is none.
Chip ChooseChip(const std::string& name, const std::string& file, const std::string& variant);

} // namespace etmhost
