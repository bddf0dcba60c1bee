// What the checker has found: each broken rule once per place, on standard error and in a file.

#pragma once

#include <cstdio>
#include <functional>
#include <mutex>
#include <set>
#include <string>
#include <utility>

#include "check/rules.h"

namespace hostcheck {

class Findings {
public:
    /// `file` receives the lines; null or empty: none does. Standard error does too, unless the
    /// checker is to be `quiet`. `heard` gets each line as well.
    Findings(const char* file, bool quiet, std::function<void(const std::string&)> heard);

    /// Tells that `rule` was broken at `place`, unless that has been told. All are counted, and the
    /// first of each rule and in total are told.
    void Tell(Rule rule, const std::string& place, const std::string& what);

    /// Writes what keeps the checker from its work, which is no fault of the host.
    void Complain(const std::string& what);

    /// Writes how many there were, if that is news: the last line counts.
    void Summarize();

private:
    void Write(const std::string& line);

    std::mutex m_Mutex;
    std::FILE* m_File = nullptr;
    const bool m_Quiet;
    std::function<void(const std::string&)> m_Heard;
    std::set<std::pair<Rule, std::string>> m_Known;
    size_t m_Counts[std::size(kRules)] = {};
    size_t m_Told = 0;
    std::string m_Summary;
};

} // namespace hostcheck
