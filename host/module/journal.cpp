#include "host/module/journal.h"

#include "host/support/refusal.h"

namespace etmhost {

void Journal::Call(const std::string& call, const std::string& answer) {
    if (m_Out != nullptr) // flushed, so that the dialog and its journal can be watched together
        *m_Out << call << " -> " << answer << std::endl;
}

void Journal::Refused(std::string_view command, std::string_view reasons) {
    if (m_Refusals != nullptr) PrintRefusal(*m_Refusals, command, reasons);
}

void Journal::Tell(const std::string& text) {
    if (m_Refusals != nullptr) PrintRefusal(*m_Refusals, "etmhost", text);
}

void Journal::Step(const std::string& text) {
    if (m_Out != nullptr) *m_Out << "-- " << text << std::endl;
}

} // namespace etmhost
