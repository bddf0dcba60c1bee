// The file in which the simulated target and the named settings survive between runs.

#pragma once

#include <filesystem>
#include <functional>
#include <memory>

#include "host/module/host_interfaces.h"

namespace etmhost {

/// A state file. Each chip has its own target in it; the named settings are common to all. Several
/// programs may work with one file at a time: each sees what the others have written as soon as it
/// changes something itself, and of one value the last writer wins.
class StateFile {
public:
    /// Reads `file`; a file that does not exist yet counts as empty. Throws HostError if it cannot
    /// be read, does not hold what this class writes, or could never be written.
    explicit StateFile(std::filesystem::path file);
    ~StateFile();
    StateFile(const StateFile&) = delete;
    StateFile& operator=(const StateFile&) = delete;

    /// Puts what the file said of the host's chip, and the named settings, into `host`. Throws
    /// HostError, and changes nothing, if the file is damaged.
    void Load(SimulatedHost& host);

    /// Calls `change`, which may change `host`, between a read and a write of the file, and lets no
    /// other program write it meanwhile. The new file takes the old one's place in one step; an
    /// unchanged state is not written. Throws HostError behind `change`, and leaves the file alone,
    /// if what changed could not be kept: the next call tries it again.
    /// REQUIRES: Load has put the file's state into `host`.
    void Update(
        SimulatedHost& host, const std::function<void()>& change = [] {});

private:
    struct Document;

    void Pull(SimulatedHost& host);
    void Push(const SimulatedHost& host);

    std::filesystem::path m_File;
    std::unique_ptr<Document> m_Document;
};

} // namespace etmhost
