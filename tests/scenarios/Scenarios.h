// Stories that every display has to tell in the same way: the scripts of this folder.
//
// Lines that begin with "#:" say what the host is prepared with, and which changes have to reach
// the target, one by one, after the dialog has asked for its report. "{dir}" stands for a board
// directory of the test's own, with its separator.

#pragma once

#include <ostream>
#include <string>
#include <vector>

#include "host/drive/Script.h"
#include "testkit/RecordingHost.h"

struct Scenario {
    std::string name;
    /// Sets up the target, before Init.
    void (*prepare)(RecordingHost& host);
    etmhost::Script script;
    std::vector<std::string> changes;

    /// The same in a board directory.
    Scenario In(const std::string& directory) const;
};

inline void PrintTo(const Scenario& scenario, std::ostream* out) {
    *out << scenario.name;
}

const std::vector<Scenario>& AllScenarios();

/// The changes among the host's calls behind the first, which asks for the report; throws where
/// that one is missing. If the environment names a folder in KVETM_JOURNALS, writes all calls there
/// first, so that displays can be compared; the polls of a timer and the directory's path are left
/// out.
std::vector<std::string> TakeJournal(const Scenario& scenario, RecordingHost& host,
                                     const std::string& directory);
