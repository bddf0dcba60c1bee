#include "check/report.h"

#include <string_view>

namespace hostcheck {

namespace {

enum class Form { Number, Version, YesNo };

constexpr struct {
    std::string_view label;
    Form form;
} kLabels[] = {
    {"ETM protocol version", Form::Number},
    {"ETM architecture version", Form::Version},
    {"Number of address comparator pairs", Form::Number},
    {"Number of data comparators", Form::Number},
    {"Number of memory map decoders", Form::Number},
    {"Number of counters", Form::Number},
    {"Sequencer present", Form::YesNo},
    {"Number of external inputs", Form::Number},
    {"Number of external outputs", Form::Number},
    {"FIFOFULL logic present", Form::YesNo},
    {"Half-rate clocking supported", Form::YesNo},
    {"Full-rate clocking supported", Form::YesNo},
    {"Normal format supported", Form::YesNo},
    {"Multiplexed  format  supported", Form::YesNo},
    {"Demultiplexed format supported", Form::YesNo},
};

const char* FormText(Form form) {
    return form == Form::Number    ? "decimal number"
           : form == Form::Version ? "two numbers with a point"
                                   : "yes or no on its line";
}

void SkipBlanks(std::string_view& text, std::string_view blanks) {
    text.remove_prefix(std::min(text.find_first_not_of(blanks), text.size()));
}

bool TakeNumber(std::string_view& text) {
    const size_t digits = std::min(text.find_first_not_of("0123456789"), text.size());
    text.remove_prefix(digits);
    return digits > 0;
}

bool BeginsWith(std::string_view text, std::string_view word) {
    if (text.size() < word.size()) return false;
    for (size_t i = 0; i < word.size(); ++i)
        if ((text[i] | ('a' ^ 'A')) != word[i]) return false;
    return true;
}

/// Returns whether a colon and a value of `form` stand at the beginning of `text`.
bool HasValue(std::string_view text, Form form) {
    SkipBlanks(text, " \t");
    if (!text.starts_with(':')) return false;
    text.remove_prefix(1);
    SkipBlanks(text, form == Form::YesNo ? " \t" : " \t\r\n");
    if (form == Form::YesNo) return BeginsWith(text, "yes") || BeginsWith(text, "no");
    if (!TakeNumber(text) || text.starts_with('x') || text.starts_with('X')) return false;
    if (form == Form::Number) return true;
    if (!text.starts_with('.')) return false;
    text.remove_prefix(1);
    return TakeNumber(text);
}

} // namespace

void CheckReport(const HostCall& call, const std::string& report) {
    const size_t end = report.find('\0');
    if (report.empty())
        call.Tell(Rule::ReportEnd, "it writes no report, and does not refuse either");
    else if (end == std::string::npos)
        call.Tell(Rule::ReportEnd, "the report ends without a NUL");
    else if (report.find_first_not_of('\0', end) != std::string::npos)
        call.Tell(Rule::ReportEnd, "the report goes on behind its first NUL, at byte " +
                                       std::to_string(end) + ", where it ends for the module");
    const std::string_view text = std::string_view(report).substr(0, end);
    std::string wrong;
    for (const auto& [label, form] : kLabels) {
        const size_t at = text.find(label);
        if (at != std::string_view::npos && !HasValue(text.substr(at + label.size()), form))
            wrong += (wrong.empty() ? "" : "; ") + ("no colon and " + std::string(FormText(form))) +
                     " behind " + Quote(label);
    }
    if (!wrong.empty()) call.Tell(Rule::ReportValue, wrong);
}

} // namespace hostcheck
