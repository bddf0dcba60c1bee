#include "host/target/etm_programming.h"

#include <chrono>
#include <thread>

#include "host/support/words.h"
#include "host/target/etm_registers.h"

namespace etmhost {

namespace {

using Clock = std::chrono::steady_clock;
constexpr std::chrono::milliseconds kBitPatience(500);
constexpr std::chrono::milliseconds kPause(2);

std::string RegisterName(uint32_t number) {
    switch (number) {
    case ETMCR:
        return "ETMCR";
    case ETMTRIGGER:
        return "ETMTRIGGER";
    case ETMTSSCR:
        return "ETMTSSCR";
    case ETMTECR2:
        return "ETMTECR2";
    case ETMTEEVR:
        return "ETMTEEVR";
    case ETMTECR1:
        return "ETMTECR1";
    case ETMVDEVR:
        return "ETMVDEVR";
    case ETMVDCR1:
        return "ETMVDCR1";
    case ETMVDCR2:
        return "ETMVDCR2";
    case ETMVDCR3:
        return "ETMVDCR3";
    case ETMTESSEICR:
        return "ETMTESSEICR";
    case ETMTRACEIDR:
        return "ETMTRACEIDR";
    default:
        if (number >= ETMACVR && number < ETMACVR + 16)
            return "ETMACVR" + std::to_string(number - ETMACVR + 1);
        if (number >= ETMACTR && number < ETMACTR + 16)
            return "ETMACTR" + std::to_string(number - ETMACTR + 1);
        return "ETM register " + Hex(number);
    }
}

// On the way back each step is tried, whatever became of the others: it is the first failure that
// is told.
void WriteIfTaken(RegisterBus& bus, uint32_t address, uint32_t value) {
    try {
        bus.Write(address, value);
    } catch (const BusError&) { // NOLINT(bugprone-empty-catch)
    }
}

// One stay in programming mode. Its end, whichever way, leaves the mode.
class Session {
public:
    Session(RegisterBus& bus, const TraceHardware& hardware) : m_Bus(bus), m_Hardware(hardware) {}

    void Run(const std::vector<EtmWrite>& writes) {
        std::vector<uint32_t> numbers = {ETMCR};
        for (const EtmWrite& write : writes) numbers.push_back(write.number);
        m_Before = ReadEtm(m_Bus, m_Hardware, numbers);
        const EtmImage after = WithWrites(m_Before, writes);
        if (after == m_Before && (m_Before.at(ETMCR) & ETMCR_PROGRAMMING) == 0) return;
        try {
            Enter();
            Write(after);
            Check(writes, after);
            Leave(after.at(ETMCR) & ~ETMCR_PROGRAMMING);
        } catch (const BusLost&) {
            throw; // nobody listens any more
        } catch (const BusError& error) {
            Restore();
            throw BusError(error.what() + SystemLock());
        }
    }

private:
    uint32_t Control() const { return m_Hardware.Etm(ETMCR); }

    void Enter() {
        uint32_t control = m_Before.at(ETMCR);
        if ((control & ETMCR_POWER_DOWN) != 0) { // or it may ignore all the rest
            control &= ~ETMCR_POWER_DOWN;
            m_Bus.Write(Control(), control);
        }
        control |= ETMCR_PROGRAMMING;
        m_Bus.Write(Control(), control);
        AwaitMode(ETMSR_PROGRAMMING, "never entered programming mode");
        m_Control = m_Bus.Read(Control());
        if (((m_Control ^ control) & (ETMCR_PROGRAMMING | ETMCR_POWER_DOWN)) != 0)
            throw Differs("ETMCR", Control(), control, m_Control);
    }

    void AwaitMode(uint32_t wanted, const char* failure) {
        const uint32_t address = m_Hardware.Etm(ETMSR);
        const uint32_t status = Await(m_Bus, address, ETMSR_PROGRAMMING, wanted);
        if ((status & ETMSR_PROGRAMMING) != wanted) {
            throw BusError(std::string("the ETM ") + failure + ": ETMSR (" + Hex(address) +
                           ") reads " + Hex(status));
        }
    }

    void Write(const EtmImage& after) {
        for (const auto& [number, value] : after) {
            if (number == ETMCR || value == m_Before.at(number)) continue;
            m_Written.push_back(number);
            m_Bus.Write(m_Hardware.Etm(number), value);
        }
        // Power stays on until programming mode has been left.
        const uint32_t control = (after.at(ETMCR) & ~ETMCR_POWER_DOWN) | ETMCR_PROGRAMMING;
        if (control != m_Control) m_Bus.Write(Control(), control);
    }

    void Check(const std::vector<EtmWrite>& writes, const EtmImage& after) {
        std::vector<uint32_t> numbers;
        for (const EtmWrite& write : writes) numbers.push_back(write.number);
        const EtmImage now = ReadEtm(m_Bus, m_Hardware, numbers);
        for (const EtmWrite& write : writes) {
            uint32_t mask = write.mask;
            if (write.number == ETMCR) mask &= ~(ETMCR_PROGRAMMING | ETMCR_POWER_DOWN);
            const uint32_t wanted = after.at(write.number);
            if (const uint32_t read = now.at(write.number); ((read ^ wanted) & mask) != 0) {
                throw Differs(RegisterName(write.number), m_Hardware.Etm(write.number), wanted,
                              read);
            }
        }
    }

