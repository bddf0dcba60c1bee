#include "host/target/trace_hardware.h"

#include <algorithm>
#include <array>
#include <set>

#include "host/support/words.h"
#include "host/target/etm_registers.h"

namespace etmhost {

namespace {

constexpr uint32_t kCortexRomTable = 0xE00FF000;
constexpr uint32_t kSystemControlSpace = 0xE000E000;
constexpr size_t kMostEntries = 960; // of one table: up to its identification
constexpr size_t kMostFound = 256;
constexpr int kDeepestTable = 4;
constexpr uint32_t kMostBufferWords = 1u << 24; // of a buffer

constexpr uint32_t kClassRomTable = 1;
constexpr uint32_t kClassCoreSight = 9;
constexpr uint32_t kClassGeneric = 0xE;

// What a component says of itself.
struct Identity {
    uint32_t address = 0;
    bool valid = false; // the preamble is there
    uint32_t component = 0;
    uint32_t kind = 0; // class
    uint32_t part = 0;
    uint32_t type = 0; // DEVTYPE, of a CoreSight component
    uint32_t architecture = 0;
    uint32_t deviceId = 0;
};

Identity Identify(RegisterBus& bus, uint32_t address) {
    Identity id;
    id.address = address;
    const std::array<uint32_t, 9> addresses = {
        address + CS_DEVARCH,   address + CS_DEVID,     address + CS_DEVTYPE,
        address + CS_PIDR0,     address + CS_PIDR0 + 4, address + CS_CIDR0,
        address + CS_CIDR0 + 4, address + CS_CIDR0 + 8, address + CS_CIDR0 + 12};
    const std::vector<uint32_t> words = bus.Read(addresses);
    for (size_t i = 0; i < 4; ++i) id.component |= (words[5 + i] & 0xFF) << (8 * i);
    id.valid = (id.component & 0xFFFF0FFF) == 0xB105000D;
    if (!id.valid) return id;
    id.kind = id.component >> 12 & 0xF;
    id.part = (words[3] & 0xFF) | (words[4] & 0xF) << 8;
    if (id.kind == kClassCoreSight) {
        id.type = words[2] & 0xFF;
        id.architecture = words[0];
        id.deviceId = words[1];
    }
    return id;
}

std::string At(uint32_t address) {
    return " at " + Hex(address);
}

const char* TypeName(const Identity& id) {
    if (id.kind == kClassCoreSight) {
        switch (id.type) {
        case 0x11:
            return "a trace port";
        case 0x12:
            return "a trace funnel";
        case 0x13:
            return "a trace unit";
        case 0x14:
            return "a cross trigger";
        case 0x15:
            return "a core";
        case 0x21:
            return "a trace buffer";
        case 0x22:
            return "a trace replicator";
        default:
            break;
        }
    }
    if (id.kind == kClassGeneric) {
        switch (id.part) {
        case 0x000:
        case 0x00C:
            return "a core";
        case 0x001:
            return "an ITM";
        case 0x002:
            return "a DWT";
        case 0x003:
            return "an FPB";
        default:
            break;
        }
    }
    return "a part";
}

class Search {
public:
    Search(RegisterBus& bus, const KnownBases& bases, const Tell& tell)
        : m_Bus(bus), m_Bases(bases), m_Tell(tell) {}

    TraceHardware Run() {
        ReadTables();
        PowerTrace();
        for (const uint32_t address : m_Addresses) Look(address);
        const auto byHand = [this](const std::optional<uint32_t>& base) {
            if (base && !m_Addresses.contains(*base)) Look(*base);
        };
        for (const auto* base : {&m_Bases.etm, &m_Bases.tpiu, &m_Bases.etb, &m_Bases.dwt})
            byHand(*base);
        return Choose();
    }

private:
    void ReadTables() {
        const bool allByHand = m_Bases.etm && !m_Bases.romTable;
        const uint32_t base = m_Bases.romTable.value_or(kCortexRomTable);
        const Identity table = allByHand ? TryIdentify(base) : IdentifyTable(base);
        if (table.valid && table.kind == kClassRomTable) {
            ReadTable(base, 0);
        } else if (!allByHand) {
            throw BusError("there is no ROM table at " + Hex(base) +
                           " that would list trace hardware: its component ID reads " +
                           Hex(table.component) + " instead of 0xB105100D" + OfCore());
        }
    }

