// The way to the registers through debug servers that answer well, badly and not at all.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sstream>

#include "host/remote/GdbBus.h"
#include "host/remote/OpenOcdBus.h"
#include "host/remote/RemoteAddress.h"
#include "host/support/host_error.h"
#include "host/support/words.h"
#include "tests/support/ScriptedServer.h"

using ::testing::ElementsAre;
using ::testing::HasSubstr;

namespace etmhost {
namespace {

using namespace std::chrono_literals;

// How long servers are waited for that do not answer, with a reserve for their first answers.
constexpr auto kShort = 300ms;
constexpr uint32_t kScattered[] = {0xE0041000, 0xE0041004, 0xE00411E4};

// How long to wait for a server whose failure is `reason`.
std::chrono::milliseconds PatienceFor(const std::string& reason) {
    return reason.find("in time") != reason.npos || reason.find("breaks off") != reason.npos
               ? kShort
               : kPatience;
}

// The words that are read, or why not.
std::string Reading(RegisterBus& bus, std::span<const uint32_t> addresses = kScattered) {
    try {
        std::string text;
        for (const uint32_t word : bus.Read(addresses)) text += Hex(word) + " ";
        return text;
    } catch (const BusLost& lost) {
        return std::string("LOST ") + lost.what();
    } catch (const BusError& error) {
        return error.what();
    }
}

std::string Writing(RegisterBus& bus) {
    try {
        bus.Write(0xE0041000, 0x0410ABCD);
        return "ok";
    } catch (const BusError& error) {
        return error.what();
    }
}

// A lost connection says the same ever after, at once, and asks nobody.
void ExpectLostForGood(RegisterBus& bus, const ScriptedServer& server, const std::string& reading) {
    const Deadline soon(kShort);
    EXPECT_EQ(Reading(bus), reading);
    EXPECT_EQ("LOST " + Writing(bus), reading);
    EXPECT_FALSE(soon.IsOver());
    // A busy server hears late of what it was asked before, but never of this write.
    for (const std::string& question : server.Questions()) {
        EXPECT_FALSE(question.starts_with("M") || question.find("write_memory") != question.npos)
            << question;
    }
}

TEST(RemoteAddress, IsAKindAHostAndAPort) {
    const struct {
        const char *text, *result;
    } rows[] = {
        {"openocd:6666", "openocd:6666"},
        {"GDB:board-7.lab_1:3333", "gdb:board-7.lab_1:3333"},
        {"gdb:[fe80::1%eth0]:65535", "gdb:[fe80::1%eth0]:65535"},
        {"jlink:1", "neither openocd:[HOST:]PORT nor gdb:[HOST:]PORT"},
        {"openocd", "the port is missing"},
        {"openocd:board:", "the port is missing"},
        {"openocd:0", "\"0\" is no port from 1 to 65535"},
        {"openocd:65536", "\"65536\" is no port from 1 to 65535"},
        {"openocd:1x", "\"1x\" is no port from 1 to 65535"},
        {"openocd::1", "the host is missing"},
        {"openocd:::1:1", "\"::1\" is no name of a host"}, // without its brackets
        {"openocd:a;b:1", "\"a;b\" is no name of a host"},
    };
    for (const auto& row : rows) {
        std::string result;
        try {
            result = ParseRemoteAddress(row.text).Text();
        } catch (const HostError& error) {
            result = error.what();
            EXPECT_TRUE(result.starts_with("--remote \"" + std::string(row.text) + "\": "));
            result.erase(0, std::string(row.text).size() + 13);
        }
        EXPECT_EQ(result, row.result) << row.text;
    }
}

// --- OpenOCD ------------------------------------------------------------------

// An OpenOCD that says `answer` when it is asked for memory.
struct OpenOcd {
    explicit OpenOcd(std::string answer, std::chrono::milliseconds patience = kPatience)
        : server([this, answer = std::move(answer)](const std::string& question) -> std::string {
              if (question == "version") return "Open On-Chip Debugger 0.12.0\x1A";
              for (const auto& [command, value] : values)
                  if (question == "list [catch {" + command + "} etmhost_result] $etmhost_result")
                      return value + "\x1A";
              return question.find("_memory") != std::string::npos ? answer : "0 {}\x1A";
          }),
          bus(server.Connect(), "here", told, patience) {}

