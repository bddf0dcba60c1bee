// What etmhost does on each of its commands.

#pragma once

#include <iosfwd>
#include <span>
#include <string>
#include <utility>
#include <vector>

#include "host/module/module_session.h"

namespace etmhost {

/// The name under which the program itself complains.
inline constexpr const char* kProgram = "etmhost";

/// Exit statuses.
enum Status : int {
    kDone = 0,
    kFailed = 1,   ///< the target refused a command, the module failed, or a replay differs
    kBadInput = 2, ///< there was nothing to work with
};

/// What they mean, for people.
inline constexpr std::pair<Status, const char*> kStatusMeanings[] = {
    {kDone, "Everything was done"},
    {kFailed, "The target refused a command, the module failed, a script did not find what it "
              "expects, a check found a breach, or a replay differs; standard error tells which"},
    {kBadInput, "There was nothing to work with: the command line, a file, the connection or the "
                "output is no good; standard error tells why"},
};

/// Lists chips.
Status ShowChips(std::span<const Chip> chips, std::ostream& out);

/// Prints what the host's target is and holds.
Status ShowTarget(SimulatedHost& host, std::ostream& out);

/// The same for programs, as JSON. Bytes that are no UTF-8 become U+FFFD.
Status ShowChipsJson(std::span<const Chip> chips, std::ostream& out);
Status ShowTargetJson(SimulatedHost& host, std::ostream& out);

/// Carries out `commands` in order but for remarks, which begin with "#", and prints those that
/// were. A refused one is a matter of the host's journal.
Status RunCommands(SimulatedHost& host, const std::vector<std::string>& commands,
                   std::ostream& out);

/// Shows the dialog, and returns when it has closed. Failures are notes among `events`.
Status OpenDialog(ModuleSession& session, record::EventStream& events);

/// Sends the module's settings to the target. Failures are notes too.
Status Apply(ModuleSession& session, record::EventStream& events, std::ostream& out);

/// Has the module settle its board file, and prints what it answers. A dialog that cannot open to
/// ask is a note too.
Status InitBoardFile(ModuleSession& session, record::EventStream& events,
                     const std::string& directory, std::ostream& out);

} // namespace etmhost
