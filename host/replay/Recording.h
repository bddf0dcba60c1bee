// A recording of what went to and fro between a host and the module, as --journal-file writes it.

#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "host/record/Event.h"

namespace etmhost {

/// The largest file that is read, in bytes.
inline constexpr size_t kLargestRecording = size_t{64} << 20;

struct RecordedCall {
    size_t line; ///< of the file, from 1
    record::Event event;
};

struct RecordedScript {
    std::string name, text;
};

struct Recording {
    std::string name;                     ///< of the file, for messages
    std::vector<RecordedCall> calls;      ///< between host and module: each fits its operation
    std::vector<size_t> altered;          ///< lines that are not as they were recorded
    std::optional<RecordedScript> script; ///< what stood for the person
    size_t lines = 0;

    /// Returns "NAME:LINE".
    std::string Place(size_t line) const;
};

/// Reads a recording whose calls may end early, but nest as calls do. Throws HostError with file,
/// line and what is wrong there.
Recording ParseRecording(std::string name, std::string_view text);

/// The same for a file. Throws HostError also if it cannot be read or is too large.
Recording ReadRecording(const std::filesystem::path& file);

} // namespace etmhost
