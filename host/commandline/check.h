// The module behind the checker: this host held to the rules of its own contract.

#pragma once

#include <filesystem>
#include <iosfwd>
#include <string>

#include "host/commandline/actions.h"

namespace etmhost {

/// Lists the rules that the checker knows.
Status ListRules(std::ostream& out);

/// Shows the dialog, applies the settings and settles the board file.
Status WorkToBeChecked(ModuleSession& session, record::EventStream& events);

/// A report of the checker, while a host runs with it.
class CheckReport {
public:
    /// Has the checker, which has to be loaded later, load `module` and write its report to a file
    /// of this object's.
    explicit CheckReport(const std::string& module);
    ~CheckReport(); ///< removes the file
    CheckReport(const CheckReport&) = delete;
    CheckReport& operator=(const CheckReport&) = delete;

    /// The checker, beside this program.
    static std::filesystem::path Checker();

    /// Prints the report. Call it when the components are gone. Returns kFailed if there is a
    /// breach; throws HostError if there is no report.
    Status Print(std::ostream& out) const;

private:
    const std::filesystem::path m_File;
};

} // namespace etmhost
