// Any bytes as the description of a chip: it is refused in words, or there is a chip to work with.

#include <sstream>

#include "fuzz/target.h"
#include "host/support/host_error.h"
#include "host/target/command.h"
#include "host/target/report.h"

using namespace etmhost;

namespace {

void WorkWith(const Chip& chip) {
    static const Symbols symbols;
    Target target(chip, symbols);
    CommandLanguage language(target, symbols);
    for (const char* command :
         {"enable", "dwt 0=0x8000", "etm pc=start 0", "etm pc=from 0x10", "etm pc=to 0x20",
          "etm data=all", "etm trigger 5", "etm portsize=4", "etm halfrate=on", "start",
          "trigger force", "capability", "macro /startup"}) {
        std::ostringstream stream;
        language.Execute(command, &stream);
        target.Poll();
        Require(target.state.capture.captured <= target.hardware().capacity);
    }
    target.SettingsLines();
    target.Look();
    CapabilityReport(target.etm());
}

} // namespace

static void HostChip(const uint8_t* data, size_t size) {
    try {
        for (const Chip& chip : ParseChips({reinterpret_cast<const char*>(data), size})) {
            Require(!chip.name.empty() && chip.Find(ChipComponent::Kind::Etm) != nullptr);
            WorkWith(chip);
        }
    } catch (const HostError& error) {
        Require(*error.what() != '\0');
    } catch (const BusError&) { // as a real chip of that kind would have it
    }
}

static const FuzzTarget kHostChip("fuzz_host_chip", HostChip);
