// What OpenOCD's remote_bitbang driver says over one connection.

#pragma once

#include <functional>
#include <string>
#include <string_view>

#include "host/serve/Tap.h"

namespace etmhost {

/// Turns the characters of the protocol into levels at a TAP, and back. Each character that is
/// none of the protocol is passed over.
class BitbangSession {
public:
    /// Drives `tap`, which must outlive this object, and tells `systemReset` whenever the line of
    /// that name changes: true while the chip is to be held in reset.
    BitbangSession(Tap& tap, std::function<void(bool)> systemReset)
        : m_Tap(tap), m_SystemReset(std::move(systemReset)) {}

    /// Takes `input` and appends what it asks for to `answer`, at most as many characters.
    /// Returns whether the conversation goes on; what follows its end is ignored.
    bool Take(std::string_view input, std::string& answer);

private:
    Tap& m_Tap;
    std::function<void(bool)> m_SystemReset;
    bool m_Held = false;
};

} // namespace etmhost
