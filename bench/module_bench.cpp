// How fast the built library shows its dialog, off-screen.

#include <benchmark/benchmark.h>
#include <dlfcn.h>

#include <QApplication>
#include <QTimer>
#include <QWidget>
#include <chrono>
#include <cstdlib>

#include "bench/require.h"
#include "frame/interfaces/IOrnAPIBase.h"
#include "testkit/RecordingHost.h"

namespace {

using Clock = std::chrono::steady_clock;

double SecondsSince(Clock::time_point start) {
    return std::chrono::duration<double>(Clock::now() - start).count();
}

IOrnAPIBase* Load() {
    void* library = dlopen(MODULE_PATH, RTLD_NOW | RTLD_LOCAL);
    Require(library != nullptr, dlerror());
    const auto entry = reinterpret_cast<IOrnAPIBase* (*)()>(dlsym(library, "OrnDLL"));
    Require(entry != nullptr, "there is no OrnDLL");
    return entry();
}

/// Notes when the sheet is first painted, and closes it then.
class FirstPaint : public QObject {
public:
    bool eventFilter(QObject* object, QEvent* event) override {
        auto* widget = qobject_cast<QWidget*>(object);
        if (event->type() == QEvent::Paint && !seen && widget != nullptr &&
            widget->window()->windowTitle() == "ETM Control") {
            seen = true;
            seconds = SecondsSince(start);
            QWidget* window = widget->window();
            QTimer::singleShot(0, window, [window] { window->close(); });
        }
        return false;
    }
    Clock::time_point start;
    double seconds = 0;
    bool seen = false;
};

void OpenToFirstPaint(benchmark::State& state) {
    RecordingHost host;
    IOrnAPIBase* module = Load();
    auto* control = static_cast<IOrnKVETMCtrl*>(module->CreateRowObject(0));
    host.Attach(*control);
    Require(control->Init(0), "Init fails");
    FirstPaint watch;
    qApp->installEventFilter(&watch);
    for (auto _ : state) {
        watch.seen = false;
        watch.start = Clock::now();
        Require(control->Open() && watch.seen, "the sheet was not painted");
        state.SetIterationTime(watch.seconds);
        host.calls.clear();
    }
    module->DestroyRowObject(0, control);
}

BENCHMARK(OpenToFirstPaint)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(50);

} // namespace

int main(int argc, char** argv) {
    setenv("QT_QPA_PLATFORM", "offscreen", 0);
    setenv("QT_LOGGING_RULES", "default.warning=false", 0);
    QApplication application(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
