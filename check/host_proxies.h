// What the module gets in place of the host's objects.

#pragma once

#include <string>

class IOrnInterface;

namespace hostcheck {

class HostSide;

/// Makes what stands in for `object` as the interface `name`; null for a name that the module does
/// not know. It stays for good.
HostSide* MakeHostSide(const std::string& name, IOrnInterface* object);

} // namespace hostcheck
