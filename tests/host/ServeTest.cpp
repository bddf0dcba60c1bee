#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <map>

#include "host/serve/BitbangSession.h"
#include "host/serve/CoreDebug.h"
#include "host/serve/DebugPort.h"

using ::testing::ElementsAre;

namespace etmhost {
namespace {

constexpr uint32_t kPage = 0xE0041000, kNothing = 0x60000000;
constexpr uint32_t kDemcr = 0xE000EDFC, kDhcsr = 0xE000EDF0, kDfsr = 0xE000ED30;

// A page of plain words, DEMCR and the comparators of a DWT; an access to anything else fails.
class WordChip : public RegisterBus {
public:
    using RegisterBus::Read;
    std::vector<uint32_t> Read(std::span<const uint32_t> addresses) override {
        std::vector<uint32_t> values;
        for (const uint32_t address : addresses) values.push_back(At(address));
        return values;
    }
    void Write(uint32_t address, uint32_t value) override { At(address) = value; }

private:
    uint32_t& At(uint32_t address) {
        if (address >> 28 != 0xE) throw BusError("nothing");
        return m_Words[address];
    }
    std::map<uint32_t, uint32_t> m_Words;
};

// A debugger at the end of the wire, which speaks in characters.
class Serve : public ::testing::Test {
protected:
    // Clocks the low `count` bits of `tms` and `tdi` in; returns those of TDO before each.
    uint64_t Clock(int count, uint64_t tms, uint64_t tdi = 0) {
        std::string input, answer;
        for (int i = 0; i < count; ++i) {
            const int levels = int(tms >> i & 1) << 1 | int(tdi >> i & 1);
            input += {char('0' + levels), 'R', char('4' + levels)};
        }
        EXPECT_TRUE(session.Take(input, answer));
        uint64_t out = 0;
        for (size_t i = 0; i < answer.size(); ++i) out |= uint64_t(answer[i] - '0') << i;
        return out;
    }
    // From Run-Test/Idle through one scan of `length` bits and back.
    uint64_t Scan(int length, uint64_t bits, bool instruction) {
        instruction ? Clock(4, 0b0011) : Clock(3, 0b001);
        const uint64_t out = Clock(length, 1ull << (length - 1), bits);
        Clock(2, 0b01);
        return out;
    }
    uint64_t Access(uint32_t instruction, uint32_t address, bool read, uint32_t value) {
        Scan(4, instruction, true);
        const uint64_t out = Scan(35, uint64_t(value) << 3 | address >> 1 | (read ? 1 : 0), false);
        EXPECT_EQ(out & 7, 2u);
        return out >> 3;
    }
    void WriteDp(uint32_t address, uint32_t value) {
        Access(DebugPort::kDpAccess, address, false, value);
    }
    uint32_t ReadDp(uint32_t address) {
        Access(DebugPort::kDpAccess, address, true, 0);
        return uint32_t(Access(DebugPort::kDpAccess, 0xC, true, 0));
    }
    void WriteAp(uint32_t reg, uint32_t value) {
        WriteDp(8, reg & 0xF0);
        Access(DebugPort::kApAccess, reg & 0xC, false, value);
    }
    uint32_t ReadAp(uint32_t reg, uint32_t port = 0) {
        WriteDp(8, port << 24 | (reg & 0xF0));
        Access(DebugPort::kApAccess, reg & 0xC, true, 0);
        return uint32_t(Access(DebugPort::kDpAccess, 0xC, true, 0));
    }
    void PowerUp() {
        Clock(6, 0b011111);
        WriteDp(4, 0x50000000);
    }

