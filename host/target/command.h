// The host's command language: what the module sends, and what a board file holds.

#pragma once

#include <iosfwd>
#include <string>
#include <string_view>

#include "host/support/refusal.h"
#include "host/target/expression.h"
#include "host/target/target.h"

namespace etmhost {

/// Carries out commands on a target. Words count in any case.
///
///   start, stop, trigger force         capture
///   enable, disable                    trace
///   capability                         writes the capability report
///   macro /none | /startup | FILE      prepares the board; FILE is run line by line
///   etm pc=none|all|start A|stop A|from A|to A
///   etm complex
///   etm data=none|addr|value|all|from A|to A
///   etm trigger A
///   etm portsize=BITS
///   etm halfrate=on|off
///   dwt N A, dwt N off                 sets comparator N of a Cortex-M to address A; frees it
///
/// Each acts at once, but for one end of a range: it waits for the other. On a chip whose ETM has
/// no address comparators "start", "stop" and "trigger" take the number of a DWT comparator. Where
/// the PC trace needs comparators that a range of data has, that range is given up.
///
/// A line of a board file is empty, a comment behind ";", a general command ("mem_init N" or
/// "mem_write A V") or "trace" followed by "clear" (the buffer), "enable" (the trace pins),
/// "update" or an "etm" command. The board of a simulated chip has no memory: there the two general
/// commands check their arguments only. On a real one "mem_write" writes a word of 32 bits, and
/// says so.
class CommandLanguage {
public:
    /// `target` and `symbols` must outlive the object.
    CommandLanguage(Target& target, const Symbols& symbols)
        : m_Target(target), m_Symbols(symbols) {}

    /// Carries out `text`. `stream` receives the report of "capability" with a NUL behind it; all
    /// other commands leave it alone, and "capability" is refused without one.
    Refusal Execute(std::string_view text, std::ostream* stream);

private:
    Refusal Macro(std::string_view value);
    Refusal BoardLine(int number, std::string_view line);
    Refusal Etm(std::string_view text);
    Refusal Pc(std::string_view word, std::string_view address);
    Refusal Data(std::string_view word, std::string_view address);
    Refusal Trigger(std::string_view address);
    Refusal PortSize(std::string_view value);
    Refusal HalfRate(std::string_view value);
    Refusal Dwt(std::string_view text);
    Refusal Parse(std::string_view text, Address& address) const;
    Refusal ParseComparator(std::string_view text, Address& address) const;

    Target& m_Target;
    const Symbols& m_Symbols;
};

} // namespace etmhost
