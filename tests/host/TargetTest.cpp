// Targets as their registers see them: what is written, in which order, and what comes back.

#include "host/target/target.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>
#include <random>

#include "frame/interfaces/IOrnVETMTrace.h"
#include "host/support/host_error.h"
#include "host/support/words.h"
#include "host/target/OverlayBus.h"
#include "host/target/command.h"
#include "host/target/etm_registers.h"
#include "tests/host/StrictChip.h"

namespace etmhost {
namespace {

using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::StartsWith;

// A Cortex-M4 of which some words read otherwise.
class OddChip final : public RegisterBus {
public:
    using RegisterBus::Read;
    std::vector<uint32_t> Read(std::span<const uint32_t> addresses) override {
        std::vector<uint32_t> read;
        for (const uint32_t address : addresses) {
            const auto odd = words.find(address);
            read.push_back(odd != words.end() ? odd->second : m_Chip.RegisterBus::Read(address));
        }
        return read;
    }
    void Write(uint32_t address, uint32_t value) override {
        written.push_back(address);
        m_Chip.Write(address, value);
    }
    std::string CoreType() override { return core; }

    std::map<uint32_t, uint32_t> words;
    std::vector<uint32_t> written;
    std::string core = "cortex_m";

private:
    ChipRegisters m_Registers;
    SimulatedChip m_Chip{*FindChip("cortex-m4-etb"), m_Registers};
};

// What was written over a chip acts as on the chip, which gets nothing of it.
TEST(Overlay, ActsAsTheChipAndLeavesItAlone) {
    const char* const commands[] = {"etm pc=start 1",
                                    "enable",
                                    "etm pc=from main",
                                    "etm pc=to main+8",
                                    "etm data=from 4",
                                    "etm data=to 8",
                                    "start",
                                    "set triggercount=8",
                                    "stop",
                                    "start",
                                    "etm trigger 2",
                                    "stop",
                                    "dwt 0 main",
                                    "etm pc=stop 0",
                                    "etm portsize=4",
                                    "set control=0x5",
                                    "macro /startup",
                                    "disable",
                                    "start"};
    for (const char* name : kOnChip) {
        SCOPED_TRACE(name);
        Bench direct(name), below(name);
        for (Bench* bench : {&direct, &below}) {
            if (!bench->chip->hardware.hasTracePower) continue;
            bench->chip->Write(DEMCR, DEMCR_TRCENA);
            bench->chip->written.clear();
        }
        struct Below final : RegisterBus { // the chip is the bench's
            explicit Below(RegisterBus& chip) : bus(chip) {}
            using RegisterBus::Read;
            std::vector<uint32_t> Read(std::span<const uint32_t> addresses) override {
                return bus.Read(addresses);
            }
            void Write(uint32_t, uint32_t) override { ADD_FAILURE(); }
            Refusal PreparePort(uint32_t) override { return "not to be reached"; }
            RegisterBus& bus;
        };
        const ChipRegisters held = below.chip->registers;
        auto overlay = std::make_unique<OverlayBus>(std::make_unique<Below>(*below.chip));
        overlay->Know(below.chip->hardware);
        Target target(std::move(overlay), below.chip->hardware, kMainAlone,
                      [](const std::string&) {});
        CommandLanguage language(target, kMainAlone);
        for (const char* command : commands) {
            SCOPED_TRACE(command);
            EXPECT_EQ(language.Execute(command, nullptr).value_or("ok"), direct.Run(command));
            target.Look();
            direct.target.Look();
            EXPECT_EQ(target.SettingsLines(), direct.target.SettingsLines());
            EXPECT_EQ(target.Control(), direct.target.Control());
            EXPECT_EQ(target.TriggerCount(), direct.target.TriggerCount());
            EXPECT_EQ(target.StateWord(), direct.target.StateWord());
        }
        EXPECT_EQ(below.chip->registers, held);
    }
}

// What is wrong with a description, and where.
TEST(Chips, ADescriptionIsRefusedByThePlace) {
    const auto whole = nlohmann::json::parse(R"({"name": "x", "description": "", "info": "",
        "components": [{"kind": "etm"}], "portSizes": [4], "sink": {"kind": "port"},
        "options": {"etb": {}}})");
    const auto refusal = [](const std::string& text) -> std::string {
        try {
            EXPECT_EQ(ParseChips(text).back().name, "x-etb");
        } catch (const HostError& error) {
            return error.what();
        }
        return "";
    };
    const struct {
        const char *patch, *text;
    } rows[] = {
        {"{}", ""},
        {R"({"name": null})", "its \"name\" is missing"},
        {R"({"name": ""})", "name: it is empty"},
        {R"({"description": "a\nb"})", "description: there is a control character in it"},
        {R"({"info": "\u0000"})", "info: there is a NUL in it"},
        {R"({"info": 7})", "info: it is no text"},
        {R"({"portSizes": [4, 33]})", "portSizes[1]: it is more than 0x20"},
        {R"({"portSizes": ["0"]})", "portSizes[0]: a port of 0 bits"},
        {R"({"portSizes": null})", "its \"portSizes\" are missing, and there is no tpiu"},
        {R"({"romTable": {"part": 1}})", "romTable: its \"address\" is missing"},
        {R"({"romTable": {"part": 1, "address": 0}})", "components[0]: it is where the ROM table"},
        {R"({"romTable": {"part": 4096, "address": 4096}})",
         "romTable.part: it is more than 0xFFF"},
        {R"({"sink": {"kind": "drain"}})",
         "sink.kind: there is no such kind: emulator, buffer, port"},
        {R"({"sink": {"kind": "emulator"}})", "sink: its \"words\" is missing"},
        {R"({"sink": {"kind": "buffer"}})", "sink: a buffer needs an etb among the components"},
        {R"({"sink": []})", "sink: it is no object"},
        {R"({"components": []})", "components: there is no etm"},
        {R"({"components": {}})", "components: it is no array"},
        {R"({"components": [{"kind": "etm"}, 7]})", "components[1]: it is no object"},
        {R"({"components": [{"kind": "etm"}, {"kind": "dwt"}]})",
         "components[1]: it is at 0x0, as components[0]"},
        {R"({"components": [{"kind": "etm", "address": 256}]})",
         "components[0].address: it is inside a page of 4 KB"},
        {R"({"components": [{"kind": "etm", "lock": 1}]})",
         "components[0].lock: it is neither true nor false"},
        {R"({"components": [{"kind": "etm", "registers": {"0x2": 0}}]})",
         "components[0].registers.0x2: there is no register of that name or offset"},
        {R"({"components": [{"kind": "etm", "registers": {"ETMCR": "0x1q"}}]})",
         "components[0].registers.ETMCR: it is no number"},
        {R"({"components": [{"kind": "tpiu"}]})", "components[0]: a tpiu needs \"portSizes\""},
        {R"({"components": [{"kind": "tpiu", "portSizes": [1], "current": 2}]})",
         "components[0].current: a size that is not among its \"portSizes\""},
        {R"({"components": [{"kind": "etb"}]})",
         "components[0]: an etb needs \"words\", more than 0"},
        {R"({"components": [{"kind": "dwt", "comparators": 16}]})",
         "components[0].comparators: it is more than 0xF"},
        {R"({"options": {"etb": {"sink": {"kind": "buffer"}}}})",
         "options.etb: sink: a buffer needs an etb among the components"},
        {R"({"options": {"etb": 7}})", "options.etb: it is no object"},
    };
    for (const auto& [patch, text] : rows) {
        nlohmann::json changed = whole;
        changed.merge_patch(nlohmann::json::parse(patch));
        EXPECT_THAT(refusal(changed.dump()), StartsWith(text)) << patch;
        EXPECT_EQ(refusal(changed.dump()).empty(), std::string(text).empty()) << patch;
    }
    EXPECT_THAT(refusal("{\n1"), StartsWith("parse error at line 2, column 1: "));
    EXPECT_EQ(refusal(std::string(1000000, '[')), "it is nested too deep");
}

TEST(Discovery, RefusesByNameWhatItCannotDrive) {
    constexpr uint32_t kTable = 0xE00FF000, kEtm = 0xE0041000, kEtb = 0xE0042000;
    constexpr uint32_t kItm = 0xE0000000; // which becomes something else
    const struct {
        const char* text;
        std::map<uint32_t, uint32_t> words;
        const char* core;
    } rows[] = {
        {"", {}, "cortex_m"},
        {"no ROM table at 0xE00FF000 that would list trace hardware: its component ID reads 0x0 "
         "instead of 0xB105100D. The core is a cortex_m",
         {{kTable + 0xFF0, 0}, {kTable + 0xFF4, 0}, {kTable + 0xFF8, 0}, {kTable + 0xFFC, 0}},
         "cortex_m"},
        {"an arm926ejs: its ETM, if it has one, is reached by a scan chain",
         {{kTable + 0xFFC, 0}},
         "arm926ejs"},
        {"at 0xE0041000 is an ETMv4 (DEVARCH 0x47724A13)", {{kEtm + 0xFBC, 0x47724A13}}, ""},
        {"a trace funnel at 0xE0000000", {{kItm + 0xFF4, 0x90}, {kItm + 0xFCC, 0x12}}, ""},
        {"2 of them (a trace unit each): 0xE0000000, 0xE0041000",
         {{kItm + 0xFF4, 0x90}, {kItm + 0xFCC, 0x13}},
         ""},
        {"has no ETM; its ROM table lists an ITM at 0xE0000000, a DWT", {{kTable + 20, 0}}, ""},
        {"nothing that answers at 0xE0041000", {{kEtm + 0xFF0, 0}}, ""},
        {"its registers read 0x0: it may have no clock", {{kEtm + 4, 0}}, ""},
        {"no ETM: its ID register reads 0x411CF310", {{kEtm + 0x1E4, 0x411CF310}}, ""},
        {"TRCENA in DEMCR (0xE000EDFC) stays 0", {{DEMCR, 0}}, ""},
        {"the trace memory controller at 0xE0042000 is no buffer of its own (DEVID 0x80)",
         {{kEtb + 0xFE0, 0x61}, {kEtb + 0xFE4, 0xB9}, {kEtb + 0xFC8, 0x80}},
         ""},
        // A table inside the table that lists the outer one, and itself.
        {"", {{kItm + 0xFF4, 0x10}, {kItm, 0xFF003}, {kItm + 4, 3}}, ""},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.text);
        OddChip chip;
        chip.words = row.words;
        chip.core = row.core;
        std::string refusal;
        try {
            const TraceHardware found = Discover(chip, {}, [](const std::string&) {});
            EXPECT_EQ(found.capacity, 1024u);
            EXPECT_EQ(found.portSizes, 0xBu);
            EXPECT_EQ(found.dwtComparators, 4u);
            EXPECT_TRUE(found.etm.TakesIndexes());
        } catch (const BusError& error) {
            refusal = error.what();
        }
        EXPECT_THAT(refusal, HasSubstr(row.text));
        EXPECT_EQ(refusal.empty(), std::string(row.text).empty());
        for (const uint32_t address : chip.written) EXPECT_EQ(address, DEMCR);
    }

