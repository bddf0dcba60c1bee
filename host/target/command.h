// The host's command language: what the module sends, and what a board file holds.

#pragma once

#include <iosfwd>
#include <map>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "host/support/refusal.h"
#include "host/target/expression.h"
#include "host/target/target.h"

namespace etmhost {

/// Named settings: section, key, value.
using NamedSettings = std::map<std::string, std::map<std::string, std::string>>;

/// A form of command, for people.
struct CommandForm {
    std::string text;    ///< "etm pc=start ADDRESS": small letters stand as they are
    const char* meaning; ///< a few words
};

/// Returns what the language has, and what it has in a line of a board file alone. There each
/// command that begins with "etm" may stand behind "trace" too.
std::vector<CommandForm> CommandForms();
std::vector<CommandForm> BoardForms();

/// Carries out commands on a target. Words count in any case. The table in command.cpp is all that
/// it knows, and what CommandForms lists.
///
/// Each acts at once, but for one end of a range: it waits for the other. On a chip whose ETM has
/// no address comparators "start", "stop" and "trigger" take the number of a DWT comparator. Where
/// the PC trace needs comparators that a range of data has, that range is given up.
///
/// A line of a board file is empty, a comment behind ";", or a command as BoardForms tells. The
/// board of a simulated chip has no memory: there the commands for memory check their arguments
/// only. On a real one "mem_write" writes a word of 32 bits, and says so.
class CommandLanguage {
public:
    /// All must outlive the object. Without `settings` none can be set.
    CommandLanguage(Target& target, const Symbols& symbols, NamedSettings* settings = nullptr)
        : m_Target(target), m_Symbols(symbols), m_Settings(settings) {}

    /// Carries out `text`. `stream` receives the report of "capability" with a NUL behind it; all
    /// other commands leave it alone, and "capability" is refused without one.
    Refusal Execute(std::string_view text, std::ostream* stream);

    /// A row of the table.
    struct Row;
    static std::span<const Row> Rows();

private:
    Refusal Run(std::string_view text, bool inBoardFile, std::ostream* stream);
    Refusal Macro(std::string_view value);
    Refusal Capability(std::ostream* stream);
    Refusal PcAt(Refusal (Target::*set)(const Address&), std::string_view address);
    Refusal PcEnd(Refusal (Target::*set)(const Address&), std::string_view address);
    Refusal Data(DataTrace kind);
    Refusal DataEnd(Refusal (Target::*set)(const Address&), std::string_view address);
    Refusal Trigger(std::string_view address);
    Refusal PortSize(std::string_view value);
    Refusal Value(Refusal (Target::*set)(uint32_t), std::string_view text);
    Refusal Setting(std::string_view text);
    Refusal Dwt(std::string_view text);
    Refusal InitMemory(std::string_view text);
    Refusal WriteMemory(std::string_view text);
    Refusal Parse(std::string_view text, Address& address) const;
    Refusal ParseComparator(std::string_view text, Address& address) const;

    Target& m_Target;
    const Symbols& m_Symbols;
    NamedSettings* m_Settings;
    int m_BoardLine = 0; // the number of the line that runs
};

} // namespace etmhost
