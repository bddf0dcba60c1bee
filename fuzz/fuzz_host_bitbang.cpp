// Any bytes as what a debug server says to a served chip, whose core then runs whatever became of
// its memory: each question has one answer, and nothing else has.

#include <algorithm>
#include <cstdlib>

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
        if (address % 4 != 0) std::abort();
        if ((address & 0x1000) != 0) throw BusError("nothing");
    }
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
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
    if (goesOn != (heard.size() == input.size())) std::abort();
    if (answer.find_first_not_of("01") != std::string::npos) std::abort();
    if (answer.size() != size_t(std::ranges::count(heard, 'R'))) std::abort();
    core.Run(1000);
    return 0;
}
