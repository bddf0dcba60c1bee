// Running a board file, line by line.

#pragma once

#include <functional>
#include <string>
#include <string_view>

#include "host/support/refusal.h"

namespace etmhost {

/// Reads the file `path` and hands each line that is neither blank nor a comment to `execute`,
/// without the white space around it and with its number, from 1. Refused are a file that cannot be
/// read, and each refused line with a reason "line N: <reason>". Such a line does not keep the
/// later ones from being run.
Refusal RunBoardFile(const std::string& path,
                     const std::function<Refusal(int number, std::string_view line)>& execute);

} // namespace etmhost
