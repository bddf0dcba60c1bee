// Any bytes as a state file: it is refused and stays as it is, or it is read, kept and written.

#include <unistd.h>

#include <fstream>
#include <iterator>

#include "fuzz/target.h"
#include "host/commandline/state_file.h"
#include "host/support/host_error.h"

using namespace etmhost;

namespace {

/// The file of this process. It goes with the process.
struct StateUnderTest {
    StateUnderTest()
        : path(std::filesystem::temp_directory_path() /
               ("fuzz_host_state-" + std::to_string(getpid()))) {}
    ~StateUnderTest() {
        std::error_code ignored;
        std::filesystem::remove(path, ignored);
    }

    std::string Read() const {
        std::ifstream in(path, std::ios::binary);
        return {std::istreambuf_iterator<char>(in), {}};
    }

    const std::filesystem::path path;
};

} // namespace

static void HostState(const uint8_t* data, size_t size) {
    static const StateUnderTest file;
    const std::string content(reinterpret_cast<const char*>(data), size);
    std::ofstream(file.path, std::ios::binary) << content;
    SimulatedHost host(*FindChip("arm926"));
    try {
        StateFile state(file.path);
        state.Load(host);
        state.Update(host, [&host] { host.target.state.triggerCount ^= 1; });
    } catch (const HostError&) {
        Require(file.Read() == content);
        return;
    }
    SimulatedHost again(*FindChip("arm926"));
    StateFile(file.path).Load(again);
    Require(again.target.state == host.target.state && again.settings == host.settings);
}

static const FuzzTarget kHostState("fuzz_host_state", HostState);
