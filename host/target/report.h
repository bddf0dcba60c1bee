// The capability report: what the ETM of a chip offers, in words.

#pragma once

#include <string>

#include "host/target/etm_resources.h"

namespace etmhost {

/// Returns the report: lines "label: value", each ended by a line feed. The labels are those that
/// the module looks for.
std::string CapabilityReport(const EtmResources& etm);

/// Returns the general control word in words, one line feed behind each line.
std::string DescribeControlWord(uint32_t word);

} // namespace etmhost
