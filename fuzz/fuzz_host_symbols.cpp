// Any bytes as the ELF file that addresses take their symbols from.

#include <sys/mman.h>
#include <unistd.h>

#include "fuzz/target.h"
#include "host/support/host_error.h"
#include "host/target/symbols.h"

using namespace etmhost;

static void HostSymbols(const uint8_t* data, size_t size) {
    static const int file = memfd_create("symbols", 0);
    Require(ftruncate(file, 0) == 0);
    Require(pwrite(file, data, size, 0) == static_cast<ssize_t>(size));
    try {
        for (const auto& [name, address] : ReadSymbols("/proc/self/fd/" + std::to_string(file)))
            Require(!name.empty() && name[0] != '$');
    } catch (const HostError&) {
    }
}

static const FuzzTarget kHostSymbols("fuzz_host_symbols", HostSymbols);
