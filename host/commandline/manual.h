// What the program tells of its command line: help, a manual page, completion. All of it is made of
// one description.

#pragma once

#include <string>
#include <utility>
#include <vector>

namespace etmhost {

/// An option, or what stands behind a command.
struct ManualArgument {
    std::vector<std::string> names; ///< "-h", "--help"; none for what stands behind a command
    std::string value;              ///< what it takes, for people: "FILE"; empty: nothing
    std::string kind;               ///< which values there are: "FILE", "DIR", "CHIP" and so on
    std::string meaning;
    bool required = false;
    bool many = false;
};

/// Paragraphs, or rows of something and what it means.
struct ManualSection {
    std::string title;
    std::vector<std::pair<std::string, std::string>> rows;
    std::string text; ///< behind the rows
};

struct ManualCommand {
    std::string name;
    std::string meaning;
    std::vector<ManualArgument> arguments, options;
    std::vector<ManualSection> sections;
};

/// The program: a command with commands.
struct Manual {
    ManualCommand program;
    std::string version;
    std::vector<ManualCommand> commands;
};

/// Returns help in lines of at most `width` characters: about `command`, or about the program if
/// there is none of that name.
/// REQUIRES: 40 <= width.
std::string HelpText(const Manual& manual, const std::string& command, size_t width);

/// Returns a page of section 1 for man.
std::string ManualPage(const Manual& manual);

/// Values that are known when a completion is made: of what kind, and which.
using KnownValues = std::vector<std::pair<std::string, std::vector<std::string>>>;

/// Returns what bash needs to complete a command line of the program. It knows commands, options,
/// `values`, and of itself files, directories and fonts.
std::string BashCompletion(const Manual& manual, const KnownValues& values);

} // namespace etmhost
