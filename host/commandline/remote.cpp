#include "host/commandline/remote.h"

#include <atomic>
#include <csignal>
#include <ostream>

#include "host/remote/RemoteAddress.h"
#include "host/serve/serve.h"
#include "host/support/host_error.h"
#include "host/support/words.h"
#include "host/target/OverlayBus.h"

namespace etmhost {

namespace {

KnownBases ParseBases(const std::vector<std::string>& texts) {
    KnownBases bases;
    for (const std::string& text : texts) {
        const size_t equals = std::min(text.find('='), text.size());
        const std::string name = text.substr(0, equals);
        std::optional<uint32_t>* const base = EqualNoCase(name, "rom")    ? &bases.romTable
                                              : EqualNoCase(name, "etm")  ? &bases.etm
                                              : EqualNoCase(name, "tpiu") ? &bases.tpiu
                                              : EqualNoCase(name, "etb")  ? &bases.etb
                                              : EqualNoCase(name, "dwt")  ? &bases.dwt
                                                                          : nullptr;
        if (base == nullptr || equals == text.size()) {
            throw HostError("--base " + text +
                            ": \"rom\", \"etm\", \"tpiu\", \"etb\" or \"dwt\" is expected, with "
                            "\"=ADDRESS\" behind it");
        }
        const Evaluation address = Evaluate(text.substr(equals + 1), {});
        if (!address.error.empty() || address.value % 0x1000 != 0)
            throw HostError("--base " + text + ": the address of a page of 4 KB is expected");
        if (*base) throw HostError("--base " + text + ": \"" + name + "\" is given twice");
        *base = address.value;
    }
    return bases;
}

std::atomic<bool> g_Stop = false;

extern "C" void StopServing(int) {
    g_Stop = true;
}

} // namespace

std::unique_ptr<SimulatedHost> MakeRemoteHost(const std::string& text,
                                              const std::vector<std::string>& bases,
                                              Symbols symbols, record::EventStream& events,
                                              bool dryRun, std::ostream& told) {
    const RemoteAddress address = ParseRemoteAddress(text);
    const KnownBases known = ParseBases(bases);
    std::unique_ptr<RegisterBus> bus = Connect(address, told);
    OverlayBus* overlay = nullptr;
    if (dryRun) {
        auto over = std::make_unique<OverlayBus>(std::move(bus));
        overlay = over.get();
        bus = std::move(over);
    }
    try {
        const Tell tell = [&events, dryRun](const std::string& text) {
            events.Note((dryRun ? "dry run: " : "") + text);
        };
        TraceHardware hardware = Discover(*bus, known, tell);
        hardware.name = address.Text();
        if (overlay != nullptr) overlay->Know(hardware);
        overlay = nullptr; // the host's from here on
        return std::make_unique<SimulatedHost>(std::move(bus), hardware, std::move(symbols), events,
                                               tell);
    } catch (const BusError& error) {
        // Nothing but the power of trace is written on the way here.
        throw HostError(address.Text() + ": " + error.what() +
                        (overlay != nullptr && overlay->HasWrites()
                             ? "; a dry run does not switch trace power on, \"etmhost show\" does"
                             : ""));
    }
}

Status ServeChip(SimulatedHost& host, const Chip& chip, uint16_t port, bool once,
                 std::ostream& out) {
    const ChipComponent* core = chip.Find(ChipComponent::Kind::Scs);
    if (!chip.romTable || core == nullptr) {
        throw HostError("the ETM of " + chip.name +
                        " is reached by a scan chain, not by memory; \"etmhost chips\" lists the "
                        "chips, those of the Cortex-M family can be served");
    }
    SimulatedChip registers(chip, host.target.state.registers);
    const ServedChip served{
        .registers = registers,
        .core = core->part == kCortexM4.scsPart ? kCortexM4 : kCortexM3,
        .romTable = *chip.romTable,
        .changed = [&host] { host.transaction([] {}); },
    };
    try {
        Listener listener(port);
        std::signal(SIGINT, StopServing);
        std::signal(SIGTERM, StopServing);
        out << "listening on port " << listener.port() << std::endl;
        Serve(served, listener, once, g_Stop);
    } catch (const ConnectionLost& error) {
        throw HostError("serve: " + std::string(error.what()));
    }
    return kDone;
}

} // namespace etmhost
