#include "host/remote/Connection.h"

#include <future>
#include <thread>
#include <utility>

namespace etmhost {

using sockets::Outcome;
using sockets::Readiness;

namespace {

constexpr const char* kNoAnswer = "no answer in time";

// A name may take the system longer than anybody wants to wait: who asks can't be called back.
std::vector<sockets::Address> ResolveBefore(const std::string& host, uint16_t port,
                                            Deadline deadline) {
    struct Answer {
        std::vector<sockets::Address> addresses;
        std::string reason;
    };
    std::promise<Answer> promise;
    std::future<Answer> future = promise.get_future();
    std::thread([host, port, promise = std::move(promise)]() mutable {
        Answer answer;
        answer.addresses = sockets::Resolve(host, port, answer.reason);
        promise.set_value(std::move(answer));
    }).detach();
    if (future.wait_for(deadline.Left()) != std::future_status::ready)
        throw ConnectionLost("its name is not found in time");
    Answer answer = future.get();
    if (answer.addresses.empty()) throw ConnectionLost(answer.reason);
    return std::move(answer.addresses);
}

std::vector<sockets::Address> Loopback(uint16_t port) {
    std::vector<sockets::Address> addresses;
    for (const char* number : {"127.0.0.1", "::1"}) {
        std::string ignored;
        for (sockets::Address& address : sockets::Resolve(number, port, ignored))
            addresses.push_back(std::move(address));
    }
    return addresses;
}

} // namespace

Connection Connection::To(const std::string& host, uint16_t port, Deadline deadline) {
    const std::vector<sockets::Address> addresses =
        host.empty() ? Loopback(port) : ResolveBefore(host, port, deadline);
    std::string reason; // the first address is the likely one
    for (size_t i = 0; i < addresses.size(); ++i) {
        Connection connection(sockets::kNone);
        Outcome outcome = sockets::StartConnect(connection.m_Socket, addresses[i]);
        std::string failure = outcome == Outcome::Failed ? sockets::LastReason() : kNoAnswer;
        if (outcome == Outcome::Pending) {
            // One that is silent leaves the others their share of the time.
            const auto share = deadline.Left() / static_cast<int>(addresses.size() - i);
            if (sockets::Wait(connection.m_Socket, Readiness::Output, share)) {
                outcome = sockets::FinishConnect(connection.m_Socket);
                if (outcome == Outcome::Failed) failure = sockets::LastReason();
            }
        }
        if (outcome == Outcome::Done) return connection;
        if (reason.empty()) reason = failure;
    }
    throw ConnectionLost(reason.empty() ? "it has no address" : reason);
}

Connection::Connection(Connection&& other) noexcept
    : m_Socket(std::exchange(other.m_Socket, sockets::kNone)), m_Reason(std::move(other.m_Reason)) {
}

Connection& Connection::operator=(Connection&& other) noexcept {
    std::swap(m_Socket, other.m_Socket);
    std::swap(m_Reason, other.m_Reason);
    return *this;
}

Connection::~Connection() {
    if (IsOpen()) sockets::Close(m_Socket);
}

void Connection::Close(const std::string& reason) {
    if (!IsOpen()) return;
    sockets::Close(std::exchange(m_Socket, sockets::kNone));
    m_Reason = reason;
}

void Connection::Lose(const std::string& reason) {
    Close(reason);
    throw ConnectionLost(reason);
}

void Connection::RequireOpen() const {
    if (!IsOpen()) throw ConnectionLost(m_Reason);
}

void Connection::Send(std::string_view bytes, Deadline deadline) {
    RequireOpen();
    while (!bytes.empty()) {
        size_t count = bytes.size();
        const Outcome outcome = sockets::Send(m_Socket, bytes.data(), count);
        if (outcome == Outcome::Failed) Lose(sockets::LastReason());
        if (outcome == Outcome::Done)
            bytes.remove_prefix(count);
        else if (!sockets::Wait(m_Socket, Readiness::Output, deadline.Left()))
            Lose(kNoAnswer);
    }
}

std::string Connection::Receive(Deadline deadline) {
    RequireOpen();
    for (;;) {
        std::string bytes(65536, '\0');
        size_t count = bytes.size();
        const Outcome outcome = sockets::Receive(m_Socket, bytes.data(), count);
        if (outcome == Outcome::Failed) Lose(sockets::LastReason());
        if (outcome == Outcome::Done) {
            if (count == 0) Lose("the other side has closed the connection");
            bytes.resize(count);
            return bytes;
        }
        if (!sockets::Wait(m_Socket, Readiness::Input, deadline.Left())) Lose(kNoAnswer);
    }
}

bool Connection::HasInput(Deadline deadline) const {
    RequireOpen();
    return sockets::Wait(m_Socket, Readiness::Input, deadline.Left());
}

Listener::Listener(uint16_t port) : m_Port(port) {
    if (sockets::Listen(m_Socket, m_Port) == Outcome::Done) return;
    const std::string reason = sockets::LastReason();
    if (m_Socket != sockets::kNone) sockets::Close(m_Socket);
    throw ConnectionLost("cannot listen at port " + std::to_string(port) + ": " + reason);
}

Listener::~Listener() {
    sockets::Close(m_Socket);
}

std::optional<Connection> Listener::Accept(Deadline deadline) {
    for (;;) {
        Connection caller(sockets::kNone);
        const Outcome outcome = sockets::Accept(m_Socket, caller.m_Socket);
        if (outcome == Outcome::Done) return caller;
        if (outcome == Outcome::Failed) throw ConnectionLost(sockets::LastReason());
        if (!sockets::Wait(m_Socket, Readiness::Input, deadline.Left())) return std::nullopt;
    }
}

} // namespace etmhost
