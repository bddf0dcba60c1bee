// The registers of the chip that an OpenOCD server is connected with, through its Tcl port.

#pragma once

#include <ostream>

#include "host/remote/Connection.h"
#include "host/remote/tcl_answer.h"
#include "host/remote/wire.h"
#include "host/target/RegisterBus.h"

namespace etmhost {

/// Reads and writes through the server's current target, over one connection. The core keeps
/// running, and other users of the server notice nothing but its log. What the server is sent holds
/// numbers from here and names from the server itself, nothing that a person typed.
///
/// An answer that is late, too long or none that the command can have makes the connection useless:
/// whatever comes next might belong to an earlier question.
class OpenOcdBus : public RegisterBus {
public:
    /// Takes over `connection`. `place` says where the server is, for messages. A choice among
    /// several targets is told on `told`. Each call waits for `patience` at most. Throws HostError
    /// if there is no OpenOCD with a target at the other end, BusLost if nothing is.
    OpenOcdBus(Connection connection, std::string place, std::ostream& told,
               std::chrono::milliseconds patience = kPatience);

    /// All of it is one server command.
    std::vector<uint32_t> Read(std::span<const uint32_t> addresses) override;
    void Write(uint32_t address, uint32_t value) override;
    using RegisterBus::Read;

    /// Has the server enable its trace port: it writes the port's registers, the size included, and
    /// runs what the target's script does ahead of that, which selects the pins on many chips. The
    /// port must be the only one, with a trace clock, and not in use by the debug probe.
    Refusal PreparePort(uint32_t width) override;

    std::string CoreType() override;

    /// The server's name for the target.
    const std::string& target() const { return m_Target; }

private:
    void Examine(std::ostream& told);
    [[noreturn]] void Lose(const std::string& reason);
    std::string Ask(const std::string& command, Deadline deadline);
    TclResult Run(const std::string& command, Deadline deadline);

    Connection m_Connection;
    const std::string m_Place;
    const std::chrono::milliseconds m_Patience;
    std::string m_Target;
};

} // namespace etmhost
