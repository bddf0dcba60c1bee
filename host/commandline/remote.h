// Targets that are not simulated here, and simulated ones that others reach.

#pragma once

#include <iosfwd>
#include <memory>
#include <string>
#include <vector>

#include "host/commandline/actions.h"

namespace etmhost {

/// Makes a host whose target is the chip behind the debug server at `address`, as --remote takes
/// it. `bases` are texts such as "etm=0xE0041000": where components are that no ROM table lists.
/// What a person should know goes to `told`, or is a note among `events`. A dry run reads the chip
/// and does not write it. Throws HostError if there is no server, or no trace hardware that this
/// program can work with.
std::unique_ptr<SimulatedHost> MakeRemoteHost(const std::string& address,
                                              const std::vector<std::string>& bases,
                                              Symbols symbols, record::EventStream& events,
                                              bool dryRun, std::ostream& told);

/// Offers the simulated chip of `host` to debug servers at `port`, 0 for a free one, and prints the
/// port's number. Returns when the program is told to end, or behind the first caller if `once`.
Status ServeChip(SimulatedHost& host, const Chip& chip, uint16_t port, bool once,
                 std::ostream& out);

} // namespace etmhost
