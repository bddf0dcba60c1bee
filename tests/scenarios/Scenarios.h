// Stories that every display has to tell in the same way.

#pragma once

#include <ostream>
#include <string>
#include <vector>

#include "testkit/RecordingHost.h"
#include "tests/scenarios/User.h"

struct Scenario {
    const char* name;
    /// Sets up the target, before Init. `directory` is an empty board directory.
    void (*prepare)(RecordingHost& host, const std::string& directory);
    /// What the person does in the sheet.
    void (*script)(User& user, const std::string& directory);
    /// What has to reach the target while the sheet is open. "{dir}" stands for the
    /// board directory with its separator.
    std::vector<std::string> changes;
    /// The message boxes that have to appear.
    std::vector<std::string> boxes;
};

inline void PrintTo(const Scenario& scenario, std::ostream* out) {
    *out << scenario.name;
}

const std::vector<Scenario>& AllScenarios();

/// `scenario.changes` with the directory in place.
std::vector<std::string> ExpectedChanges(const Scenario& scenario, const std::string& directory);

/// The changes among the host's calls, from those of the script on. If the environment
/// names a folder in KVETM_JOURNALS, writes all calls there first, so that displays can
/// be compared; the polls of a timer and the directory's path are left out.
std::vector<std::string> TakeJournal(const Scenario& scenario, RecordingHost& host,
                                     const std::string& directory);
