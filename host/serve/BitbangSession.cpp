#include "host/serve/BitbangSession.h"

namespace etmhost {

bool BitbangSession::Take(std::string_view input, std::string& answer) {
    for (const char c : input) {
        if (c >= '0' && c <= '7') {
            const int levels = c - '0';
            m_Tap.Drive((levels & 4) != 0, (levels & 2) != 0, (levels & 1) != 0);
        } else if (c == 'R') {
            answer += m_Tap.Tdo() ? '1' : '0';
        } else if (c >= 'r' && c <= 'u') {
            const int lines = c - 'r'; // both are given as active
            if ((lines & 2) != 0) m_Tap.Reset();
            const bool held = (lines & 1) != 0;
            if (held != m_Held) m_SystemReset(held);
            m_Held = held;
        } else if (c == 'Q') {
            return false;
        }
    }
    return true;
}

} // namespace etmhost
