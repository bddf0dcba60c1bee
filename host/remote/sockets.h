// TCP sockets, as far as Connection and Listener need them. posix/ and win32/ each implement all of
// it. No socket waits by itself, and none is handed on to programs that are started from here.

#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace etmhost::sockets {

using Socket = std::intptr_t;
inline constexpr Socket kNone = -1;

/// A system's address record, as bytes.
using Address = std::string;

/// What became of an operation. On Failed, LastReason tells why.
enum class Outcome { Done, Pending, Failed };

/// Returns the addresses of `host`, a number or a name; empty, with `reason`, if there are none. A
/// name may take the system a long time.
std::vector<Address> Resolve(const std::string& host, uint16_t port, std::string& reason);

/// Begins to connect `socket`, which is made for `address`. Where that is Pending, the socket
/// becomes writable when it is decided, and FinishConnect tells how.
Outcome StartConnect(Socket& socket, const Address& address);
Outcome FinishConnect(Socket socket);

/// Makes `socket` listen at the loopback address. `port` 0 lets the system choose; `port` becomes
/// the number that it is.
Outcome Listen(Socket& socket, uint16_t& port);

/// Takes the next caller of `listener`.
Outcome Accept(Socket listener, Socket& caller);

/// Moves up to `count` bytes, which becomes the number of those moved. Received 0, Done: the other
/// side has closed.
Outcome Send(Socket socket, const char* data, size_t& count);
Outcome Receive(Socket socket, char* data, size_t& count);

enum class Readiness { Input, Output };

/// Waits until `socket` is ready, or has failed. Returns whether that was within `time`.
bool Wait(Socket socket, Readiness readiness, std::chrono::milliseconds time);

void Close(Socket socket);

/// Returns why the last operation of this thread failed, in the system's words.
std::string LastReason();

} // namespace etmhost::sockets
