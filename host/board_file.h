// Running a board file, line by line.

#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace etmhost {

/// Reads the file `path` and hands each line that is neither blank nor a comment to `execute`,
/// without the white space around it. Returns the empty text if every line was carried out;
/// otherwise what went wrong: a file that cannot be read, or one text "line N: <reason>" per
/// refused line, in rows. A refused line does not keep the later ones from being run.
std::string
RunBoardFile(const std::string& path,
             const std::function<std::optional<std::string>(std::string_view)>& execute);

} // namespace etmhost