    // Leaves programming mode, and ends with `control`.
    void Leave(uint32_t control) {
        m_Bus.Write(Control(), control & ~ETMCR_POWER_DOWN);
        AwaitMode(0, "never left programming mode");
        if ((control & ETMCR_POWER_DOWN) != 0)
            WriteChecked(m_Bus, "ETMCR", Control(), control, ETMCR_POWER_DOWN);
    }

    void Restore() {
        const uint32_t before = m_Before.at(ETMCR);
        const uint32_t powered = before & ~ETMCR_POWER_DOWN;
        // The way back leads through programming mode too, and it may have been left.
        uint32_t present = powered;
        try {
            present = m_Bus.Read(Control());
        } catch (const BusError&) { // NOLINT(bugprone-empty-catch): then it is taken as it was
        }
        TryWrite(ETMCR, present & ~ETMCR_POWER_DOWN);
        TryWrite(ETMCR, present | ETMCR_PROGRAMMING);
        TryAwaitMode(ETMSR_PROGRAMMING);
        for (auto number = m_Written.rbegin(); number != m_Written.rend(); ++number)
            TryWrite(*number, m_Before.at(*number));
        TryWrite(ETMCR, powered | ETMCR_PROGRAMMING);
        TryWrite(ETMCR, powered);
        if (before == powered) return;
        TryAwaitMode((powered & ETMCR_PROGRAMMING) != 0 ? ETMSR_PROGRAMMING : 0);
        TryWrite(ETMCR, before);
    }

    void TryWrite(uint32_t number, uint32_t value) {
        WriteIfTaken(m_Bus, m_Hardware.Etm(number), value);
    }

    void TryAwaitMode(uint32_t wanted) {
        try {
            Await(m_Bus, m_Hardware.Etm(ETMSR), ETMSR_PROGRAMMING, wanted);
        } catch (const BusError&) { // NOLINT(bugprone-empty-catch)
        }
    }

    // Why an ETM of a version that knows such a lock may ignore what it is told.
    std::string SystemLock() {
        if (!m_Hardware.etm.IsAtLeast(3, 3)) return {};
        try {
            const uint32_t status = m_Bus.Read(m_Hardware.Etm(ETMPDSR));
            if ((status & ETMPDSR_OS_LOCKED) == 0) return {};
            return "; an operating system has locked the trace registers, ETMPDSR (" +
                   Hex(m_Hardware.Etm(ETMPDSR)) + ") reads " + Hex(status);
        } catch (const BusError&) {
            return {};
        }
    }

    static BusError Differs(const std::string& name, uint32_t address, uint32_t written,
                            uint32_t read) {
        return BusError("the chip does not take what is written: " + name + " (" + Hex(address) +
                        "): " + Hex(written) + " was written, " + Hex(read) + " read");
    }

    RegisterBus& m_Bus;
    const TraceHardware& m_Hardware;
    EtmImage m_Before;
    uint32_t m_Control = 0; // ETMCR in programming mode
    std::vector<uint32_t> m_Written;
};

} // namespace

uint32_t Await(RegisterBus& bus, uint32_t address, uint32_t mask, uint32_t value) {
    const auto limit = Clock::now() + kBitPatience;
    for (;;) {
        const uint32_t word = bus.Read(address);
        if ((word & mask) == value || Clock::now() >= limit) return word;
        std::this_thread::sleep_for(kPause);
    }
}

void Unlock(RegisterBus& bus, uint32_t base, const char* name) {
    constexpr uint32_t kClosed = CS_LSR_IMPLEMENTED | CS_LSR_LOCKED;
    if ((bus.Read(base + CS_LSR) & kClosed) != kClosed) return;
    bus.Write(base + CS_LAR, CS_UNLOCK);
    const uint32_t status = bus.Read(base + CS_LSR);
    if ((status & kClosed) == kClosed) {
        throw BusError("the " + std::string(name) + " stays locked: " + Hex(CS_UNLOCK) +
                       " was written to its lock access register (" + Hex(base + CS_LAR) +
                       "), its lock status register (" + Hex(base + CS_LSR) + ") reads " +
                       Hex(status));
    }
}

void WriteChecked(RegisterBus& bus, const char* name, uint32_t address, uint32_t value,
                  uint32_t mask) {
    bus.Write(address, value);
    const uint32_t read = bus.Read(address);
    if (((read ^ value) & mask) != 0) {
        throw BusError("the chip does not take what is written: " + std::string(name) + " (" +
                       Hex(address) + "): " + Hex(value) + " was written, " + Hex(read) + " read");
    }
}

void OrRestore(RegisterBus& bus, const std::vector<std::pair<uint32_t, uint32_t>>& before,
               const std::function<void()>& work) {
    try {
        work();
    } catch (const BusLost&) {
        throw;
    } catch (const BusError&) {
        for (const auto& [address, value] : before) WriteIfTaken(bus, address, value);
        throw;
    }
}

EtmImage ReadEtm(RegisterBus& bus, const TraceHardware& hardware,
                 const std::vector<uint32_t>& numbers) {
    std::vector<uint32_t> addresses;
    addresses.reserve(numbers.size());
    for (const uint32_t number : numbers) addresses.push_back(hardware.Etm(number));
    const std::vector<uint32_t> words = bus.Read(addresses);
    EtmImage image;
    for (size_t i = 0; i < numbers.size(); ++i) image[numbers[i]] = words[i];
    return image;
}

void ProgramEtm(RegisterBus& bus, const TraceHardware& hardware,
                const std::vector<EtmWrite>& writes) {
    Unlock(bus, hardware.etmBase, "ETM");
    Session(bus, hardware).Run(writes);
}

} // namespace etmhost
