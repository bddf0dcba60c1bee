// How fast the text and the settings are. Compare ratios within one run: 10, 1,000
// and 100,000 lines should differ by factors of 100. What ends in "Peer" does plainly what the
// benchmark of that name without the "Peer" does; bench/run tells how far they may differ.

#include <benchmark/benchmark.h>

#include <dirent.h>
#include <fcntl.h>
#include <unistd.h>

#include <cstring>
#include <fstream>
#include <sstream>

#include "bench/PeerScanner.h"
#include "bench/require.h"
#include "board/jConfigureETM.h"
#include "frame/slots.h"
#include "settings/ReadCapabilities.h"
#include "settings/jTraceSettings.h"
#include "testkit/RecordingHost.h"
#include "testkit/SilentTrace.h"
#include "testkit/TemporaryDirectory.h"
#include "text/TxtScan.h"

namespace {

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

/// A text of 64 KiB, in pieces: as one of them, or as its lines.
std::vector<std::string> Texts(bool inLines) {
    std::vector<std::string> texts(1);
    for (size_t size = 0; size < 64 * 1024;) {
        for (const char* line : kLines) {
            size += std::strlen(line) + 1;
            if (inLines)
                texts.push_back(line);
            else
                (texts[0] += line) += '\n';
        }
    }
    return texts;
}

/// What a scanner makes of the texts, as one text.
template <class Scanner, class Begin>
std::string Dump(const std::vector<std::string>& texts, Scanner& scan, Begin begin) {
    std::ostringstream dump;
    for (const std::string& text : texts) {
        begin(text);
        while (scan.GetToken() != TK_END) {
            Require(scan.Kind != TK_ERROR, "a scanner fails on typical lines");
            dump << scan.Kind << ':' << scan.Text << ' ' << scan.Line << '.' << scan.Column;
            if (scan.Kind == TK_FLOAT) dump << '=' << scan.Value.Float;
            if (scan.Kind == TK_DECIMAL || scan.Kind == TK_INTEGER)
                dump << '=' << scan.Value.Integer;
        }
    }
    return std::move(dump).str();
}

template <class Scanner, class Begin>
void ScanAll(benchmark::State& state, Scanner& scan, Begin begin) {
    const std::vector<std::string> texts = Texts(state.range(0) != 0);
    TxtScan ours(nullptr, -1);
    Require(Dump(texts, scan, begin) ==
                Dump(texts, ours, [&](const std::string& text) { ours.Init(text.c_str(), -1); }),
            "the scanners differ");
    for (auto _ : state) {
        for (const std::string& text : texts) {
            begin(text);
            while (scan.GetToken() != TK_END) benchmark::DoNotOptimize(scan.Kind);
        }
    }
    state.SetBytesProcessed(state.iterations() * 64 * 1024);
}

void Tokenizer(benchmark::State& state) {
    TxtScan scan(nullptr, -1);
    ScanAll(state, scan, [&](const std::string& text) { scan.Init(text.c_str(), -1); });
}
BENCHMARK(Tokenizer)->ArgName("lines")->Arg(0)->Arg(1);

void TokenizerPeer(benchmark::State& state) {
    PeerScanner scan;
    ScanAll(state, scan, [&](const std::string& text) { scan.Init(text.c_str()); });
}
BENCHMARK(TokenizerPeer)->ArgName("lines")->Arg(0)->Arg(1);

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
    Require(settings.ReadFromTarget() && settings.Working.PcMode == PC_RANGE, "a full read fails");
    for (auto _ : state) benchmark::DoNotOptimize(settings.ReadFromTarget());
    g_VETMTrace = nullptr;
    state.SetItemsProcessed(state.iterations() * state.range(0));
    state.SetComplexityN(state.range(0));
}
BENCHMARK(FullRead)->Arg(10)->Arg(1000)->Arg(100000)->Complexity(benchmark::oN);

/// The usual report, alone or behind other lines, of so many bytes at least.
std::string Report(int64_t size) {
    std::string report;
    while (report.size() + 500 < static_cast<size_t>(size))
        report +=
            "Register 0x" + std::to_string(report.size()) + ": 00000000 Reserved, reads as zero\n";
    return report + RecordingHost::kReport;
}

void CapabilityScan(benchmark::State& state) {
    ManyLines trace;
    trace.report = Report(state.range(0));
    g_VETMTrace = &trace;
    jTraceState image;
    ReadCapabilities(image);
    Require(image.AddressComparatorPairs == 4, "the report is not understood");
    for (auto _ : state) ReadCapabilities(image);
    g_VETMTrace = nullptr;
}
BENCHMARK(CapabilityScan)->Arg(450)->Arg(1 << 20);

void CapabilityScanPeer(benchmark::State& state) {
    const std::string report = Report(state.range(0));
    std::vector<std::string> labels;
    std::istringstream lines(RecordingHost::kReport);
    for (std::string line; std::getline(lines, line);)
        labels.push_back(line.substr(0, line.find(':')));
    Require(labels.size() == 15, "a report has fifteen labels");
    for (auto _ : state)
        for (const std::string& label : labels)
            benchmark::DoNotOptimize(std::strstr(report.c_str(), label.c_str()));
}
BENCHMARK(CapabilityScanPeer)->Arg(450)->Arg(1 << 20);

void ApplyEverything(benchmark::State& state) {
    RecordingHost host;
    g_VETMTrace = &host.trace;
    g_XTraceClient = &host.xTraceClient;
    jTraceSettings settings;
    Require(settings.ReadFromTarget(), "the read fails");
    const jTraceState before = settings.Snapshot;
    jTraceState wanted = before;
    wanted.Enable = 1;
    wanted.StopMode = STOP_AFTER_TRIGGER;
    wanted.TriggerOnAddress = 1;
    wanted.TriggerPosition = 10;
    wanted.PortSizeIndex = 2;
    wanted.PcMode = PC_RANGE;
    wanted.DataMode = DATA_KINDS | DATA_IN_RANGE;
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

void ScanBoardFilesPeer(benchmark::State& state) {
    const BoardDirectory directory(state.range(0));
    for (auto _ : state) {
        char block[512];
        int marked = 0;
        DIR* const entries = opendir(directory.Path().c_str());
        while (const dirent* const entry = readdir(entries)) {
            const int file = openat(dirfd(entries), entry->d_name, O_RDONLY);
            if (file < 0) continue;
            if (read(file, block, sizeof block) > 0 && block[0] == ';') ++marked;
            close(file);
        }
        closedir(entries);
        Require(marked == state.range(0), "the plain loop misses files");
    }
    state.SetComplexityN(state.range(0));
}
BENCHMARK(ScanBoardFilesPeer)->Arg(100)->Arg(1000)->Arg(10000)->Complexity(benchmark::oN);

} // namespace