    Identity IdentifyTable(uint32_t base) {
        try {
            return Identify(m_Bus, base);
        } catch (const BusLost&) {
            throw;
        } catch (const BusError& error) {
            throw BusError("there is no ROM table at " + Hex(base) +
                           " that would list trace hardware: " + error.what() + OfCore());
        }
    }

    // The cores whose ETM, if they have one, no address leads to.
    std::string OfCore() {
        const std::string core = m_Bus.CoreType();
        for (const char* const family : {"arm7", "arm9", "arm11", "arm720", "feroceon"}) {
            if (core.starts_with(family)) {
                return ". The core is an " + core +
                       ": its ETM, if it has one, is reached by a scan chain alone, which this "
                       "program cannot drive on a real chip";
            }
        }
        return core.empty() ? "" : ". The core is a " + core;
    }

    void ReadTable(uint32_t base, int depth) {
        if (depth > kDeepestTable) throw BusError("the ROM tables are nested too deep");
        m_Tables.insert(base);
        constexpr size_t kAtOnce = 16;
        for (size_t first = 0; first < kMostEntries; first += kAtOnce) {
            std::vector<uint32_t> addresses;
            for (size_t i = 0; i < kAtOnce; ++i)
                addresses.push_back(base + 4 * static_cast<uint32_t>(first + i));
            for (const uint32_t entry : m_Bus.Read(addresses)) {
                if (entry == 0) return;
                if ((entry & 1) == 0) continue; // listed, and absent
                const uint32_t address = base + (entry & 0xFFFFF000);
                if (m_Addresses.size() + m_Tables.size() >= kMostFound)
                    throw BusError("the ROM table lists too many components");
                if (address == base || m_Tables.contains(address) ||
                    !m_Addresses.insert(address).second)
                    continue;
                // A table inside a table has power whenever the outer one has.
                if (const Identity id = TryIdentify(address);
                    id.valid && id.kind == kClassRomTable) {
                    m_Addresses.erase(address);
                    ReadTable(address, depth + 1);
                }
            }
        }
    }

    Identity TryIdentify(uint32_t address) {
        try {
            return Identify(m_Bus, address);
        } catch (const BusLost&) {
            throw;
        } catch (const BusError&) {
            Identity none;
            none.address = address;
            return none;
        }
    }

    // Without trace power the trace components read as nothing. The core's own registers tell, so
    // they have to be known as such first.
    void PowerTrace() {
        // One that was given by hand, inside of what all Cortex-M have there, has them too.
        const bool byHand = m_Bases.etm && *m_Bases.etm >> 20 == kSystemControlSpace >> 20;
        if (!m_Addresses.contains(kSystemControlSpace) && !byHand) return;
        const Identity scs = TryIdentify(kSystemControlSpace);
        if (!scs.valid || scs.kind != kClassGeneric) return;
        m_Hardware.hasTracePower = true;
        const uint32_t demcr = m_Bus.Read(DEMCR);
        if ((demcr & DEMCR_TRCENA) != 0) return;
        m_Tell("trace had no power: setting TRCENA, bit 24 of DEMCR (" + Hex(DEMCR) + ")");
        m_Bus.Write(DEMCR, demcr | DEMCR_TRCENA);
        const uint32_t now = m_Bus.Read(DEMCR);
        if ((now & DEMCR_TRCENA) == 0) {
            throw BusError("trace has no power: TRCENA in DEMCR (" + Hex(DEMCR) + ") stays 0; " +
                           Hex(demcr | DEMCR_TRCENA) + " was written, " + Hex(now) + " read");
        }
    }

    void Look(uint32_t address) {
        const Identity id = TryIdentify(address);
        if (id.valid)
            m_Found.push_back(id);
        else
            m_Silent.push_back(address);
    }

