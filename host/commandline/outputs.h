// Who hears of what goes to and fro between the host and the module.

#pragma once

#include <optional>
#include <string>

#include "host/commandline/echo.h"
#include "host/commandline/journal_file.h"
#include "host/commandline/watch.h"

namespace etmhost {

struct OutputOptions {
    bool journal = false;
    std::string journalFile; ///< empty: none
    bool echo = false;
    bool watch = false;
    bool dryRun = false; ///< on a copy of the target

    /// Whether the standard output is for "etmhost run -", and the rest of it behind "# ".
    bool ForRun() const { return echo || dryRun; }
};

/// The stream of events with its writers. Refusals and notes go to standard error in any case.
class Outputs {
public:
    /// Throws HostError if a file cannot be made. `program` is its name and version.
    Outputs(const OutputOptions& options, const std::string& program);

    record::EventStream& events() { return m_Events; }

    /// Returns true iff something could not be written; that has been told.
    bool Failed() const { return m_File && m_File->Failed(); }

private:
    record::EventStream m_Events;
    TextJournal m_Journal;
    Echo m_Echo;
    std::optional<JournalFile> m_File;
    RefusalPrinter m_Refusals;
};

/// Tells of the target of `host`.
void TellTarget(SimulatedHost& host, bool dryRun);

/// What the target of `host` holds, now and at the end of a run.
class ChangesOf {
public:
    explicit ChangesOf(SimulatedHost& host);

    /// Returns what differs by now, for people.
    std::string Tell(bool dryRun);

private:
    std::string Show();

    SimulatedHost& m_Host;
    const std::string m_Before;
};

} // namespace etmhost
