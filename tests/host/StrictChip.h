// A chip that watches how it is treated, and a bench with it.

#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "host/support/words.h"
#include "host/target/command.h"
#include "host/target/etm_registers.h"
#include "host/target/target.h"

namespace etmhost {

inline const Symbols kMainAlone = {{"main", 0x8000}};

// A chip that does not forgive: writes outside of its trace components, and those that an ETM of
// its state may ignore, are noted as wrong.
class StrictChip final : public RegisterBus {
public:
    explicit StrictChip(const Chip& chip) : m_Chip(chip, registers) {
        hardware = HardwareOf(chip, m_Chip);
        registers.clear(); // trace power is off again
    }

    using RegisterBus::Read;
    std::vector<uint32_t> Read(std::span<const uint32_t> addresses) override {
        ++accesses;
        if (lostBehind == 0) throw BusLost("gone");
        --lostBehind;
        std::vector<uint32_t> words = m_Chip.Read(addresses);
        for (size_t i = 0; i < words.size(); ++i)
            if (addresses[i] == faultAddress) words[i] = (words[i] & ~faultMask) | faultValue;
        return words;
    }

    void Write(uint32_t address, uint32_t value) override {
        ++accesses;
        if (lostBehind == 0) throw BusLost("gone");
        --lostBehind;
        if (address == refusedAddress) throw BusError("refused");
        Judge(address, value);
        written.push_back(address);
        m_Chip.Write(address, value);
    }

    Refusal PreparePort(uint32_t width) override {
        prepared.push_back(width);
        return {};
    }

    uint32_t Etm(uint32_t number) { return m_Chip.Read(std::vector{hardware.Etm(number)})[0]; }
    uint32_t Word(uint32_t address) { return m_Chip.Read(std::vector{address})[0]; }

    /// What the ETM, comparators and port hold, and the power of trace.
    std::vector<uint32_t> Held() {
        std::vector<uint32_t> words = {Word(DEMCR), Etm(ETMTRACEIDR)};
        for (const uint32_t number : SettingRegisters(hardware.etm)) words.push_back(Etm(number));
        for (uint32_t offset = 0; offset < 16 * hardware.dwtComparators; offset += 4)
            words.push_back(Word(*hardware.dwtBase + DWT_COMP + offset));
        if (hardware.tpiuBase) words.push_back(Word(*hardware.tpiuBase + TPIU_CURRENT));
        return words;
    }

    ChipRegisters registers;
    TraceHardware hardware;
    std::vector<std::string> wrong;
    std::vector<uint32_t> written, prepared;
    uint32_t refusedAddress = 1; // takes no write
    int lostBehind = -1;
    int accesses = 0;
    // What a read of that address gives in place of the truth.
    uint32_t faultAddress = 1, faultMask = 0, faultValue = 0;

private:
    void Judge(uint32_t address, uint32_t value) {
        const auto complain = [&](const char* what) {
            wrong.push_back(std::string(what) + ": " + Hex(value) + " to " + Hex(address));
        };
        const auto inside = [address](const std::optional<uint32_t>& base) {
            return base && address - *base < 0x1000;
        };
        if (address == DEMCR) {
            if (value != (Word(DEMCR) | DEMCR_TRCENA)) complain("neighbours of TRCENA");
            return;
        }
        if (inside(hardware.tpiuBase) || inside(hardware.etbBase) || inside(hardware.dwtBase))
            return;
        if (address - hardware.etmBase >= 0x1000) return complain("outside");
        if (address - hardware.etmBase == CS_LAR) return;
        const uint32_t control = Etm(ETMCR);
        const uint32_t change = control ^ value;
        if (address != hardware.Etm(ETMCR)) {
            if ((control & ETMCR_PROGRAMMING) == 0) complain("out of programming mode");
            if ((control & ETMCR_POWER_DOWN) != 0) complain("powered down");
        } else if ((change & value & ETMCR_PROGRAMMING) != 0 && change != ETMCR_PROGRAMMING) {
            complain("another bit with the programming bit");
        } else if ((control & ETMCR_PROGRAMMING) == 0 &&
                   (change & ~(ETMCR_PROGRAMMING | ETMCR_POWER_DOWN)) != 0) {
            complain("control bits out of programming mode");
        }
    }

    SimulatedChip m_Chip;
};

// A version 3 ETM with comparators on a bus, with a trace port and no Cortex-M around it.
inline const Chip& MappedChip() {
    static const std::vector<Chip> chips = ParseChips(R"({
        "name": "mapped", "description": "", "info": "",
        "romTable": {"address": "0x80000000", "part": "0x123"},
        "components": [
          {"kind": "tpiu", "address": "0x80003000", "part": "0x912", "portSizes": [4, 8, 16]},
          {"kind": "etm", "address": "0x80001000", "part": "0x921", "lock": true,
           "registers": {"ETMCR": "0x411", "ETMCCR": "0x8D294024", "ETMSCR": "0xC04",
                         "ETMIDR": "0x4104F230"}}],
        "sink": {"kind": "port"}})");
    return chips.front();
}

struct Bench {
    explicit Bench(const std::string& name)
        : chip(new StrictChip(name == "mapped" ? MappedChip() : *FindChip(name))),
          target(std::unique_ptr<RegisterBus>(chip), chip->hardware, kMainAlone,
                 [this](const std::string& text) { told += text + "\n"; }),
          language(target, kMainAlone) {}

    std::string Run(const std::string& command) {
        return language.Execute(command, nullptr).value_or("ok");
    }

    std::string told;
    StrictChip* const chip;
    Target target;
    CommandLanguage language;
};

inline const char* const kOnChip[] = {"arm9-etb", "cortex-m4", "cortex-m4-etb", "mapped"};

} // namespace etmhost