    std::vector<Identity> OfType(uint32_t type) const {
        std::vector<Identity> found;
        std::ranges::copy_if(m_Found, std::back_inserter(found), [type](const Identity& id) {
            return id.kind == kClassCoreSight && id.type == type;
        });
        return found;
    }

    // The one component of `type`: the one that was given by hand, or the only one.
    std::optional<Identity> TheOne(uint32_t type, const std::optional<uint32_t>& byHand,
                                   const char* option) const {
        const std::vector<Identity> found = OfType(type);
        if (byHand) {
            for (const Identity& id : found)
                if (id.address == *byHand) return id;
            throw BusError("there is no such component at " + Hex(*byHand) + ", given as " +
                           option);
        }
        if (found.empty()) return std::nullopt;
        if (found.size() > 1) {
            std::string list;
            for (const Identity& id : found) list += (list.empty() ? "" : ", ") + Hex(id.address);
            throw BusError("there are " + std::to_string(found.size()) + " of them (" +
                           TypeName(found.front()) + " each): " + list + "; choose by --base " +
                           option + "=ADDRESS");
        }
        return found.front();
    }

    std::string Listing() const {
        std::string list;
        for (const Identity& id : m_Found) {
            list += (list.empty() ? "" : ", ") + std::string(TypeName(id)) + At(id.address);
            if (TypeName(id) == std::string("a part")) list += " (part " + Hex(id.part) + ")";
        }
        for (const uint32_t address : m_Silent)
            list += (list.empty() ? "" : ", ") + std::string("nothing that answers") + At(address);
        return list.empty() ? "nothing" : list;
    }

    TraceHardware Choose() {
        const std::optional<Identity> etm = TheOne(0x13, m_Bases.etm, "etm");
        if (!etm) throw BusError("this target has no ETM; its ROM table lists " + Listing());
        if ((etm->architecture & 0x10FFFF) == 0x104A13) {
            throw BusError("the trace unit" + At(etm->address) + " is an ETMv4 (DEVARCH " +
                           Hex(etm->architecture) + "), whose registers are others than those of " +
                           "version 1 to 3.5 that this program knows");
        }
        if (const std::vector<Identity> funnels = OfType(0x12); !funnels.empty()) {
            throw BusError("there is a trace funnel" + At(funnels.front().address) +
                           " between the ETM and where its trace goes, which this program cannot "
                           "switch");
        }
        ReadEtm(*etm);
        ReadSinks();
        if (const auto dwt = Dwt()) {
            m_Hardware.dwtBase = dwt;
            m_Hardware.dwtComparators = m_Bus.Read(*dwt + DWT_CTRL) >> 28;
        }
        return m_Hardware;
    }

    void ReadEtm(const Identity& id) {
        m_Hardware.etmBase = id.address;
        const auto address = [this](uint32_t number) { return m_Hardware.Etm(number); };
        const std::array<uint32_t, 3> addresses = {address(ETMCCR), address(ETMSCR),
                                                   address(ETMIDR)};
        const std::vector<uint32_t> words = m_Bus.Read(addresses);
        EtmIds& ids = m_Hardware.ids;
        ids = {.configCode = words[0], .systemConfig = words[1], .id = words[2]};
        if (ids.configCode == 0 || ids.configCode == UINT32_MAX) {
            throw BusError("the ETM" + At(id.address) + " is there, but its registers read " +
                           Hex(ids.configCode) + ": it may have no clock");
        }
        m_Hardware.etm = DecodeResources(ids);
        const EtmResources& etm = m_Hardware.etm;
        if ((ids.configCode & 0x80000000) != 0 && (ids.id >> 8 & 0xF) >= 3) {
            throw BusError("the trace unit" + At(id.address) +
                           " is no ETM: its ID register reads " + Hex(ids.id) +
                           ", which is of another architecture");
        }
        if (etm.IsAtLeast(3, 1)) {
            ids.configExtension = m_Bus.Read(address(ETMCCER));
            m_Hardware.etm = DecodeResources(ids);
        }
        m_Hardware.description = "ETM v" + std::to_string(etm.archMajor) + "." +
                                 std::to_string(etm.archMinor) + At(id.address);
    }

