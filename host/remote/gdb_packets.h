// The packets of the GDB remote protocol.

#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace etmhost {

/// Returns `payload` as it goes over the wire: "$...#xx", characters with a meaning escaped.
std::string GdbPacket(std::string_view payload);

/// Finds the packets in what a server sends. Notifications ("%...#xx") and acknowledgements ("+")
/// are left out.
class GdbReader {
public:
    enum class Kind {
        Nothing, ///< more bytes are needed
        Packet,
        Damaged,   ///< a packet with a wrong checksum, or repetitions of nothing
        SendAgain, ///< "-"
        Garbage,   ///< bytes outside of packets, or a packet without an end: there is no way on
    };
    struct Item {
        Kind kind;
        std::string payload; ///< of a packet, without escapes and repetitions; of garbage, its text
    };

    /// Takes the next bytes of the stream.
    void Add(std::string_view bytes) { m_Bytes += bytes; }

    /// Returns what comes next in the stream.
    Item Next();

private:
    std::string m_Bytes;
};

/// What a server makes of a request for memory.
struct GdbMemory {
    enum class Kind { Words, Refused, Garbage } kind;
    std::vector<uint32_t> words; ///< the low byte came first
    std::string reason;          ///< of a refusal
};

/// Reads the answer to a request for `count` words.
GdbMemory ParseGdbMemory(std::string_view payload, size_t count);

/// Returns whether `payload` tells that the core has stopped, and why.
bool IsGdbStop(std::string_view payload);

/// Returns whether `payload` is text for a person.
bool IsGdbConsoleText(std::string_view payload);

/// Returns the reason if `payload` is an error ("E14", "E.text") or says that the request is not
/// known (""); nothing if it is another thing.
std::optional<std::string> ParseGdbError(std::string_view payload);

/// Returns the largest packet, in characters, that the answer to "qSupported" allows; `otherwise`
/// if it tells none. Between 64 and 64 K.
size_t ParseGdbPacketSize(std::string_view payload, size_t otherwise);

} // namespace etmhost
