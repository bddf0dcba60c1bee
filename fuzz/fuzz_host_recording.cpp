// Any bytes as a recording: it is refused by its line, or the module is led through it.

#include "fuzz/target.h"
#include "host/replay/Replay.h"
#include "host/support/host_error.h"
#include "toolkit/CWinApp.h"
#include "toolkit/headless/HeadlessDisplay.h"

using namespace etmhost;

static void HostRecording(const uint8_t* data, size_t size) {
    try {
        const Recording recording =
            ParseRecording("r", {reinterpret_cast<const char*>(data), size});
        Require(!recording.calls.empty() && recording.calls.back().line <= recording.lines);
        HeadlessDisplay display; // on which whoever opens a dialog cancels it
        AfxGetApp()->UseDisplay(&display);
        record::EventStream events;
        {
            Replay replay(recording, *OrnDLL(), events);
            replay.Run();
            Require(replay.difference() || replay.count() > 0);
            Require(!replay.difference() || replay.difference()->line <= recording.lines + 1);
        }
        AfxGetApp()->UseDisplay(nullptr);
    } catch (const HostError& error) {
        Require(*error.what() == 'r' || *error.what() == '"');
    }
}

static const FuzzTarget kHostRecording("fuzz_host_recording", HostRecording);
