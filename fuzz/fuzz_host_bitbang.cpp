// Any bytes as what a debug server says to a served chip, whose core then runs whatever became of
// its memory: each question has one answer, and nothing else has.

#include <algorithm>

#include "fuzz/target.h"
#include "host/serve/BitbangSession.h"
#include "host/serve/CoreDebug.h"
#include "host/serve/DebugPort.h"

using namespace etmhost;

namespace {

// Of every other page nothing is there.
class HalfChip : public RegisterBus {
public:
    std::vector<uint32_t> Read(std::span<const uint32_t> addresses) override {
        for (const uint32_t address : addresses) Check(address);
        return std::vector<uint32_t>(addresses.size(), 0x01000001);
    }
    void Write(uint32_t address, uint32_t) override { Check(address); }

private:
    static void Check(uint32_t address) {
        Require(address % 4 == 0);
        if ((address & 0x1000) != 0) throw BusError("nothing");
    }
};

} // namespace

static void HostBitbang(const uint8_t* data, size_t size) {
    static HalfChip chip;
    CoreDebug core(chip, kCortexM4);
    MemoryAccessPort memory(core, 0xE00FF000);
    DebugPort port(memory);
    Tap tap(port);
    BitbangSession session(tap, [&core](bool held) { core.HoldReset(held); });

    const std::string_view input(reinterpret_cast<const char*>(data), size);
    std::string answer;
    const bool goesOn = session.Take(input, answer);
    const std::string_view heard = input.substr(0, input.find('Q'));
    Require(goesOn == (heard.size() == input.size()));
    Require(answer.find_first_not_of("01") == std::string::npos);
    Require(answer.size() == size_t(std::ranges::count(heard, 'R')));
    core.Run(1000);
}

static const FuzzTarget kHostBitbang("fuzz_host_bitbang", HostBitbang);