    WordChip chip;
    int resets = 0;
    CoreDebug core{chip, kCortexM4, [this] { ++resets; }};
    MemoryAccessPort memory{core, 0xE00FF000};
    DebugPort port{memory};
    Tap tap{port};
    BitbangSession session{tap, [this](bool held) { core.HoldReset(held); }};
};

TEST_F(Serve, ScansWalkThroughTheStates) {
    Clock(6, 0b011111);
    EXPECT_EQ(Scan(32, 0, false), 0x4BA00477u) << "chosen by a reset";
    EXPECT_EQ(Scan(4, DebugPort::kBypass, true), 1u);
    EXPECT_EQ(Scan(8, 0b10110010, false), 0b01100100u) << "one bit behind";

    // A scan that pauses in its middle, as long as it likes.
    Scan(4, DebugPort::kIdCode, true);
    Clock(3, 0b001);
    EXPECT_EQ(Clock(16, 1u << 15), 0x0477u);
    Clock(7, 0b0100000);
    EXPECT_EQ(Clock(16, 1u << 15), 0x4BA0u);
    Clock(2, 0b01);

    // The line for it resets the TAP too.
    Scan(4, DebugPort::kBypass, true);
    std::string answer;
    EXPECT_TRUE(session.Take("tr?\nBb", answer));
    Clock(1, 0);
    EXPECT_EQ(Scan(32, 0, false), 0x4BA00477u);
    EXPECT_FALSE(session.Take("RQR", answer));
    EXPECT_EQ(answer, "1") << "high while nothing is scanned, and nothing behind the end";
}

TEST_F(Serve, AccessesHaveSizesAndCountOn) {
    PowerUp();
    EXPECT_EQ(ReadDp(4), 0xF0000000u);
    EXPECT_EQ(ReadAp(0xFC), 0x24770011u);
    EXPECT_EQ(ReadAp(0xF8), 0xE00FF003u);
    EXPECT_EQ(ReadAp(0xFC, 1), 0u) << "there is no second port";

    struct Row {
        uint32_t control;
        uint32_t address;
        std::vector<uint32_t> data;
        std::vector<uint32_t> words; // from 0x20000FF8 on, which held 0x11111111
        uint32_t behind;
    };
    constexpr uint32_t kBase = 0x20000FF8, kOld = 0x11111111;
    for (const Row& row : std::initializer_list<Row>{
             {0x02, kBase, {2, 2}, {2, kOld}, kBase},
             {0x12, kBase, {1, 2}, {1, 2}, 0x20000000},
             {0x10, kBase + 1, {0xAA00, 0xBB0000}, {0x11BBAA11, kOld}, kBase + 3},
             {0x11, kBase + 2, {0x55660000, 0x7788}, {0x55661111, 0x11117788}, kBase + 6},
             {0x20, kBase, {0x04030201}, {0x04030201, kOld}, kBase + 4},
             {0x21, kBase + 2, {0xABCD0000}, {0xABCD1111, kOld}, kBase + 4},
             {0x13, kBase, {7}, {7, kOld}, kBase + 4}, // a size that is not taken
         }) {
        core.Write(kBase, kOld);
        core.Write(kBase + 4, kOld);
        WriteAp(0, 0x23000002);
        WriteAp(0, row.control);
        WriteAp(4, row.address);
        for (const uint32_t data : row.data) WriteAp(0xC, data);
        SCOPED_TRACE(row.control);
        EXPECT_THAT((std::vector{core.Read(kBase), core.Read(kBase + 4)}),
                    ::testing::ElementsAreArray(row.words));
        EXPECT_EQ(ReadAp(4), row.behind);
        WriteAp(4, row.address);
        for (const uint32_t data : row.data) EXPECT_EQ(ReadAp(0xC), data);
    }
    WriteAp(4, kBase);
    WriteAp(0x14, 0x1234);
    EXPECT_EQ(core.Read(kBase - 4), 0x1234u);
    EXPECT_EQ(ReadAp(0x14), 0x1234u);
}

TEST_F(Serve, AnErrorSticksUntilItIsTakenNoteOf) {
    Clock(6, 0b011111);
    ReadAp(0xFC);
    EXPECT_EQ(ReadDp(4), 0x20u) << "without power";
    WriteDp(4, 0x50000020);
    EXPECT_EQ(ReadDp(4), 0xF0000000u);

    WriteAp(0, 0x12);
    WriteAp(4, kNothing);
    WriteAp(0xC, 1);
    EXPECT_EQ(ReadDp(4), 0xF0000020u);
    WriteAp(4, kPage);
    WriteDp(4, 0x50000020);
    EXPECT_EQ(ReadAp(4), kNothing) << "neither counted on nor overwritten";
    WriteAp(4, kPage);
    WriteAp(0xC, 5);
    EXPECT_EQ(chip.Read(kPage), 5u);
    EXPECT_EQ(ReadDp(4), 0xF0000000u);
}

// The core by its debug registers, as a debugger would use them.
class ServedCore : public Serve {
protected:
    void Control(uint32_t value) { core.Write(kDhcsr, 0xA05F0000 | value); }
    bool Halted() { return (core.Read(kDhcsr) >> 17 & 1) != 0; }
    uint32_t Register(uint32_t number) {
        core.Write(0xE000EDF4, number);
        return core.Read(0xE000EDF8);
    }
    void SetRegister(uint32_t number, uint32_t value) {
        core.Write(0xE000EDF8, value);
        core.Write(0xE000EDF4, number | 1u << 16);
    }
    uint32_t TakeReasons() {
        core.Write(kDfsr, 0); // takes nothing back
        const uint32_t reasons = core.Read(kDfsr);
        core.Write(kDfsr, reasons);
        return reasons;
    }
};

TEST_F(ServedCore, HaltsStepsAndGoesOn) {
    core.Run(100);
    const uint32_t counted = core.Read(0x20000000);
    EXPECT_GT(counted, 10u);
    core.Write(kDhcsr, 3);
    EXPECT_FALSE(Halted()) << "without the key";
    EXPECT_EQ(Register(15), 0u) << "while it runs";
    Control(3);
    core.Run(100);
    EXPECT_TRUE(Halted());
    EXPECT_EQ(TakeReasons(), 1u);
    EXPECT_EQ(core.Read(0x20000000), counted);

    SetRegister(15, 0x10C);
    SetRegister(13, 0x20000803);
    EXPECT_EQ(Register(17), 0x20000800u) << "the main stack";
    Control(5);
    EXPECT_TRUE(Halted());
    EXPECT_EQ(Register(15), 0x10Eu);
    EXPECT_EQ(TakeReasons(), 1u);

    // A breakpoint at the upper half of the word at 0x10C, once the unit is on.
    core.Write(0xE0002008, 0x8000010D);
    Control(1);
    core.Run(100);
    EXPECT_FALSE(Halted());
    core.Write(0xE0002000, 3);
    Control(3);
    TakeReasons();
    SetRegister(15, 0x10C);
    Control(1);
    core.Run(100);
    EXPECT_TRUE(Halted());
    EXPECT_EQ(Register(15), 0x10Eu);
    EXPECT_EQ(TakeReasons(), 2u);
    core.Write(0xE0002008, 0);
    core.Write(0x110, 0xBE00BE00); // BKPT
    Control(1);
    core.Run(100);
    EXPECT_EQ(Register(15), 0x110u);
    EXPECT_EQ(TakeReasons(), 2u);
    core.Write(0x110, 0x47704770);

    // A comparator of the DWT on writes: it has matched, once.
    core.Write(0xE0001030, 0x20000000);
    core.Write(0xE0001038, 6);
    Control(1);
    core.Run(100);
    EXPECT_EQ(Register(15), 0x110u);
    EXPECT_EQ(TakeReasons(), 4u);
    EXPECT_EQ(core.Read(0xE0001028), 0u);
    EXPECT_EQ(core.Read(0xE0001038), 0x01000006u);
    EXPECT_EQ(core.Read(0xE0001038), 6u);

    // What is beside, what is read and what is written are three things.
    SetRegister(15, 0x100);
    core.Write(0xE0001038, 5);
    core.Write(0xE0001020, 0x20000004);
    core.Write(0xE0001028, 7);
    core.Write(0xE0001040, 0x114); // where "main" has the counter's address from
    core.Write(0xE0001048, 6);
    Control(1);
    core.Run(100);
    EXPECT_FALSE(Halted());

    // Without a debugger a breakpoint is a fault, and there is no handler; the units sleep.
    core.Write(0x110, 0xBE00BE00);
    core.Write(0xE0002008, 0x4000010D);
    Control(3);
    SetRegister(15, 0x10C);
    Control(0);
    core.Run(100);
    EXPECT_EQ(core.Read(kDhcsr) >> 16 & 0xF, 0b1001u) << "locked up";
}

TEST_F(ServedCore, ResetsAndMayBeCaughtThere) {
    constexpr uint32_t kWasReset = 1u << 25;
    EXPECT_NE(core.Read(kDhcsr) & kWasReset, 0u);
    EXPECT_EQ(core.Read(kDhcsr) & kWasReset, 0u);
    Control(3);
    SetRegister(0, 7);
    core.Write(0xE000ED0C, 0x12340004);
    EXPECT_EQ(resets, 0) << "without the key";
    core.Write(0xE000ED0C, 0x05FA0004);
    EXPECT_EQ(resets, 1);
    EXPECT_FALSE(Halted());
    core.Run(7);

    chip.Write(kDemcr, 0x01000001);
    TakeReasons();
    core.Write(0xE000ED0C, 0x05FA0004);
    EXPECT_TRUE(Halted());
    EXPECT_EQ(TakeReasons(), 8u);
    EXPECT_THAT((std::vector{Register(13), Register(15), Register(16)}),
                ElementsAre(0x20010000u, 0x100u, 0x01000000u));

    // The same by the line, which holds the core.
    std::string answer;
    chip.Write(kDemcr, 0);
    session.Take("s", answer);
    core.Run(100);
    EXPECT_NE(core.Read(kDhcsr) & kWasReset, 0u);
    EXPECT_NE(core.Read(kDhcsr) & kWasReset, 0u) << "still";
    session.Take("r", answer);
    core.Run(1);
    Control(3);
    EXPECT_EQ(Register(15), 0x102u);
}

TEST_F(ServedCore, CarriesOutTheCommonInstructions) {
    struct Row {
        std::vector<uint16_t>
            code; // at 0x20000100; R0 is 0x7FFFFFFF, R1 0x20000200, R2 5, R3 0xFFFFFFFE
        int steps;
        uint32_t reg, value;
    };
    for (const Row& row : std::initializer_list<Row>{
             {{0x1898}, 1, 0, 3},                   // adds r0, r3, r2
             {{0x1AD0}, 1, 0, 7},                   // subs r0, r2, r3
             {{0x1E90}, 1, 0, 3},                   // subs r0, r2, #2
             {{0x3A06}, 1, 16, 0x81000000},         // subs r2, #6: negative, borrow
             {{0x3001}, 1, 16, 0x91000000},         // adds r0, #1: overflow
             {{0x2A05}, 1, 16, 0x61000000},         // cmp r2, #5
             {{0x2A05, 0xD0FF}, 2, 15, 0x20000104}, // beq to what follows
             {{0x2A05, 0xD1FE}, 2, 15, 0x20000104}, // bne, not taken
             {{0x2A06, 0xDBFD}, 2, 15, 0x20000100}, // blt, taken
             {{0x3302, 0xD2FE}, 2, 15, 0x20000102}, // adds r3, #2: carry; bcs to itself
             {{0x4610}, 1, 0, 5},                   // mov r0, r2
             {{0x4690}, 1, 8, 5},                   // mov r8, r2
             {{0x4788}, 1, 14, 0x20000103},         // blx r1
             {{0x604A, 0x6848}, 2, 0, 5},           // str r2, [r1, #4]; ldr r0, [r1, #4]
             {{0x4800, 0xBF00, 0x5678, 0x1234}, 1, 0, 0x12345678}, // ldr r0, [pc, #0]
             {{0xB50C}, 1, 13, 0x200001F4},                        // push {r2, r3, lr}
             {{0xB50C, 0xBD11}, 2, 0, 5},                          // pop {r0, r4, pc}
             {{0xB50C, 0xBD11}, 2, 15, 0x20000300},                // and where it goes
             {{0xB50C, 0xBD11}, 2, 13, 0x20000200},
             {{0xF7FF, 0xFFFE}, 1, 15, 0x20000100}, // bl to itself
             {{0xF7FF, 0xFFFE}, 1, 14, 0x20000105},
             {{0xF8D1, 0x0000}, 1, 15, 0x20000104}, // one that is not known
             {{0x6018}, 1, 15, 0x20000100},         // str r0, [r3]: there is nothing
         }) {
        CoreDebug fresh(chip, kCortexM4);
        fresh.Write(kDhcsr, 0xA05F0003);
        const auto set = [&fresh](uint32_t number, uint32_t value) {
            fresh.Write(0xE000EDF8, value);
            fresh.Write(0xE000EDF4, number | 1u << 16);
        };
        for (size_t i = 0; i < row.code.size(); ++i) {
            const auto at = uint32_t(0x20000100 + i / 2 * 4);
            fresh.Write(at, fresh.Read(at) | uint32_t(row.code[i]) << (i % 2 * 16));
        }
        const uint32_t registers[] = {0x7FFFFFFF, 0x20000200, 5, 0xFFFFFFFE};
        for (uint32_t i = 0; i < 4; ++i) set(i, registers[i]);
        set(13, 0x20000200);
        set(14, 0x20000301);
        set(15, 0x20000100);
        for (int i = 0; i < row.steps; ++i) fresh.Write(kDhcsr, 0xA05F0005);
        fresh.Write(0xE000EDF4, row.reg);
        EXPECT_EQ(fresh.Read(0xE000EDF8), row.value)
            << std::hex << row.code.front() << ", register " << row.reg;
    }
}

} // namespace
} // namespace etmhost