    std::string unclocked = R"({"name": "x", "description": "", "info": "",
        "romTable": {"address": "0x80000000", "part": "1"}, "sink": {"kind": "port"},
        "components": [{"kind": "tpiu", "address": "0x80003000", "portSizes": [4]},
          {"kind": "etm", "address": "0x80001000", "clock": false,
           "registers": {"ETMCCR": "0x8D294024"}}]})";
    EXPECT_THROW(Target(ParseChips(unclocked).front()), BusError);
    unclocked.replace(unclocked.find("false"), 5, "true");
    EXPECT_EQ(Target(ParseChips(unclocked).front()).etm().addressPairs, 4u);

    // By hand, where no table lists it; and one of several.
    OddChip chip;
    chip.words = {{kTable + 0xFF0, 0}};
    KnownBases bases;
    bases.etm = kEtm;
    bases.tpiu = 0xE0040000;
    chip.Write(DEMCR, DEMCR_TRCENA);
    EXPECT_EQ(Discover(chip, bases, [](const std::string&) {}).sink, SinkKind::Port);
    bases.tpiu = kEtb;
    EXPECT_THROW(Discover(chip, bases, [](const std::string&) {}), BusError);
}

TEST(Target, KeepsToTheRulesWhateverIsAsked) {
    std::mt19937 random(20261123);
    const auto below = [&random](size_t limit) {
        return std::uniform_int_distribution<size_t>(0, limit - 1)(random);
    };
    const char* const commands[] = {
        "enable",           "disable",         "start",          "stop",
        "etm pc=all",       "etm pc=none",     "etm pc=start 1", "etm pc=stop 2",
        "etm pc=from 16",   "etm pc=to 32",    "etm data=all",   "etm data=none",
        "etm data=from 64", "etm data=to 128", "etm trigger 3",  "etm portsize=4",
        "etm portsize=2",   "etm halfrate=on", "dwt 1 main",     "dwt 1 off",
        "etm complex",      "macro /none",     "trigger force"};
    for (const char* name : kOnChip) {
        SCOPED_TRACE(name);
        Bench bench(name);
        for (int step = 0; step < 3000; ++step) {
            const std::string command = commands[below(std::size(commands))];
            switch (below(8)) {
            case 0:
                bench.target.SetControl(static_cast<uint32_t>(below(2) | below(2) << 9));
                break;
            case 1:
                bench.target.SetTriggerCount(static_cast<uint32_t>(below(1024)));
                break;
            case 2:
                bench.chip->Step();
                bench.target.Poll();
                break;
            default:
                bench.Run(command);
            }
            ASSERT_THAT(bench.chip->wrong, IsEmpty()) << command;
            // What was powered is never left in programming mode.
            const uint32_t control = bench.chip->Etm(ETMCR);
            EXPECT_NE(control & (ETMCR_PROGRAMMING | ETMCR_POWER_DOWN), ETMCR_PROGRAMMING)
                << command;
        }
    }
}

