// Where a debug server is, as it stands behind --remote.

#pragma once

#include <cstdint>
#include <memory>
#include <ostream>
#include <string>

#include "host/target/RegisterBus.h"

namespace etmhost {

struct RemoteAddress {
    enum class Kind { OpenOcd, Gdb } kind;
    std::string host; ///< empty: this machine
    uint16_t port;

    bool operator==(const RemoteAddress&) const = default;

    /// Returns it as ParseRemoteAddress reads it.
    std::string Text() const;
};

/// Reads "openocd:PORT", "openocd:HOST:PORT", and the same with "gdb". A number of IPv6 stands in
/// brackets. Throws HostError for other texts.
RemoteAddress ParseRemoteAddress(const std::string& text);

/// Connects with the server at `address`. What a person should know is told on `told`, a line each.
/// Throws HostError if there is no such server, or no chip behind it.
std::unique_ptr<RegisterBus> Connect(const RemoteAddress& address, std::ostream& told);

} // namespace etmhost
