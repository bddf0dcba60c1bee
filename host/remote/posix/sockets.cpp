#include "host/remote/sockets.h"

#include <fcntl.h>
#include <netdb.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cerrno>
#include <memory>
#include <system_error>

#include "host/remote/Deadline.h"

namespace etmhost::sockets {

namespace {

int Number(Socket socket) {
    return static_cast<int>(socket);
}

const sockaddr* Record(const Address& address) {
    return reinterpret_cast<const sockaddr*>(address.data());
}

Socket Open(int family) {
    return socket(family, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0);
}

// Questions and answers are short, and each waits for the other.
void SendAtOnce(Socket socket) {
    const int on = 1;
    setsockopt(Number(socket), IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
}

Outcome Moved(ssize_t result, size_t& count) {
    if (result >= 0) {
        count = static_cast<size_t>(result);
        return Outcome::Done;
    }
    return errno == EAGAIN || errno == EWOULDBLOCK || errno == EINTR ? Outcome::Pending
                                                                     : Outcome::Failed;
}

} // namespace

std::vector<Address> Resolve(const std::string& host, uint16_t port, std::string& reason) {
    addrinfo hints{}, *list = nullptr;
    hints.ai_socktype = SOCK_STREAM;
    const int error = getaddrinfo(host.c_str(), std::to_string(port).c_str(), &hints, &list);
    if (error != 0) {
        reason = gai_strerror(error);
        return {};
    }
    const std::unique_ptr<addrinfo, void (*)(addrinfo*)> owner(list, freeaddrinfo);
    std::vector<Address> addresses;
    for (const addrinfo* item = list; item != nullptr; item = item->ai_next)
        addresses.emplace_back(reinterpret_cast<const char*>(item->ai_addr), item->ai_addrlen);
    return addresses;
}

Outcome StartConnect(Socket& socket, const Address& address) {
    socket = Open(Record(address)->sa_family);
    if (socket == kNone) return Outcome::Failed;
    SendAtOnce(socket);
    if (connect(Number(socket), Record(address), static_cast<socklen_t>(address.size())) == 0)
        return Outcome::Done;
    // An interrupted one goes on by itself.
    return errno == EINPROGRESS || errno == EINTR ? Outcome::Pending : Outcome::Failed;
}

Outcome FinishConnect(Socket socket) {
    int error = 0;
    socklen_t size = sizeof error;
    if (getsockopt(Number(socket), SOL_SOCKET, SO_ERROR, &error, &size) != 0)
        return Outcome::Failed;
    errno = error;
    return error == 0 ? Outcome::Done : Outcome::Failed;
}

Outcome Listen(Socket& socket, uint16_t& port) {
    socket = Open(AF_INET);
    if (socket == kNone) return Outcome::Failed;
    const int on = 1; // or the port of a server that has just ended stays taken for a minute
    setsockopt(Number(socket), SOL_SOCKET, SO_REUSEADDR, &on, sizeof on);
    sockaddr_in own{};
    own.sin_family = AF_INET;
    own.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    own.sin_port = htons(port);
    socklen_t size = sizeof own;
    sockaddr* const record = reinterpret_cast<sockaddr*>(&own);
    if (bind(Number(socket), record, size) != 0 || listen(Number(socket), 4) != 0 ||
        getsockname(Number(socket), record, &size) != 0)
        return Outcome::Failed;
    port = ntohs(own.sin_port);
    return Outcome::Done;
}

Outcome Accept(Socket listener, Socket& caller) {
    caller = accept4(Number(listener), nullptr, nullptr, SOCK_NONBLOCK | SOCK_CLOEXEC);
    if (caller != kNone) {
        SendAtOnce(caller);
        return Outcome::Done;
    }
    return errno == EAGAIN || errno == EWOULDBLOCK || errno == EINTR || errno == ECONNABORTED
               ? Outcome::Pending
               : Outcome::Failed;
}

Outcome Send(Socket socket, const char* data, size_t& count) {
    return Moved(send(Number(socket), data, count, MSG_NOSIGNAL), count);
}

Outcome Receive(Socket socket, char* data, size_t& count) {
    return Moved(recv(Number(socket), data, count, 0), count);
}

bool Wait(Socket socket, Readiness readiness, std::chrono::milliseconds time) {
    const Deadline deadline(time);
    pollfd entry{Number(socket),
                 static_cast<short>(readiness == Readiness::Input ? POLLIN : POLLOUT), 0};
    for (;;) {
        const int ready = poll(&entry, 1, static_cast<int>(deadline.Left().count()));
        if (ready != 0 && !(ready < 0 && errno == EINTR)) return true;
        if (deadline.IsOver()) return false;
    }
}

void Close(Socket socket) {
    close(Number(socket));
}

std::string LastReason() {
    return std::generic_category().message(errno);
}

} // namespace etmhost::sockets
