// Any bytes as what a GDB server sends. The first byte chooses in which pieces they arrive.

#include <algorithm>

#include "fuzz/target.h"
#include "host/remote/gdb_packets.h"

using namespace etmhost;

// All that `bytes` hold, a line each.
static std::string Items(const std::string& bytes, size_t piece) {
    std::string text;
    GdbReader reader;
    for (size_t at = 0; at < bytes.size(); at += piece) {
        reader.Add(std::string_view(bytes).substr(at, piece));
        for (;;) {
            const GdbReader::Item item = reader.Next();
            if (item.kind == GdbReader::Kind::Nothing) break;
            text += std::to_string(static_cast<int>(item.kind)) + "\n";
            if (item.kind == GdbReader::Kind::Garbage) return text; // its text grows
            text += item.payload + "\n";
        }
    }
    return text;
}

static void GdbAnswer(const uint8_t* data, size_t size) {
    if (size == 0) return;
    const std::string bytes(reinterpret_cast<const char*>(data) + 1, size - 1);
    Require(Items(bytes, data[0] + size_t{1}) == Items(bytes, bytes.size() + 1));

    // A packet made here is found, behind whatever is complete.
    GdbReader reader;
    reader.Add("+%stop#00" + GdbPacket(bytes));
    const GdbReader::Item item = reader.Next();
    Require(item.kind == GdbReader::Kind::Packet && item.payload == bytes);
    Require(reader.Next().kind == GdbReader::Kind::Nothing);

    const size_t words = size / 8;
    const GdbMemory memory = ParseGdbMemory(bytes, words);
    Require(memory.words.size() == (memory.kind == GdbMemory::Kind::Words ? words : 0));
    Require(memory.reason.empty() == (memory.kind != GdbMemory::Kind::Refused));
    const size_t packet = ParseGdbPacketSize(bytes, 400);
    Require(packet >= 64 && packet <= 65536);
    if (const auto reason = ParseGdbError(bytes)) Require(reason->size() < size + 40);
}

static const FuzzTarget kGdbAnswer("fuzz_gdb_answer", GdbAnswer);
