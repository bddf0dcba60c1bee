// What a dry run writes all the same: board files.

#pragma once

#include <filesystem>
#include <map>
#include <string>
#include <vector>

namespace etmhost {

/// What to say ahead of a dry run.
inline constexpr const char* kDryRun =
    "dry run: commands and values go to a copy of the target, which is thrown away;\n"
    "a board file that is created is written all the same";

/// The board files of a directory, the only one where the module makes any, as they were once.
class BoardFilesBefore {
public:
    explicit BoardFilesBefore(std::filesystem::path directory);

    /// Returns the paths of those that have been written since.
    std::vector<std::string> WrittenSince() const;

private:
    using Times = std::map<std::filesystem::path, std::filesystem::file_time_type>;
    Times Look() const;

    const std::filesystem::path m_Directory;
    const Times m_Before;
};

} // namespace etmhost
