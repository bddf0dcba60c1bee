#include "host/remote/gdb_packets.h"

#include <algorithm>
#include <charconv>
#include <utility>

#include "host/remote/wire.h"

namespace etmhost {

namespace {

// Returns the number that `digits`, all of them, are; nothing for others.
std::optional<uint32_t> HexNumber(std::string_view digits) {
    uint32_t value = 0;
    const char* const end = digits.data() + digits.size();
    const auto result = std::from_chars(digits.data(), end, value, 16);
    if (result.ec != std::errc() || result.ptr != end) return std::nullopt;
    return value;
}

uint8_t Checksum(std::string_view bytes) {
    uint8_t sum = 0;
    for (const char c : bytes) sum = static_cast<uint8_t>(sum + static_cast<uint8_t>(c));
    return sum;
}

// Undoes escapes and repetitions. Nothing if they make no sense, or too long a text.
std::optional<std::string> Decode(std::string_view body) {
    std::string payload;
    for (size_t i = 0; i < body.size(); ++i) {
        if (body[i] == '}') {
            if (++i == body.size()) return std::nullopt;
            payload += static_cast<char>(body[i] ^ 0x20);
        } else if (body[i] == '*') {
            // A printable character behind it is the number of repetitions and 29.
            if (++i == body.size() || payload.empty() || body[i] < ' ' || body[i] > '~')
                return std::nullopt;
            payload.append(static_cast<size_t>(body[i] - 29), payload.back());
        } else {
            payload += body[i];
        }
        if (payload.size() > kAnswerLimit) return std::nullopt;
    }
    return payload;
}

} // namespace

std::string GdbPacket(std::string_view payload) {
    std::string body;
    for (const char c : payload) {
        const bool special = c == '$' || c == '#' || c == '}' || c == '*';
        if (special) body += '}';
        body += special ? static_cast<char>(c ^ 0x20) : c;
    }
    constexpr char kDigits[] = "0123456789abcdef";
    const uint8_t sum = Checksum(body);
    return "$" + body + "#" + kDigits[sum >> 4] + kDigits[sum & 15];
}

GdbReader::Item GdbReader::Next() {
    while (!m_Bytes.empty()) {
        const char first = m_Bytes.front();
        if (first == '+') {
            m_Bytes.erase(0, m_Bytes.find_first_not_of('+'));
            continue; // the answer says it too
        }
        if (first == '-') {
            m_Bytes.erase(0, 1);
            return {Kind::SendAgain, {}};
        }
        if (first != '$' && first != '%') return {Kind::Garbage, m_Bytes};
        const size_t end = m_Bytes.find('#');
        if (std::min(end, m_Bytes.size()) > kAnswerLimit) return {Kind::Garbage, m_Bytes};
        if (end == std::string::npos || end + 3 > m_Bytes.size()) break;
        const std::string body = m_Bytes.substr(1, end - 1);
        const std::optional<uint32_t> sum = HexNumber(m_Bytes.substr(end + 1, 2));
        m_Bytes.erase(0, end + 3);
        if (first == '%') continue; // nobody waits for a notification
        std::optional<std::string> payload = Decode(body);
        if (!payload || sum != Checksum(body)) return {Kind::Damaged, {}};
        return {Kind::Packet, std::move(*payload)};
    }
    return {Kind::Nothing, {}};
}

bool IsGdbStop(std::string_view payload) {
    return payload.size() >= 3 && (payload[0] == 'T' || payload[0] == 'S') &&
           HexNumber(payload.substr(1, 2));
}

bool IsGdbConsoleText(std::string_view payload) {
    return payload.size() >= 3 && payload[0] == 'O' && HexNumber(payload.substr(1, 2));
}

std::optional<std::string> ParseGdbError(std::string_view payload) {
    if (payload.empty()) return "the server does not know this request";
    if (payload == "E.") return "the server gives no reason";
    if (payload.starts_with("E.")) return std::string(payload.substr(2));
    if (payload.size() == 3 && payload[0] == 'E' && HexNumber(payload.substr(1)))
        return "error " + std::string(payload.substr(1)) + " of the server";
    return std::nullopt;
}

GdbMemory ParseGdbMemory(std::string_view payload, size_t count) {
    if (const auto reason = ParseGdbError(payload)) return {GdbMemory::Kind::Refused, {}, *reason};
    std::vector<uint32_t> words;
    uint32_t word = 0;
    for (size_t i = 0; i < payload.size(); i += 2) {
        const std::string_view digits = payload.substr(i, 2);
        const std::optional<uint32_t> byte = HexNumber(digits);
        if (!byte || digits.size() != 2) return {GdbMemory::Kind::Garbage, {}, {}};
        const size_t place = i / 2 % 4;
        word |= *byte << (8 * place);
        if (place == 3) words.push_back(std::exchange(word, 0));
    }
    if (payload.size() > 8 * count) return {GdbMemory::Kind::Garbage, {}, {}};
    if (payload.size() < 8 * count) { // a server may read as far as it can
        return {GdbMemory::Kind::Refused,
                {},
                "the server reads only " + std::to_string(payload.size() / 2) + " of " +
                    std::to_string(4 * count) + " bytes"};
    }
    return {GdbMemory::Kind::Words, std::move(words), {}};
}

size_t ParseGdbPacketSize(std::string_view payload, size_t otherwise) {
    constexpr std::string_view kName = "PacketSize=";
    while (!payload.empty()) {
        const size_t end = std::min(payload.find(';'), payload.size());
        const std::string_view feature = payload.substr(0, end);
        payload.remove_prefix(std::min(end + 1, payload.size()));
        if (!feature.starts_with(kName)) continue;
        if (const auto size = HexNumber(feature.substr(kName.size())))
            return std::clamp<size_t>(*size, 64, 65536);
    }
    return otherwise;
}

} // namespace etmhost
