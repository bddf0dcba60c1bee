#include "host/journal.h"

#include <cstdio>

#include "host/refusal.h"
#include "host/words.h"

namespace etmhost {

void Journal::Call(const std::string& call, const std::string& answer) {
    if (m_Out != nullptr) // flushed, so that the dialog and its journal can be watched together
        *m_Out << call << " -> " << answer << std::endl;
}

void Journal::Refused(std::string_view command, std::string_view reasons) {
    if (m_Refusals != nullptr) PrintRefusal(*m_Refusals, command, reasons);
}

void Journal::Step(const std::string& text) {
    if (m_Out != nullptr) *m_Out << "-- " << text << std::endl;
}

std::string Quote(const char* text) {
    return text != nullptr ? "\"" + Escape(text, "\"\\") + "\"" : "null";
}

std::string Hex(uint32_t value) {
    char text[16];
    std::snprintf(text, sizeof text, "0x%X", static_cast<unsigned>(value));
    return text;
}

std::string YesNo(bool value) {
    return value ? "yes" : "no";
}

} // namespace etmhost