TEST(Target, LooksWithoutWriting) {
    for (const char* name : kOnChip) {
        Bench bench(name);
        bench.chip->written.clear();
        bench.target.SettingsLines();
        bench.target.Control();
        bench.target.TriggerCount();
        bench.target.DwtComparators();
        const int before = bench.chip->accesses;
        EXPECT_EQ(bench.target.Poll(), Refusal());
        EXPECT_EQ(bench.chip->accesses, before + 1) << "one batch for each look";
        EXPECT_THAT(bench.chip->written, IsEmpty()) << name;
    }
}

TEST(Target, SetsWhatAnEngineerWouldWriteByHand) {
    Bench bench("cortex-m4");
    StrictChip& chip = *bench.chip;
    for (const char* command : {"dwt 0 main", "dwt 1 main+0x40", "enable", "etm pc=start 0",
                                "etm pc=stop 1", "etm portsize=4"})
        EXPECT_EQ(bench.Run(command), "ok") << command;
    EXPECT_EQ(chip.Etm(ETMCR), 0x810u) << "powered, enabled, out of programming mode";
    EXPECT_EQ(chip.Etm(ETMTECR1), 1u << 25);
    EXPECT_EQ(chip.Etm(ETMTESSEICR), 0x00020001u);
    EXPECT_EQ(chip.Etm(ETMTEEVR), 0x6Fu);
    EXPECT_EQ(chip.Etm(ETMTRACEIDR), 1u);
    EXPECT_EQ(chip.Word(0xE0040004), 8u);
    EXPECT_EQ(chip.Word(0xE0001020), 0x8000u);
    EXPECT_EQ(chip.Word(0xE0001028), 8u);
    EXPECT_EQ(chip.Word(0xE0001038) & 0xF, 8u);
    EXPECT_EQ(chip.Word(DEMCR), DEMCR_TRCENA);
    EXPECT_EQ(bench.Run("etm pc=start 0"), "ok") << "takes the stop back";
    EXPECT_EQ(chip.Etm(ETMTESSEICR), 0x00000001u);
    EXPECT_EQ(bench.Run("etm trigger 1"), "ok");
    EXPECT_EQ(chip.Etm(ETMTRIGGER), 0x21u);
    EXPECT_EQ(bench.target.SetControl(1), Refusal()) << "no command takes a trigger back";
    EXPECT_EQ(chip.Etm(ETMTRIGGER), 0x406Fu);

    // A range is held until it is whole; nothing happens on the chip before.
    Bench ranges("arm9-etb");
    EXPECT_EQ(ranges.Run("etm pc=from main + 4"), "ok");
    EXPECT_EQ(ranges.chip->Etm(ETMTECR1), 1u << 24);
    EXPECT_EQ(ranges.target.SettingsLines()[0], "ETM PC = from main + 4");
    EXPECT_EQ(ranges.Run("etm pc=to 0x9000"), "ok");
    EXPECT_EQ(ranges.chip->Etm(ETMTECR1), 1u);
    EXPECT_EQ(ranges.chip->Etm(ETMACVR), 0x8004u);
    EXPECT_EQ(ranges.chip->Etm(ETMACVR + 1), 0x9000u) << "as it evaluates";
    EXPECT_EQ(ranges.target.SettingsLines()[0], "ETM PC = from main + 4");
    ranges.chip->registers[4 * ETMACVR] = 0x4000; // by somebody else
    EXPECT_EQ(ranges.target.SettingsLines()[0], "ETM PC = from 0x4000");

    Bench buffer("cortex-m4-etb");
    for (const uint32_t count : {512u, 1u, 0u}) {
        EXPECT_EQ(buffer.target.SetTriggerCount(count), Refusal());
        EXPECT_EQ(buffer.chip->Word(0xE004201C), count > 0 ? count - 1 : 0);
        EXPECT_EQ(buffer.target.TriggerCount(), count);
    }
    buffer.target.SetControl(0x201);
    EXPECT_EQ(buffer.Run("start"), "ok");
    EXPECT_EQ(buffer.chip->Word(0xE0042304), 0x2001u) << "formatting, stop on trigger";
    EXPECT_EQ(buffer.chip->Word(0xE0042020), 1u);
    EXPECT_THAT(buffer.target.SetTriggerCount(3).value_or(""), HasSubstr("while it captures"));
    EXPECT_NE(buffer.target.ClearBuffer(), Refusal());
    EXPECT_EQ(buffer.Run("stop"), "ok");
    EXPECT_EQ(buffer.chip->Word(0xE0042020), 0u);
    buffer.chip->registers[0xE004200C] = 1; // full, until the next capture
    buffer.target.Look();
    EXPECT_EQ(buffer.target.state.capture.captured, 1024u);
    EXPECT_EQ(buffer.target.ClearBuffer(), Refusal());
    buffer.target.Look();
    EXPECT_EQ(buffer.target.state.capture.captured, 0u);
}