    void ReadSinks() {
        if (const auto tpiu = TheOne(0x11, m_Bases.tpiu, "tpiu")) {
            m_Hardware.tpiuBase = tpiu->address;
            m_Hardware.portSizes = m_Bus.Read(tpiu->address + TPIU_SUPPORTED);
        }
        if (const auto etb = TheOne(0x21, m_Bases.etb, "etb")) {
            m_Hardware.bufferIsController = etb->part == 0x961;
            if (m_Hardware.bufferIsController && (etb->deviceId >> 6 & 3) != 0) {
                throw BusError("the trace memory controller" + At(etb->address) +
                               " is no buffer of its own (DEVID " + Hex(etb->deviceId) + ")");
            }
            m_Hardware.etbBase = etb->address;
            m_Hardware.sink = SinkKind::Buffer;
            m_Hardware.capacity = m_Bus.Read(etb->address + ETB_DEPTH);
            if (m_Hardware.capacity == 0 || m_Hardware.capacity > kMostBufferWords) {
                throw BusError("the trace buffer" + At(etb->address) +
                               " is there, but its depth reads " + Hex(m_Hardware.capacity) +
                               ": it may have no clock");
            }
            m_Hardware.info = "ETB, " + std::to_string(m_Hardware.capacity) + " words on chip";
        } else if (m_Hardware.tpiuBase) {
            m_Hardware.info = "TPIU; what its port sends is recorded outside";
        } else {
            throw BusError("the ETM" + At(m_Hardware.etmBase) +
                           " leads to no trace port and no buffer; the ROM table lists " +
                           Listing());
        }
        m_Hardware.description += m_Hardware.etbBase ? ", trace buffer" + At(*m_Hardware.etbBase)
                                                     : ", trace port" + At(*m_Hardware.tpiuBase);
    }

    std::optional<uint32_t> Dwt() const {
        if (m_Bases.dwt) {
            for (const Identity& id : m_Found)
                if (id.address == m_Bases.dwt && id.kind == kClassGeneric) return id.address;
            throw BusError("there is no such component at " + Hex(*m_Bases.dwt) + ", given as dwt");
        }
        for (const Identity& id : m_Found)
            if (id.kind == kClassGeneric && id.part == 0x002) return id.address;
        return std::nullopt;
    }

    RegisterBus& m_Bus;
    const KnownBases& m_Bases;
    const Tell& m_Tell;
    std::set<uint32_t> m_Addresses, m_Tables;
    std::vector<Identity> m_Found;
    std::vector<uint32_t> m_Silent;
    TraceHardware m_Hardware;
};

} // namespace

TraceHardware Discover(RegisterBus& bus, const KnownBases& bases, const Tell& tell) {
    return Search(bus, bases, tell).Run();
}

TraceHardware HardwareOf(const Chip& chip, RegisterBus& bus) {
    using Kind = ChipComponent::Kind;
    TraceHardware hardware;
    if (chip.romTable) {
        KnownBases bases;
        bases.romTable = chip.romTable;
        hardware = Discover(bus, bases, [](const std::string&) {});
    } else {
        hardware.etmBase = chip.Find(Kind::Etm)->address;
        const auto read = [&](uint32_t number) { return bus.Read(hardware.Etm(number)); };
        hardware.ids = {read(ETMCCR), read(ETMSCR), read(ETMIDR), read(ETMCCER)};
        hardware.etm = DecodeResources(hardware.ids);
        if (const ChipComponent* etb = chip.Find(Kind::Etb)) {
            hardware.etbBase = etb->address;
            hardware.capacity = etb->words;
        }
    }
    hardware.name = chip.name;
    hardware.description = chip.description;
    hardware.info = chip.info;
    hardware.sink = chip.sink;
    if (!chip.portSizes.empty()) hardware.portSizes = PortSizeMask(chip.portSizes);
    if (chip.sink == SinkKind::Emulator) hardware.capacity = chip.emulatorWords;
    return hardware;
}

} // namespace etmhost
