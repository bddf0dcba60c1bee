// How fast the text and the settings are. Compare ratios within one run: 10, 1,000
// and 100,000 lines should differ by factors of 100, and reading the catalogue
// should stay within twice the plain loop beside it.

#include <benchmark/benchmark.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <sstream>

#include "board/jConfigureETM.h"
#include "frame/slots.h"
#include "settings/ReadCapabilities.h"
#include "settings/jTraceSettings.h"
#include "testkit/RecordingHost.h"
#include "testkit/SilentTrace.h"
#include "testkit/TemporaryDirectory.h"
#include "text/TxtScan.h"

namespace {

/// Ends the run if what is about to be measured does not work.
void Require(bool holds, const char* what) {
    if (holds) return;
    std::fprintf(stderr, "bench: %s\n", what);
    std::exit(1);
}

const char* const kLines[] = {
    "ETM PC = from 0x20001000",
    "ETM PC = to main + 0x40",
    "ETM DATA = all",
    "ETM DATA = from 'ABCD' - 4k",
    "ETM TRIGGER start_of_program+8",
    "ETM PORTSIZE = 16",
    "ETM HALFRATE = on // default",
    "BUFFER = 4096 lines, 1.5e3 \"units\"",
};

void Tokenizer(benchmark::State& state) {
    std::string text;
    while (text.size() < 64 * 1024)
        for (const char* line : kLines) (text += line) += '\n';
    TxtScan scan(text.c_str(), -1);
    int tokens = 0;
    while (scan.GetToken() != TK_END) {
        Require(scan.Kind != TK_ERROR, "the tokenizer fails on typical lines");
        ++tokens;
    }
    Require(tokens > 1000, "the tokenizer stops early");
    for (auto _ : state) {
        scan.Init(text.c_str(), -1);
        while (scan.GetToken() != TK_END) benchmark::DoNotOptimize(scan.Kind);
    }
    state.SetBytesProcessed(state.iterations() * static_cast<int64_t>(text.size()));
}
BENCHMARK(Tokenizer);

/// A target with many settings lines.
struct ManyLines final : SilentTrace {
    ManyLines() { report = RecordingHost::kReport; }
    const char* GetSettingsLine(uint32_t index) override {
        return index < lines ? kLines[index % std::size(kLines)] : nullptr;
    }
    uint32_t lines = 0;
};

void FullRead(benchmark::State& state) {
    ManyLines trace;
    trace.lines = static_cast<uint32_t>(state.range(0));
    g_VETMTrace = &trace;
    jTraceSettings settings;
    Require(settings.ReadFromTarget() && settings.Working.PcMode == 4, "a full read fails");
    for (auto _ : state) benchmark::DoNotOptimize(settings.ReadFromTarget());
    g_VETMTrace = nullptr;
    state.SetItemsProcessed(state.iterations() * state.range(0));
    state.SetComplexityN(state.range(0));
}
BENCHMARK(FullRead)->Arg(10)->Arg(1000)->Arg(100000)->Complexity(benchmark::oN);

void CapabilityScan(benchmark::State& state) {
    ManyLines trace;
    g_VETMTrace = &trace;
    jTraceState image;
    ReadCapabilities(image);
    Require(image.AddressComparatorPairs == 4, "the report is not understood");
    for (auto _ : state) ReadCapabilities(image);
    g_VETMTrace = nullptr;
}
BENCHMARK(CapabilityScan);

void ApplyEverything(benchmark::State& state) {
    RecordingHost host;
    g_VETMTrace = &host.trace;
    g_XTraceClient = &host.xTraceClient;
    jTraceSettings settings;
    Require(settings.ReadFromTarget(), "the read fails");
    const jTraceState before = settings.Snapshot;
    jTraceState wanted = before;
    wanted.Enable = 1;
    wanted.StopMode = 2;
    wanted.TriggerOnAddress = 1;
    wanted.TriggerPosition = 10;
    wanted.PortSizeIndex = 2;
    wanted.PcMode = 4;
    wanted.DataMode = 7;
    wanted.BoardFile = "/opt/board.mac";
    for (std::string* address : {&wanted.PcBegin, &wanted.PcEnd, &wanted.DataBegin, &wanted.DataEnd,
                                 &wanted.TriggerAddress})
        *address = "main + 0x10";
    settings.Working = wanted;
    host.TakeCalls();
    Require(settings.ApplyToTarget() && host.TakeCalls().size() == 13, "an apply sends less");
    for (auto _ : state) {
        settings.Snapshot = before;
        settings.Working = wanted;
        benchmark::DoNotOptimize(settings.ApplyToTarget());
        host.calls.clear();
    }
    g_VETMTrace = nullptr;
    g_XTraceClient = nullptr;
}
BENCHMARK(ApplyEverything);

// --- Board files -------------------------------------------------------------------

/// A board directory with many files.
class BoardDirectory {
public:
    explicit BoardDirectory(int64_t files) {
        for (int64_t i = 0; i < files; ++i)
            std::ofstream(m_Directory.Path() + "/board" + std::to_string(i) + ".mac")
                << ";[OrnithalWorksTraceInitFile]\r\n;Title=Board " << i
                << "\r\n\r\nmem_init 1\r\n";
    }
    std::string Path() const { return m_Directory.Path(); }

private:
    TemporaryDirectory m_Directory;
};

void ScanBoardFiles(benchmark::State& state) {
    const BoardDirectory directory(state.range(0));
    jTraceSettings settings;
    g_Settings = &settings;
    settings.SetTextAttribute(TA_BOARD_DIRECTORY, directory.Path().c_str());
    for (auto _ : state) {
        jConfigureETM dialog(nullptr);
        dialog.ScanBoardFiles();
        settings.Working.BoardFile = directory.Path() + "/board0.mac";
        Require(dialog.SelectionFromBoardFile() >= 0, "the catalogue is empty");
    }
    g_Settings = nullptr;
    state.SetComplexityN(state.range(0));
}
BENCHMARK(ScanBoardFiles)->Arg(100)->Arg(1000)->Arg(10000)->Complexity(benchmark::oN);

void PlainLoopOverBoardFiles(benchmark::State& state) {
    const BoardDirectory directory(state.range(0));
    for (auto _ : state) {
        char line[256];
        int read = 0;
        for (const auto& entry : std::filesystem::directory_iterator(directory.Path())) {
            std::FILE* file = std::fopen(entry.path().c_str(), "rb");
            if (file != nullptr && std::fgets(line, sizeof line, file) != nullptr) ++read;
            if (file != nullptr) std::fclose(file);
        }
        Require(read == state.range(0), "the plain loop misses files");
    }
    state.SetComplexityN(state.range(0));
}
BENCHMARK(PlainLoopOverBoardFiles)->Arg(100)->Arg(1000)->Arg(10000)->Complexity(benchmark::oN);

} // namespace