TEST(Target, OutlivesItsConnectionAndItsPower) {
    for (int accesses = 0; accesses < 30; ++accesses) {
        Bench bench("cortex-m4-etb");
        bench.Run("enable");
        bench.Run("start");
        ASSERT_TRUE((bench.target.StateWord() & ORN_STATE_RUNNING) != 0);
        bench.chip->lostBehind = accesses;
        std::string refusal;
        for (const char* command : {"etm pc=start 1", "stop", "dwt 0 main", "etm portsize=4"})
            refusal = bench.Run(command);
        EXPECT_EQ(refusal, "Gone");
        EXPECT_EQ(bench.target.Poll(), "Gone");
        EXPECT_EQ(bench.target.StateWord() & ORN_STATE_RUNNING, 0u) << "says stopped";
        EXPECT_THROW(bench.target.SettingsLines(), BusLost);
    }

    // A port sends as soon as it is enabled, and says that it runs.
    Bench port("cortex-m4");
    EXPECT_EQ(port.Run("enable"), "ok");
    const uint32_t words[] = {ORN_STATE_RUNNING | ORN_STATE_LOOK_AGAIN,
                              ORN_STATE_RUNNING | ORN_STATE_LOOK_AGAIN, ORN_STATE_LOOK_AGAIN,
                              ORN_STATE_RUNNING | ORN_STATE_LOOK_AGAIN};
    const char* const commands[] = {"etm pc=all", "start", "stop", "start"};
    for (size_t i = 0; i < std::size(words); ++i) {
        EXPECT_EQ(port.Run(commands[i]), "ok");
        EXPECT_EQ(port.target.Poll(), Refusal());
        EXPECT_EQ(port.target.StateWord(), words[i]) << commands[i];
    }

    Bench reset("cortex-m4-etb");
    for (const char* command : {"dwt 0 main", "etm pc=start 0", "enable", "start"})
        EXPECT_EQ(reset.Run(command), "ok");
    reset.target.Poll();
    reset.chip->registers.clear();
    reset.told.clear();
    for (int look = 0; look < 3; ++look) reset.target.Poll();
    EXPECT_EQ(reset.told, "trace has lost its power: the chip may have been reset\n");
    EXPECT_EQ(reset.target.StateWord(), ORN_STATE_LOOK_AGAIN);
    for (const char* command : {"etm pc=start 0", "etm trigger 0"})
        EXPECT_THAT(reset.Run(command), HasSubstr("Set it anew: dwt 0 0x8000"));
    reset.chip->registers[0xE0041008] = 0x20; // a trigger that relies on it keeps nobody from this
    EXPECT_EQ(reset.Run("etm pc=none"), "ok");
    EXPECT_EQ(reset.Run("enable"), "ok");
    EXPECT_THAT(reset.Run("start"), HasSubstr("no longer watches 0x8000"));
    EXPECT_TRUE(reset.target.DwtComparators()[0].lost);
    EXPECT_EQ(reset.Run("dwt 0 main"), "ok");
    EXPECT_EQ(reset.Run("etm pc=start 0"), "ok");
}

} // namespace
} // namespace etmhost
