#include "host/support/host_error.h"
#include "host/target/symbols.h"

namespace etmhost {

Symbols ReadSymbols(const std::filesystem::path&) {
    throw HostError("--symbols: this build of etmhost was made without libelf");
}

} // namespace etmhost
