// The platform's version, in the form in which the file-save dialog asks for it.

#pragma once

#include <cstdint>

/// Returns the major version in the low byte, with the top bit clear for the NT
/// family of Windows. Platforms that are not Windows answer like a recent one.
uint32_t PlatformVersion();
