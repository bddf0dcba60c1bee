#include "host/commandline/check.h"

#include <algorithm>
#include <fstream>
#include <random>
#include <sstream>

#include "check/rules.h"
#include "host/support/host_error.h"
#include "host/support/libraries.h"

namespace etmhost {

namespace {

std::filesystem::path NewFile() {
    return std::filesystem::temp_directory_path() /
           ("etmhost-check-" + std::to_string(std::random_device()()));
}

const char* NameOf(hostcheck::Kind kind) {
    return kind == hostcheck::Kind::Breach ? "breach" : "remark";
}

} // namespace

Status ListRules(std::ostream& out) {
    for (const hostcheck::RuleText& rule : hostcheck::kRules)
        out << NameOf(rule.kind) << ' ' << rule.name << "\n  " << rule.sentence << '\n';
    return kDone;
}

Status WorkToBeChecked(ModuleSession& session, record::EventStream& events) {
    std::ostringstream unheard;
    const Status opened = OpenDialog(session, events);
    const Status applied = Apply(session, events, unheard);
    return std::max({opened, applied, InitBoardFile(session, events, "", unheard)});
}

CheckReport::CheckReport(const std::string& module) : m_File(NewFile()) {
    SetVariable("KVETM_MODULE", module);
    SetVariable("KVETM_CHECK_REPORT", PathText(m_File));
    SetVariable("KVETM_CHECK_QUIET", "1"); // it is printed in the end
}

CheckReport::~CheckReport() {
    for (const char* name : {"KVETM_MODULE", "KVETM_CHECK_REPORT", "KVETM_CHECK_QUIET"})
        SetVariable(name, "");
    std::error_code ignored;
    std::filesystem::remove(m_File, ignored);
}

std::filesystem::path CheckReport::Checker() {
    return LibraryFile("KVETMHostCheck");
}

Status CheckReport::Print(std::ostream& out) const {
    std::ifstream report(m_File);
    std::string last;
    for (std::string line; std::getline(report, line); last = line) out << line << '\n';
    const size_t end = last.find(" breach");
    if (end == std::string::npos) throw HostError("the checker has left no report");
    return last.substr(0, end).ends_with(": 0") ? kDone : kFailed;
}

} // namespace etmhost
