// Connections over TCP, in which nothing waits without an end.

#pragma once

#include <cstdint>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>

#include "host/remote/Deadline.h"
#include "host/remote/sockets.h"

namespace etmhost {

/// A connection that is gone, and why, in words.
class ConnectionLost : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// One end of a connection. The first operation that fails, and the first that is not over in time,
/// closes it: each later one throws ConnectionLost with the same text, at once.
class Connection {
public:
    /// Connects to `port` of `host`, a name or a number; empty stands for this machine, over either
    /// kind of loopback address. Throws ConnectionLost with a reason that names neither.
    static Connection To(const std::string& host, uint16_t port, Deadline deadline);

    Connection(Connection&& other) noexcept;
    Connection& operator=(Connection&& other) noexcept;
    ~Connection();

    /// Sends all of `bytes`.
    void Send(std::string_view bytes, Deadline deadline);

    /// Waits for bytes from the other side. Returns those that are there, at least one and at most
    /// 64 KB. The other side's closing counts as a failure.
    std::string Receive(Deadline deadline);

    /// Waits until Receive would not wait. Returns false if `deadline` comes first, which closes
    /// nothing.
    bool HasInput(Deadline deadline) const;

    /// Closes it from this side, for `reason`.
    void Close(const std::string& reason);

    bool IsOpen() const { return m_Socket != sockets::kNone; }

    /// Returns why it is closed.
    const std::string& reason() const { return m_Reason; }

private:
    friend class Listener;
    explicit Connection(sockets::Socket socket) : m_Socket(socket) {}
    [[noreturn]] void Lose(const std::string& reason);
    void RequireOpen() const;

    sockets::Socket m_Socket = sockets::kNone;
    std::string m_Reason; ///< why it was closed
};

/// Waits for callers at the loopback address of this machine.
class Listener {
public:
    /// Takes `port`; 0 lets the system choose one. Throws ConnectionLost if it can't be had.
    explicit Listener(uint16_t port);
    ~Listener();
    Listener(const Listener&) = delete;
    Listener& operator=(const Listener&) = delete;

    uint16_t port() const { return m_Port; }

    /// Returns the next caller; nothing if none comes before `deadline`.
    std::optional<Connection> Accept(Deadline deadline);

private:
    sockets::Socket m_Socket = sockets::kNone;
    uint16_t m_Port;
};

} // namespace etmhost
