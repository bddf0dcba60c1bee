// A simulated board without trace hardware, behind QEMU's GDB server.

#include <gtest/gtest.h>

#include <sstream>

#include "host/remote/RemoteAddress.h"
#include "tests/support/QemuMachine.h"

namespace etmhost {
namespace {

TEST(Qemu, IsReadAndRunsAgainAfterwards) {
    if (!Program::IsInstalled("qemu-system-arm")) GTEST_SKIP() << "there is no qemu-system-arm";
    QemuMachine machine;
    std::ostringstream told;
    std::unique_ptr<RegisterBus> bus =
        Connect({RemoteAddress::Kind::Gdb, "", machine.gdbPort}, told);
    EXPECT_FALSE(machine.Runs()) << "attaching stops it";
    const uint32_t places[] = {0xE000ED00, 0, 4, 0xE0041000};
    EXPECT_EQ(bus->Read(places), (std::vector<uint32_t>{0x410FC240, 0x20001000, 9, 0}))
        << "a Cortex-M4, its image, and nothing where an ETM would be";
    bus->Write(0x20000000, 0x12345678);
    EXPECT_EQ(bus->Read(0x20000000), 0x12345678u);
    EXPECT_THROW(bus->Read(0x90000000), BusError);
    bus.reset();
    EXPECT_TRUE(Program::Within([&] { return machine.Runs(); }));
}

} // namespace
} // namespace etmhost
