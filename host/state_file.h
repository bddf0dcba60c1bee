// The file in which the simulated target and the named settings survive between runs.

#pragma once

#include <filesystem>
#include <memory>

#include "host/host_interfaces.h"

namespace etmhost {

/// A state file. Each chip has its own target in it; the named settings are common to all.
class StateFile {
public:
    /// Reads `file`; a file that does not exist yet counts as empty. Throws HostError if it cannot
    /// be read, does not hold what this class writes, or could never be written.
    explicit StateFile(std::filesystem::path file);
    ~StateFile();
    StateFile(const StateFile&) = delete;
    StateFile& operator=(const StateFile&) = delete;

    /// Puts what the file says of the host's chip, and the named settings, into `host`. Throws
    /// HostError, and changes nothing, if the file is damaged.
    void Load(SimulatedHost& host) const;

    /// Writes the state of `host`, and leaves all else in the file as it was. The new file takes
    /// the old one's place in one step. An unchanged state is not written. Throws HostError, and
    /// leaves the old file alone, if writing fails.
    void Save(const SimulatedHost& host);

private:
    struct Document;

    std::filesystem::path file_;
    std::unique_ptr<Document> document_;
};

} // namespace etmhost