    std::vector<std::pair<std::string, std::string>> values = {
        {"target current", "0 chip.cpu"},
        {"target names", "0 {chip.cpu chip.mem}"},
    };
    ScriptedServer server;
    std::ostringstream told;
    OpenOcdBus bus;
};

TEST(OpenOcdBus, ReadsAndWritesInOneCommandEach) {
    OpenOcd reader("0 {0x411 0X8C802000 65536}\x1A");
    EXPECT_EQ(Reading(reader.bus), "0x411 0x8C802000 0x10000 ");
    EXPECT_EQ(Reading(reader.bus, {}), "") << "nobody need be asked";
    EXPECT_THAT(
        reader.server.Questions(),
        ElementsAre("version", HasSubstr("target current"), HasSubstr("target names"),
                    "list [catch {concat [read_memory 0xE0041000 32 2] [read_memory 0xE00411E4 32 "
                    "1]} etmhost_result] $etmhost_result"));
    EXPECT_THAT(reader.told.str(), HasSubstr("2 targets; its current one is taken: \"chip.cpu\""));

    OpenOcd writer("0 {}\x1A");
    EXPECT_EQ(Writing(writer.bus), "ok");
    EXPECT_THAT(writer.server.Questions().back(),
                HasSubstr("{write_memory 0xE0041000 32 {0x410ABCD}}"));
    EXPECT_THAT(Reading(writer.bus, std::vector<uint32_t>{0xFFFFFFFC, 0}), HasSubstr("LOST"));
    EXPECT_THAT(writer.server.Questions().back(),
                HasSubstr("0xFFFFFFFC 32 1] [read_memory 0x0 32 1]"))
        << "no run goes from the last address to the first";
}

TEST(OpenOcdBus, TellsARefusalAndGoesOn) {
    const std::pair<const char*, const char*> rows[] = {
        {"1 {read_memory: failed}\x1A", "read_memory: failed"},
        {"1 a\\ \\{\\ \\\"\\n\\\\\x1A", "a { \"\n\\"},
        {"1 \"{ b\"\x1A", "{ b"},
        {"2 {a {b c} \\} d}\x1A", "a {b c} \\} d"},
        {"1 {}\x1A", "OpenOCD gives no reason, its log may"},
    };
    for (const auto& [answer, reason] : rows) {
        OpenOcd chip(answer);
        EXPECT_EQ(Reading(chip.bus),
                  "Cannot read 0xE0041000 and 2 more of chip.cpu: " + std::string(reason));
        EXPECT_EQ(Writing(chip.bus), "Cannot write 0xE0041000 of chip.cpu: " + std::string(reason));
    }
}

TEST(OpenOcdBus, IsLostForGoodAfterAnAnswerThatMakesNoSense) {
    const std::string hangUp(1, ScriptedServer::kHangUp), forever(1, ScriptedServer::kForever);
    const std::pair<std::string, const char*> rows[] = {
        {"0 {1 2}\x1A", "not 3 words of 32 bits: \"1 2\""},
        {"0 {1 2 3 4}\x1A", "not 3 words of 32 bits"},
        {"0 {1 2 0x100000000}\x1A", "not 3 words of 32 bits"},
        {"0 {1 2 -3}\x1A", "not 3 words of 32 bits"},
        {"0 {1 2 0x}\x1A", "not 3 words of 32 bits"},
        {"0 1 2 3\x1A", "its answer makes no sense: \"0 1 2 3\""},
        {"0 {1 2 3\x1A", "its answer makes no sense"},
        {"0 {1 2 3}x\x1A", "its answer makes no sense"},
        {"1 a\\\x1A", "its answer makes no sense"},
        {"\x1A", "its answer makes no sense: \"\""},
        {"\xFF\xFD\n> \x1A", "its answer makes no sense: \"\\xFF\\xFD\\n> \""},
        {"0 {1 2 3}\x1A and {something more}\x1A", "it answers more than it was asked"},
        {std::string(999, 'x') + forever, "its answer has no end"},
        {"0 {1 2", "its answer breaks off: \"0 {1 2\""},
        {"", "no answer in time"},
        {"0 {1" + hangUp, "the other side has closed the connection"},
        {hangUp, "the other side has closed the connection"},
    };
    for (const auto& [answer, reason] : rows) {
        SCOPED_TRACE(reason);
        OpenOcd chip(answer, PatienceFor(reason));
        const std::string reading = Reading(chip.bus);
        EXPECT_THAT(reading, HasSubstr("LOST The connection to OpenOCD at here is lost: " +
                                       std::string(reason)));
        EXPECT_LT(reading.size(), 200u);
        ExpectLostForGood(chip.bus, chip.server, reading);
    }
}

TEST(OpenOcdBus, PreparesTheOnlyPortAndGoesBackToItsTarget) {
    using Values = std::vector<std::pair<std::string, std::string>>;
    const Values good = {{"tpiu names", "0 stm.tpiu"},
                         {"stm.tpiu cget -traceclk", "0 16000000"},
                         {"target current", "0 other.cpu"}};
    const struct {
        Values values;
        const char* refusal;
        const char* last; // command
    } rows[] = {
        {good, "ok", "targets chip.cpu"},
        {{{"stm.tpiu enable", "1 {}"}},
         "\"stm.tpiu enable\": it gives no reason",
         "targets chip.cpu"},
        {{{"target current", "0 chip.cpu"}}, "ok", "target current"},
        {{{"stm.tpiu cget -traceclk", "0 0"}}, "\"stm.tpiu configure -traceclk HZ\"", "-traceclk"},
        {{{"stm.tpiu cget -output", "0 :3443"}}, "serves the debug probe (\":3443\")", "-output"},
        {{{"tpiu names", "0 {}"}}, "no trace port", "tpiu names"},
        {{{"tpiu names", "0 {a.tpiu b.tpiu}"}}, "several trace ports", "tpiu names"},
        {{{"tpiu names", "0 {{a;shutdown}}"}}, "not understood: \"a;shutdown\"", "tpiu names"},
        {{{"tpiu names", "1 {no such command}"}}, "no such command", "tpiu names"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.refusal);
        OpenOcd chip("");
        chip.values = row.values;
        chip.values.insert(chip.values.end(), good.begin(), good.end());
        EXPECT_THAT(chip.bus.PreparePort(2).value_or("ok"), HasSubstr(row.refusal));
        EXPECT_THAT(chip.server.Questions().back(), HasSubstr(std::string(row.last) + "}"));
        if (row.values == good) {
            const std::vector<std::string> all = chip.server.Questions();
            EXPECT_THAT(
                std::vector(all.end() - 5, all.end() - 2),
                ElementsAre(
                    HasSubstr("stm.tpiu disable"),
                    HasSubstr("stm.tpiu configure -protocol sync -port-width 2 -output external"),
                    HasSubstr("stm.tpiu enable")));
        }
    }
}

// --- GDB servers --------------------------------------------------------------

// A GDB server that says `answer` when it is asked for memory, and `start` to QStartNoAckMode.
struct Gdb {
    explicit Gdb(const std::vector<std::string>& answers, const std::string& start = "OK",
                 std::chrono::milliseconds patience = kPatience)
        : server(
              [answers, start, next = size_t{0}](const std::string& question) mutable {
                  if (question == "qSupported") return GdbPacket("swbreak+;PacketSize=60;x");
                  if (question == "QStartNoAckMode") return GdbPacket(start);
                  if (question == "?") return GdbPacket("T05thread:01;");
                  if (question == "D") return GdbPacket("OK");
                  return answers[std::min(next++, answers.size() - 1)];
              },
              GdbPacket("T02")),
          bus(std::make_unique<GdbBus>(server.Connect(), "here", told, patience)) {}

