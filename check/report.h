// What the capability report has to be.

#pragma once

#include <string>

#include "check/HostSide.h"

namespace hostcheck {

/// Tells what is wrong with `report`, which the host has written in `call`.
void CheckReport(const HostCall& call, const std::string& report);

} // namespace hostcheck
