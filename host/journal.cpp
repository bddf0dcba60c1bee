#include "host/journal.h"

#include <cstdio>

namespace etmhost {

void Journal::Call(const std::string& call, const std::string& answer) {
    if (out_ != nullptr) { // flushed, so that the dialog and its journal can be watched together
        *out_ << call << " -> " << answer << std::endl;
    }
}

void Journal::Step(const std::string& text) {
    if (out_ != nullptr) {
        *out_ << "-- " << text << std::endl;
    }
}

std::string Quote(const char* text) {
    if (text == nullptr) {
        return "null";
    }
    std::string quoted = "\"";
    for (; *text != '\0'; ++text) {
        const unsigned char c = static_cast<unsigned char>(*text);
        char escape[8];
        if (c == '"' || c == '\\') {
            quoted += '\\';
            quoted += *text;
        } else if (c == '\n' || c == '\r' || c == '\t') {
            quoted += c == '\n' ? "\\n" : c == '\r' ? "\\r" : "\\t";
        } else if (c < 0x20 || c == 0x7F) {
            std::snprintf(escape, sizeof escape, "\\x%02X", c);
            quoted += escape;
        } else {
            quoted += *text;
        }
    }
    return quoted + "\"";
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
