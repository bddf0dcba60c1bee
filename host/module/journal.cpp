#include "host/module/journal.h"

#include "host/support/refusal.h"

namespace etmhost {

void Journal::Call(const std::string& call, const std::string& answer) {
    Write(call + " -> " + answer);
}

void Journal::Refused(std::string_view command, std::string_view reasons) {
    if (m_Refusals != nullptr) PrintRefusal(*m_Refusals, command, reasons);
}

void Journal::Tell(const std::string& text) {
    if (m_Refusals != nullptr) PrintRefusal(*m_Refusals, "etmhost", text);
}

void Journal::Step(const std::string& text) {
    Write("-- " + text);
}

void Journal::Write(const std::string& line) {
    // Whole lines, since a step may come from another thread than the calls; flushed, so that the
    // dialog and its journal can be watched together.
    if (m_Out != nullptr) *m_Out << line + '\n' << std::flush;
}

} // namespace etmhost
