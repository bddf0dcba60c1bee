#include "host/remote/RemoteAddress.h"

#include <charconv>

#include "host/remote/GdbBus.h"
#include "host/remote/OpenOcdBus.h"
#include "host/support/host_error.h"
#include "host/support/words.h"

namespace etmhost {

namespace {

[[noreturn]] void Refuse(const std::string& text, const std::string& reason) {
    throw HostError("--remote \"" + Escape(text) + "\": " + reason);
}

bool IsHostCharacter(char c) {
    return IsLetter(c) || IsDigit(c) || c == '.' || c == '-' || c == '_';
}

} // namespace

std::string RemoteAddress::Text() const {
    const std::string name = host.find(':') != std::string::npos ? "[" + host + "]" : host;
    return std::string(kind == Kind::OpenOcd ? "openocd:" : "gdb:") + name +
           (name.empty() ? "" : ":") + std::to_string(port);
}

RemoteAddress ParseRemoteAddress(const std::string& text) {
    RemoteAddress address{};
    const size_t colon = text.find(':');
    const std::string kind = text.substr(0, colon);
    if (EqualNoCase(kind, "openocd"))
        address.kind = RemoteAddress::Kind::OpenOcd;
    else if (EqualNoCase(kind, "gdb"))
        address.kind = RemoteAddress::Kind::Gdb;
    else
        Refuse(text, "neither openocd:[HOST:]PORT nor gdb:[HOST:]PORT");
    if (colon == std::string::npos) Refuse(text, "the port is missing");
    std::string port = text.substr(colon + 1);
    if (const size_t last = port.rfind(':'); last != std::string::npos) {
        std::string host = port.substr(0, last);
        port.erase(0, last + 1);
        const bool bracketed = host.size() > 2 && host.front() == '[' && host.back() == ']';
        if (bracketed) host = host.substr(1, host.size() - 2);
        for (const char c : host)
            if (!IsHostCharacter(c) && !(bracketed && (c == ':' || c == '%')))
                Refuse(text, "\"" + Escape(host) + "\" is no name of a host");
        if (host.empty()) Refuse(text, "the host is missing");
        address.host = host;
    }
    const char* const end = port.data() + port.size();
    const auto result = std::from_chars(port.data(), end, address.port);
    if (result.ec != std::errc() || result.ptr != end || address.port == 0)
        Refuse(text, port.empty() ? "the port is missing"
                                  : "\"" + Escape(port) + "\" is no port from 1 to 65535");
    return address;
}

std::unique_ptr<RegisterBus> Connect(const RemoteAddress& address, std::ostream& told) {
    const std::string text = address.Text();
    const std::string where = text.substr(text.find(':') + 1);
    const std::string place = address.host.empty() ? "port " + where : where;
    try {
        Connection connection = Connection::To(address.host, address.port, Deadline(kPatience));
        if (address.kind == RemoteAddress::Kind::OpenOcd)
            return std::make_unique<OpenOcdBus>(std::move(connection), place, told);
        return std::make_unique<GdbBus>(std::move(connection), place, told);
    } catch (const ConnectionLost& lost) {
        throw HostError("--remote " + text + ": no connection: " + lost.what());
    } catch (const HostError& error) {
        throw HostError("--remote " + text + ": " + error.what());
    }
}

} // namespace etmhost
