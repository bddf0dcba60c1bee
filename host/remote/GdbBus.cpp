#include "host/remote/GdbBus.h"

#include <algorithm>
#include <cstdio>

#include "host/support/host_error.h"
#include "host/support/words.h"

namespace etmhost {

namespace {

constexpr std::chrono::milliseconds kFarewell{300};
constexpr size_t kSmallestPacket = 400; // what servers that don't tell take
constexpr int kMostRepeats = 3;

std::string Digits(uint32_t value) {
    char text[16];
    std::snprintf(text, sizeof text, "%x", static_cast<unsigned>(value));
    return text;
}

// The bytes of `value` in memory.
std::string Bytes(uint32_t value) {
    char text[16];
    std::snprintf(text, sizeof text, "%02x%02x%02x%02x", value & 0xFF, (value >> 8) & 0xFF,
                  (value >> 16) & 0xFF, value >> 24);
    return text;
}

// What comes without having been asked for: some servers tell a new caller that the core stops.
bool IsUnasked(const std::string& request, const std::string& payload) {
    return IsGdbConsoleText(payload) || (IsGdbStop(payload) && request != "?");
}

} // namespace

GdbBus::GdbBus(Connection connection, std::string place, std::ostream& told,
               std::chrono::milliseconds patience)
    : m_Connection(std::move(connection)), m_Place(std::move(place)), m_Patience(patience),
      m_PacketSize(kSmallestPacket) {
    told << "etmhost: attaching through a GDB server stops the core, and most servers leave it "
            "stopped\n"
         << std::flush;
    try {
        Attach();
    } catch (const BusLost&) {
        throw HostError("No GDB server can be used at " + m_Place + ": " + m_Connection.reason());
    }
}

void GdbBus::Attach() {
    const Deadline deadline(m_Patience);
    m_PacketSize = ParseGdbPacketSize(Ask("qSupported", deadline), m_PacketSize);
    if (Ask("QStartNoAckMode", deadline) == "OK") m_Acknowledges = false;
    const std::string state = Ask("?", deadline);
    if (!IsGdbStop(state)) Lose("it has no core that it could stop: " + Excerpt(state));
}

GdbBus::~GdbBus() {
    if (!m_Connection.IsOpen()) return;
    try {
        Ask("D", Deadline(std::min(kFarewell, m_Patience)));
    } catch (const BusLost&) { // then it has gone first
    }
}

void GdbBus::Lose(const std::string& reason) {
    if (m_Connection.IsOpen()) {
        try { // some servers let the core go on only if they are told
            m_Connection.Send(GdbPacket("D"), Deadline(std::chrono::milliseconds(0)));
        } catch (const ConnectionLost&) {
        }
        m_Connection.Close(reason);
    }
    throw BusLost("The connection to the GDB server at " + m_Place + " is lost: " + reason);
}

std::string GdbBus::Ask(const std::string& request, Deadline deadline) {
    try {
        const std::string packet = GdbPacket(request);
        m_Connection.Send(packet, deadline);
        std::string payload;
        do payload = Answer(packet, deadline);
        while (IsUnasked(request, payload));
        return payload;
    } catch (const ConnectionLost& lost) {
        Lose(lost.what());
    }
}

std::string GdbBus::Answer(const std::string& packet, Deadline deadline) {
    for (int repeats = 0;;) {
        const GdbReader::Item item = m_Reader.Next();
        switch (item.kind) {
        case GdbReader::Kind::Packet:
            if (m_Acknowledges) m_Connection.Send("+", deadline);
            return item.payload;
        case GdbReader::Kind::Nothing:
            // A server that never falls silent has no more time than others.
            if (deadline.IsOver() || !m_Connection.HasInput(deadline)) Lose("no answer in time");
            m_Reader.Add(m_Connection.Receive(deadline));
            break;
        case GdbReader::Kind::Damaged:
        case GdbReader::Kind::SendAgain:
            if (!m_Acknowledges || ++repeats > kMostRepeats) Lose("it sends damaged packets");
            m_Connection.Send(item.kind == GdbReader::Kind::Damaged ? "-" : packet, deadline);
            break;
        case GdbReader::Kind::Garbage:
            Lose("it sends what is no packet: " + Excerpt(item.payload));
        }
    }
}

std::vector<uint32_t> GdbBus::Read(std::span<const uint32_t> addresses) {
    const Deadline deadline(m_Patience);
    std::vector<uint32_t> words;
    const uint32_t most = static_cast<uint32_t>((m_PacketSize - 8) / 8);
    for (const AddressRun& run : Runs(addresses, most)) {
        const std::string payload =
            Ask("m" + Digits(run.address) + "," + Digits(4 * run.count), deadline);
        const GdbMemory memory = ParseGdbMemory(payload, run.count);
        if (memory.kind == GdbMemory::Kind::Garbage)
            Lose("not " + std::to_string(run.count) + " words of 32 bits: " + Excerpt(payload));
        if (memory.kind == GdbMemory::Kind::Refused) {
            throw BusError("Cannot read " + std::to_string(run.count) + " words at " +
                           Hex(run.address) + ": " + memory.reason);
        }
        words.insert(words.end(), memory.words.begin(), memory.words.end());
    }
    return words;
}

void GdbBus::Write(uint32_t address, uint32_t value) {
    const std::string payload =
        Ask("M" + Digits(address) + ",4:" + Bytes(value), Deadline(m_Patience));
    if (payload == "OK") return;
    const auto reason = ParseGdbError(payload);
    if (!reason) Lose("it answers a write with " + Excerpt(payload));
    throw BusError("Cannot write " + Hex(address) + ": " + *reason);
}

} // namespace etmhost
