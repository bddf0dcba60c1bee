#include "host/host_error.h"
#include "host/symbols.h"

namespace etmhost {

Symbols ReadSymbols(const std::filesystem::path&) {
    throw HostError("--symbols: this build of etmhost was made without libelf");
}

} // namespace etmhost
