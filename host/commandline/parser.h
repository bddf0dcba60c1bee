// Between the library that reads the command line and what the program says in its own words.

#pragma once

#include <CLI/CLI.hpp>
#include <string>

#include "host/commandline/manual.h"

namespace etmhost {

/// Returns what `app` takes, but for what is hidden, and with what only people need beside it.
Manual ManualOf(const CLI::App& app, const std::string& version);

/// Returns what to say where the program has no command `name`.
std::string UnknownCommand(const CLI::App& app, const std::string& name);

/// Returns which option of a line that was read has an empty value; empty if none has. A list may
/// hold empty values.
std::string EmptyValue(const CLI::App& app);

/// Returns what is wrong with the command line `line` that `app` has refused with `error`.
std::string Explain(const CLI::App& app, const CLI::ParseError& error,
                    const std::vector<std::string>& line);

} // namespace etmhost
