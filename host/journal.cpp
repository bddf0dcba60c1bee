#include "host/journal.h"

#include <cstdio>

#include "host/refusal.h"
#include "host/words.h"

namespace etmhost {

void Journal::Call(const std::string& call, const std::string& answer) {
    if (out_ != nullptr) { // flushed, so that the dialog and its journal can be watched together
        *out_ << call << " -> " << answer << std::endl;
    }
}

void Journal::Refused(std::string_view command, std::string_view reasons) {
    if (refusals_ != nullptr) {
        PrintRefusal(*refusals_, command, reasons);
    }
}

void Journal::Step(const std::string& text) {
    if (out_ != nullptr) {
        *out_ << "-- " << text << std::endl;
    }
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
