#include "host/commandline/dry_run.h"

#include "host/support/system.h"
#include "host/support/words.h"

namespace etmhost {

namespace fs = std::filesystem;

BoardFilesBefore::BoardFilesBefore(fs::path directory)
    : m_Directory(std::move(directory)), m_Before(Look()) {}

BoardFilesBefore::Times BoardFilesBefore::Look() const {
    Times times;
    std::error_code error;
    for (fs::directory_iterator entry(m_Directory, error), end; !error && entry != end;
         entry.increment(error)) {
        if (!EqualNoCase(PathText(entry->path().extension()), ".mac")) continue;
        const fs::file_time_type time = fs::last_write_time(entry->path(), error);
        if (!error) times[entry->path()] = time;
        error.clear(); // one that has gone again
    }
    return times;
}

std::vector<std::string> BoardFilesBefore::WrittenSince() const {
    std::vector<std::string> written;
    for (const auto& [file, time] : Look()) {
        const auto before = m_Before.find(file);
        if (before == m_Before.end() || before->second != time) written.push_back(PathText(file));
    }
    return written;
}

} // namespace etmhost
