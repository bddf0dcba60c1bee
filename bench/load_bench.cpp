// What it costs a host to load the built library and to ask it for its module object,
// without a window. Each load happens in a fresh process, which stays as small as it can.

#include <benchmark/benchmark.h>
#include <dlfcn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstring>
#include <fstream>

#include "bench/require.h"

namespace {

/// What a child measures, and writes to its standard output.
struct Cost {
    double seconds;   // of dlopen, OrnDLL and dlclose
    int64_t resident; // bytes, before dlclose
};

int64_t ResidentBytes() {
    int64_t size = 0, resident = 0;
    std::ifstream("/proc/self/statm") >> size >> resident;
    return resident * sysconf(_SC_PAGESIZE);
}

void LoadInThisProcess(const char* path) {
    using Clock = std::chrono::steady_clock;
    const int64_t before = ResidentBytes();
    const Clock::time_point start = Clock::now();
    void* const library = dlopen(path, RTLD_NOW | RTLD_LOCAL);
    Require(library != nullptr, "the library does not load");
    const auto entry = reinterpret_cast<void* (*)()>(dlsym(library, "OrnDLL"));
    Require(entry != nullptr, "there is no OrnDLL");
    benchmark::DoNotOptimize(entry());
    const Clock::time_point loaded = Clock::now();
    Cost cost{0, ResidentBytes() - before};
    const Clock::time_point measured = Clock::now();
    dlclose(library);
    cost.seconds =
        std::chrono::duration<double>(loaded - start + (Clock::now() - measured)).count();
    Require(write(STDOUT_FILENO, &cost, sizeof cost) == sizeof cost, "nobody listens");
}

Cost LoadInAFreshProcess(const char* path) {
    int ends[2];
    Require(pipe(ends) == 0, "no pipe");
    const pid_t child = fork();
    if (child == 0) {
        dup2(ends[1], STDOUT_FILENO);
        close(ends[0]);
        close(ends[1]);
        execl("/proc/self/exe", "load_bench", "--load", path, nullptr);
        _exit(1);
    }
    close(ends[1]);
    Cost cost{};
    Require(read(ends[0], &cost, sizeof cost) == sizeof cost, "the child failed");
    close(ends[0]);
    int status = 1;
    Require(waitpid(child, &status, 0) == child && status == 0, "the child failed");
    return cost;
}

void Load(benchmark::State& state, const char* path) {
    int64_t resident = 0;
    for (auto _ : state) {
        const Cost cost = LoadInAFreshProcess(path);
        state.SetIterationTime(cost.seconds);
        resident += cost.resident;
    }
    state.counters["resident"] =
        benchmark::Counter(static_cast<double>(resident), benchmark::Counter::kAvgIterations);
}

BENCHMARK_CAPTURE(Load, module, MODULE_PATH)
    ->Name("LoadModule")
    ->UseManualTime()
    ->Unit(benchmark::kMicrosecond)
    ->Iterations(50);
BENCHMARK_CAPTURE(Load, empty, EMPTY_PATH)
    ->Name("LoadModulePeer")
    ->UseManualTime()
    ->Unit(benchmark::kMicrosecond)
    ->Iterations(50);

} // namespace

int main(int argc, char** argv) {
    if (argc == 3 && std::strcmp(argv[1], "--load") == 0) {
        LoadInThisProcess(argv[2]);
        return 0;
    }
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
