#include "check/Findings.h"

namespace hostcheck {

namespace {

constexpr size_t kMostOfOneRule = 10;
constexpr size_t kMost = 100;
constexpr size_t kMostPlaces = 10000; // that are kept in mind

std::string Count(size_t count, const char* one, const char* many) {
    return std::to_string(count) + ' ' + (count == 1 ? one : many);
}

} // namespace

Findings::Findings(const char* file, bool quiet, std::function<void(const std::string&)> heard)
    : m_Quiet(quiet), m_Heard(std::move(heard)) {
    if (file == nullptr || *file == '\0') return;
    m_File = std::fopen(file, "w");
    if (m_File == nullptr) Complain(std::string("cannot write the report \"") + file + "\"");
}

void Findings::Write(const std::string& line) {
    const std::string text = "KVETMHostCheck: " + line + '\n';
    for (std::FILE* out : {m_Quiet ? nullptr : stderr, m_File}) {
        if (out == nullptr) continue;
        std::fputs(text.c_str(), out);
        std::fflush(out); // the host may crash next
    }
    if (m_Heard) m_Heard(line);
}

void Findings::Tell(Rule rule, const std::string& place, const std::string& what) {
    const std::lock_guard lock(m_Mutex);
    if (m_Known.size() >= kMostPlaces || !m_Known.emplace(rule, place).second) return;
    const RuleText& text = TextOf(rule);
    const size_t count = ++m_Counts[static_cast<size_t>(rule)];
    if (count > kMostOfOneRule || m_Told >= kMost) return;
    ++m_Told;
    Write(std::string(text.kind == Kind::Breach ? "breach " : "remark ") + text.name + ": " +
          place + ": " + what +
          (count == kMostOfOneRule || m_Told == kMost ? " (more of these are counted only)" : ""));
}

void Findings::Complain(const std::string& what) {
    const std::lock_guard lock(m_Mutex);
    Write(what);
}

void Findings::Summarize() {
    const std::lock_guard lock(m_Mutex);
    size_t counts[2] = {};
    for (const RuleText& text : kRules)
        counts[static_cast<size_t>(text.kind)] += m_Counts[static_cast<size_t>(text.rule)];
    std::string summary =
        Count(counts[0], "breach", "breaches") + ", " + Count(counts[1], "remark", "remarks");
    if (summary == m_Summary) return;
    m_Summary = std::move(summary);
    Write(m_Summary);
}

} // namespace hostcheck
