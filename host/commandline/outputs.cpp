#include "host/commandline/outputs.h"

#include <iostream>
#include <sstream>

#include "host/commandline/actions.h"
#include "host/record/json_lines.h"

namespace etmhost {

Outputs::Outputs(const OutputOptions& options, const std::string& program)
    : m_Journal(std::cout, options.ForRun() ? "# " : ""), m_Echo(std::cout), m_Refusals(std::cerr) {
    if (!options.journalFile.empty()) m_Events.Add(m_File.emplace(options.journalFile));
    if (options.journal) m_Events.Add(m_Journal);
    if (options.echo) m_Events.Add(m_Echo);
    m_Events.Add(m_Refusals);
    m_Events.Tell("begin", {{"format", record::kFormat}, {"program", program}});
}

void TellTarget(SimulatedHost& host, bool dryRun) {
    const TraceHardware& hardware = host.target.hardware();
    host.events.Tell(
        "target",
        {{"name", hardware.name}, {"description", hardware.description}, {"dryRun", dryRun}});
}

ChangesOf::ChangesOf(SimulatedHost& host) : m_Host(host), m_Before(Show()) {}

std::string ChangesOf::Show() {
    std::ostringstream out;
    try {
        ShowTarget(m_Host, out);
    } catch (const BusError& error) {
        return std::string("The target does not answer\n  ") + error.what() + "\n";
    }
    return out.str();
}

std::string ChangesOf::Tell(bool dryRun) {
    const std::string differences = Differences(m_Before, Show());
    if (differences.empty())
        return dryRun ? "Nothing would have changed on the target.\n"
                      : "Nothing has changed on the target.\n";
    return (dryRun ? "What would have changed on the target:\n"
                   : "What has changed on the target:\n") +
           differences;
}

} // namespace etmhost