    ScriptedServer server;
    std::ostringstream told;
    std::unique_ptr<GdbBus> bus;
};

TEST(GdbBus, ReadsAndWritesLittleEndianWordsAndDetaches) {
    Gdb chip({
        "+" + GdbPacket("O48690a") + "%Stop:T05#00" + GdbPacket("110400000020808c"),
        "$"
        "5.*\"f241#"
        "00", // a wrong checksum, which nobody can ask for again
    });
    EXPECT_THAT(chip.told.str(), HasSubstr("stops the core"));
    EXPECT_EQ(Reading(*chip.bus, std::span(kScattered, 2)), "0x411 0x8C802000 ");
    EXPECT_THAT(Reading(*chip.bus), HasSubstr("LOST"));

    Gdb writer({GdbPacket("OK"), "$0* #7a", GdbPacket("OK")});
    EXPECT_EQ(Writing(*writer.bus), "ok");
    EXPECT_EQ(writer.server.Questions().back(), "Me0041000,4:cdab1004");
    std::vector<uint32_t> many(25);
    for (uint32_t i = 0; i < many.size(); ++i) many[i] = 0x1000 + 4 * i;
    EXPECT_THAT(Reading(*writer.bus, many), HasSubstr("reads only 2 of 44 bytes"))
        << "11 words fit into a packet of 96 characters, and a run-length counts";
    EXPECT_EQ(writer.server.Questions().back(), "m1000,2c");
    writer.bus.reset();
    EXPECT_EQ(writer.server.Questions().back(), "D");
}

TEST(GdbBus, AsksAgainWhereItMay) {
    const std::string good = GdbPacket("110400000020808c00000000");
    Gdb chip({good.substr(0, good.size() - 1) + "x", "-", good}, "");
    const uint32_t three[] = {0, 4, 8};
    EXPECT_EQ(Reading(*chip.bus, three), "0x411 0x8C802000 0x0 ");
    EXPECT_THAT(chip.server.Questions(),
                ElementsAre("qSupported", "QStartNoAckMode", "?", "m0,c", "-", "m0,c"));

    Gdb stubborn({"-"}, "");
    EXPECT_THAT(
        Reading(*stubborn.bus),
        HasSubstr(
            "LOST The connection to the GDB server at here is lost: it sends damaged packets"));
}

TEST(GdbBus, TellsARefusalAndIsLostAfterNonsense) {
    const std::string hangUp(1, ScriptedServer::kHangUp), forever(1, ScriptedServer::kForever);
    std::string bomb = "$0"; // three megabytes in sixty kilobytes
    for (int i = 0; i < 30000; ++i) bomb += "*~";
    bomb += "#b0";
    const struct {
        std::string answer;
        const char* reason;
        bool lost;
    } rows[] = {
        {GdbPacket("E14"), "error 14 of the server", false},
        {GdbPacket("E.no such place"), "no such place", false},
        {GdbPacket("E."), "the server gives no reason", false},
        {GdbPacket(""), "does not know this request", false},
        {GdbPacket("OK"), "not 2 words of 32 bits: \"OK\"", true},
        {GdbPacket("1104000000208"), "not 2 words of 32 bits", true},
        {GdbPacket("110400000020808c00"), "not 2 words of 32 bits", true},
        {"Open On-Chip", "it sends what is no packet: \"Open", true},
        {"$" + std::string(999, '0') + forever, "it sends what is no packet", true},
        {bomb, "it sends damaged packets", true},
        {"+" + forever, "no answer in time", true},
        {GdbPacket("O4869") + forever, "no answer in time", true},
        {"", "no answer in time", true},
        {"$1104", "no answer in time", true},
        {"$11" + hangUp, "the other side has closed the connection", true},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.reason);
        Gdb chip({row.answer}, "OK", PatienceFor(row.reason));
        const std::string reading = Reading(*chip.bus);
        EXPECT_THAT(reading, HasSubstr(row.reason));
        EXPECT_EQ(reading.starts_with("LOST"), row.lost);
        EXPECT_LT(reading.size(), 200u);
        if (row.lost) ExpectLostForGood(*chip.bus, chip.server, reading);
    }
}

// --- Who is there -------------------------------------------------------------

TEST(Connect, RefusesOtherServersInWords) {
    const struct {
        const char *kind, *greeting, *answer, *refusal;
    } rows[] = {
        {"openocd", "", "", "here is not the Tcl port of OpenOCD: no answer in time"},
        {"openocd", "", "Jim 0.81\x1A",
         "here is not the Tcl port of OpenOCD: it answers \"Jim 0.81\""},
        {"gdb", "", "", "No GDB server can be used at here: no answer in time"},
        {"gdb", "", "$W00#b7",
         "No GDB server can be used at here: it has no core that it could stop: \"W00\""},
        {"gdb", "SSH\n", "",
         "No GDB server can be used at here: it sends what is no packet: \"SSH\\n\""},
    };
    for (const auto& row : rows) {
        const ScriptedServer server([&row](const std::string&) { return row.answer; },
                                    row.greeting);
        std::ostringstream told;
        std::string refusal;
        try {
            if (std::string(row.kind) == "gdb")
                GdbBus(server.Connect(), "here", told, PatienceFor(row.refusal));
            else
                OpenOcdBus(server.Connect(), "here", told, PatienceFor(row.refusal));
        } catch (const HostError& error) {
            refusal = error.what();
        }
        EXPECT_EQ(refusal, row.refusal);
    }
    const uint16_t port = Listener(0).port(); // closed again
    std::ostringstream told;
    try {
        Connect({RemoteAddress::Kind::OpenOcd, "", port}, told);
        FAIL();
    } catch (const HostError& error) {
        EXPECT_EQ(std::string(error.what()), "--remote openocd:" + std::to_string(port) +
                                                 ": no connection: Connection refused");
    }
}

} // namespace
} // namespace etmhost
