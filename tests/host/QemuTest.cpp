// A simulated board without trace hardware, behind QEMU's GDB server.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sstream>

#include "host/remote/RemoteAddress.h"
#include "tests/support/Program.h"

using ::testing::HasSubstr;

namespace etmhost {
namespace {

TEST(Qemu, IsReadAndRunsAgainAfterwards) {
    if (!Program::IsInstalled("qemu-system-arm")) GTEST_SKIP() << "there is no qemu-system-arm";
    const TemporaryDirectory directory;
    using namespace std::string_literals;
    // The stack pointer, the first instruction's address, and a loop.
    const std::string image = directory.Write("image", "\0\x10\0\x20\x09\0\0\0\xFE\xE7\xFE\xE7"s);
    const uint16_t gdb = Program::FreePort(), monitor = Program::FreePort();
    const Program qemu({"qemu-system-arm", "-M", "mps2-an386", "-kernel", image, "-display", "none",
                        "-serial", "null", "-monitor", "none", "-gdb",
                        "tcp:127.0.0.1:" + std::to_string(gdb), "-qmp",
                        "tcp:127.0.0.1:" + std::to_string(monitor) + ",server=on,wait=off"});
    ASSERT_TRUE(Program::Listens(monitor)) << qemu.Output();

    const Deadline soon(std::chrono::seconds(10));
    Connection questions = Connection::To("", monitor, soon);
    const auto ask = [&](const std::string& command) {
        questions.Send("{\"execute\":\"" + command + "\"}", soon);
        std::string answer;
        while (answer.find("\"return\"") == answer.npos || answer.back() != '\n')
            answer += questions.Receive(soon);
        return answer;
    };
    ask("qmp_capabilities");
    std::ostringstream told;
    std::unique_ptr<RegisterBus> bus = Connect({RemoteAddress::Kind::Gdb, "", gdb}, told);
    EXPECT_THAT(ask("query-status"), HasSubstr("\"running\": false")) << "attaching stops it";
    const uint32_t places[] = {0xE000ED00, 0, 4, 0xE0041000};
    EXPECT_EQ(bus->Read(places), (std::vector<uint32_t>{0x410FC240, 0x20001000, 9, 0}))
        << "a Cortex-M4, its image, and nothing where an ETM would be";
    bus->Write(0x20000000, 0x12345678);
    EXPECT_EQ(bus->Read(0x20000000), 0x12345678u);
    EXPECT_THROW(bus->Read(0x90000000), BusError);
    bus.reset();
    EXPECT_TRUE(Program::Within(
        [&] { return ask("query-status").find("\"running\": true") != std::string::npos; }));
}

} // namespace
} // namespace etmhost
