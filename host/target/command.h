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
///
/// A line of a board file is empty, a comment behind ";", a general command ("mem_init N" or
/// "mem_write A V") or "trace" followed by "clear" (the buffer), "enable" (the trace pins),
/// "update" or an "etm" command. The board has no memory: the two general commands check their
/// arguments only.
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
    Refusal BoardLine(std::string_view line);
    Refusal Etm(std::string_view text);
    Refusal Pc(std::string_view word, std::string_view address);
    Refusal Data(std::string_view word, std::string_view address);
    Refusal Trigger(std::string_view address);
    Refusal PortSize(std::string_view value);
    Refusal HalfRate(std::string_view value);
    Refusal CheckAddress(std::string_view address) const;
    Refusal CheckComparator(std::string_view address) const;

    Target& m_Target;
    const Symbols& m_Symbols;
};

} // namespace etmhost
