#include "host/support/refusal.h"

#include <algorithm>

#include "host/support/words.h"

namespace etmhost {

void PrintRefusal(std::ostream& out, std::string_view command, std::string_view reasons) {
    const std::string head = (command.empty() ? "\"\"" : Escape(command)) + ": ";
    std::string lines; // written at once, so that the lines of two programs do not mix
    size_t at = 0;
    do {
        const size_t end = std::min(reasons.find('\n', at), reasons.size());
        lines += head + Escape(reasons.substr(at, end - at)) + "\n";
        at = end + 1;
    } while (at < reasons.size());
    out << lines << std::flush;
}

} // namespace etmhost
