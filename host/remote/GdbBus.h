// The registers of the chip that a GDB server is connected with.

#pragma once

#include <ostream>

#include "host/remote/Connection.h"
#include "host/remote/gdb_packets.h"
#include "host/remote/wire.h"
#include "host/target/RegisterBus.h"

namespace etmhost {

/// Reads and writes over the GDB remote protocol. Attaching stops the core, and it is the server's
/// choice whether detaching lets it run again. Words are those of a little-endian chip.
///
/// An answer that is late or none that the request can have makes the connection useless: whatever
/// comes next might belong to an earlier question.
class GdbBus : public RegisterBus {
public:
    /// Takes over `connection`. `place` says where the server is, for messages. What attaching does
    /// is told on `told`. Each call waits for `patience` at most. Throws HostError if there is no
    /// GDB server with a target at the other end.
    GdbBus(Connection connection, std::string place, std::ostream& told,
           std::chrono::milliseconds patience = kPatience);

    /// Detaches.
    ~GdbBus() override;
    GdbBus(const GdbBus&) = delete;
    GdbBus& operator=(const GdbBus&) = delete;

    /// Words side by side are one request.
    std::vector<uint32_t> Read(std::span<const uint32_t> addresses) override;
    void Write(uint32_t address, uint32_t value) override;
    using RegisterBus::Read;

private:
    void Attach();
    [[noreturn]] void Lose(const std::string& reason);
    std::string Ask(const std::string& request, Deadline deadline);
    std::string Answer(const std::string& packet, Deadline deadline);

    Connection m_Connection;
    const std::string m_Place;
    const std::chrono::milliseconds m_Patience;
    GdbReader m_Reader;
    bool m_Acknowledges = true;
    size_t m_PacketSize;
};

} // namespace etmhost
