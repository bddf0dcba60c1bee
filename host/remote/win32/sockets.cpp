#include "host/remote/sockets.h"

#define WIN32_LEAN_AND_MEAN
#ifndef NOMINMAX // one standard library defines it already
#define NOMINMAX
#endif
#include <winsock2.h>
#include <ws2tcpip.h>

#include <memory>

namespace etmhost::sockets {

namespace {

SOCKET Number(Socket socket) {
    return static_cast<SOCKET>(socket);
}

const sockaddr* Record(const Address& address) {
    return reinterpret_cast<const sockaddr*>(address.data());
}

// The library wants to be asked once, ahead of everything else.
bool IsReady() {
    static const int error = [] {
        WSADATA data;
        return WSAStartup(MAKEWORD(2, 2), &data);
    }();
    return error == 0;
}

void Prepare(Socket socket) {
    u_long on = 1;
    ioctlsocket(Number(socket), FIONBIO, &on);
    // Questions and answers are short, and each waits for the other.
    const BOOL atOnce = TRUE;
    setsockopt(Number(socket), IPPROTO_TCP, TCP_NODELAY, reinterpret_cast<const char*>(&atOnce),
               sizeof atOnce);
}

Socket Open(int family) {
    if (!IsReady()) return kNone;
    // A handle without the flag to inherit it: WSASocket alone can say so.
    const SOCKET made = WSASocketW(family, SOCK_STREAM, IPPROTO_TCP, nullptr, 0,
                                   WSA_FLAG_OVERLAPPED | WSA_FLAG_NO_HANDLE_INHERIT);
    if (made == INVALID_SOCKET) return kNone;
    Prepare(static_cast<Socket>(made));
    return static_cast<Socket>(made);
}

Outcome Unless(int pending) {
    return WSAGetLastError() == pending ? Outcome::Pending : Outcome::Failed;
}

Outcome Moved(int result, size_t& count) {
    if (result < 0) return Unless(WSAEWOULDBLOCK);
    count = static_cast<size_t>(result);
    return Outcome::Done;
}

// What one call can take at most.
int Part(size_t count) {
    return static_cast<int>(count < 65536 ? count : 65536);
}

} // namespace

std::vector<Address> Resolve(const std::string& host, uint16_t port, std::string& reason) {
    addrinfo hints{}, *list = nullptr;
    hints.ai_socktype = SOCK_STREAM;
    if (!IsReady() || getaddrinfo(host.c_str(), std::to_string(port).c_str(), &hints, &list) != 0) {
        reason = LastReason();
        return {};
    }
    const std::unique_ptr<addrinfo, void (*)(addrinfo*)> owner(
        list, [](addrinfo* first) { freeaddrinfo(first); });
    std::vector<Address> addresses;
    for (const addrinfo* item = list; item != nullptr; item = item->ai_next)
        addresses.emplace_back(reinterpret_cast<const char*>(item->ai_addr), item->ai_addrlen);
    return addresses;
}

Outcome StartConnect(Socket& socket, const Address& address) {
    socket = Open(Record(address)->sa_family);
    if (socket == kNone) return Outcome::Failed;
    if (connect(Number(socket), Record(address), static_cast<int>(address.size())) == 0)
        return Outcome::Done;
    return Unless(WSAEWOULDBLOCK);
}

Outcome FinishConnect(Socket socket) {
    int error = 0, size = sizeof error;
    if (getsockopt(Number(socket), SOL_SOCKET, SO_ERROR, reinterpret_cast<char*>(&error), &size) !=
        0)
        return Outcome::Failed;
    WSASetLastError(error);
    return error == 0 ? Outcome::Done : Outcome::Failed;
}

Outcome Listen(Socket& socket, uint16_t& port) {
    socket = Open(AF_INET);
    if (socket == kNone) return Outcome::Failed;
    const BOOL on = TRUE; // or another program may take the same port
    setsockopt(Number(socket), SOL_SOCKET, SO_EXCLUSIVEADDRUSE, reinterpret_cast<const char*>(&on),
               sizeof on);
    sockaddr_in own{};
    own.sin_family = AF_INET;
    own.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    own.sin_port = htons(port);
    int size = sizeof own;
    sockaddr* const record = reinterpret_cast<sockaddr*>(&own);
    if (bind(Number(socket), record, size) != 0 || listen(Number(socket), 4) != 0 ||
        getsockname(Number(socket), record, &size) != 0)
        return Outcome::Failed;
    port = ntohs(own.sin_port);
    return Outcome::Done;
}

Outcome Accept(Socket listener, Socket& caller) {
    const SOCKET taken = accept(Number(listener), nullptr, nullptr);
    if (taken == INVALID_SOCKET) return Unless(WSAEWOULDBLOCK);
    caller = static_cast<Socket>(taken);
    Prepare(caller);
    return Outcome::Done;
}

Outcome Send(Socket socket, const char* data, size_t& count) {
    return Moved(send(Number(socket), data, Part(count), 0), count);
}

Outcome Receive(Socket socket, char* data, size_t& count) {
    return Moved(recv(Number(socket), data, Part(count), 0), count);
}

bool Wait(Socket socket, Readiness readiness, std::chrono::milliseconds time) {
    fd_set set, failed; // a connection that is refused tells so as an exception only
    FD_ZERO(&set);
    FD_SET(Number(socket), &set);
    failed = set;
    timeval limit{static_cast<long>(time.count() / 1000),
                  static_cast<long>(time.count() % 1000 * 1000)};
    const bool input = readiness == Readiness::Input;
    return select(0, input ? &set : nullptr, input ? nullptr : &set, &failed, &limit) != 0;
}

void Close(Socket socket) {
    closesocket(Number(socket));
}

std::string LastReason() {
    const int error = WSAGetLastError();
    switch (error) {
    case WSAECONNREFUSED:
        return "Connection refused";
    case WSAECONNRESET:
    case WSAECONNABORTED:
        return "Connection reset by peer";
    case WSAHOST_NOT_FOUND:
        return "Name or service not known";
    case WSAEADDRINUSE:
        return "Address already in use";
    default:
        return "system error " + std::to_string(error);
    }
}

} // namespace etmhost::sockets
