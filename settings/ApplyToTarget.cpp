// Applying to the target: the four groups of settings that are compared, and the
// commands for those that differ.

#include <algorithm>
#include <limits>

#include "frame/interfaces/IOrnVETMTrace.h"
#include "frame/interfaces/IOrnXTraceClient.h"
#include "frame/slots.h"
#include "settings/BoardSelection.h"
#include "settings/control_word.h"
#include "settings/jTraceSettings.h"
#include "toolkit/CWnd.h"

namespace {

/// Returns true iff the host took the command.
bool Send(const std::string& command) {
    return g_VETMTrace->Command(command.c_str(), nullptr) == nullptr;
}

} // namespace

bool jTraceSettings::IsModified() const {
    return ControlChanged() || TriggerPositionChanged() || PortChanged() || TraceChanged();
}

bool jTraceSettings::ControlChanged() const {
    return Working.Enable != Snapshot.Enable || Working.StopMode != Snapshot.StopMode ||
           Working.TriggerPin != Snapshot.TriggerPin ||
           Working.TriggerOnAddress != Snapshot.TriggerOnAddress ||
           Working.Accumulate != Snapshot.Accumulate || Working.ManualMode != Snapshot.ManualMode ||
           Working.ControlSpareBits != Snapshot.ControlSpareBits;
}

bool jTraceSettings::TriggerPositionChanged() const {
    return Working.TriggerPosition != Snapshot.TriggerPosition;
}

bool jTraceSettings::PortChanged() const {
    return Working.PortSizeIndex != Snapshot.PortSizeIndex ||
           Working.PortModeIndex != Snapshot.PortModeIndex ||
           Working.CprtModeIndex != Snapshot.CprtModeIndex ||
           Working.ContextIdIndex != Snapshot.ContextIdIndex ||
           Working.StallProcessor != Snapshot.StallProcessor ||
           Working.CycleAccurate != Snapshot.CycleAccurate ||
           Working.BranchOutput != Snapshot.BranchOutput || Working.BoardFile != Snapshot.BoardFile;
}

// The address comparators serve PC, data and trigger alike, so these change together.
bool jTraceSettings::TraceChanged() const {
    return Working.PcMode != Snapshot.PcMode || Working.PcBegin != Snapshot.PcBegin ||
           Working.PcEnd != Snapshot.PcEnd || Working.DataMode != Snapshot.DataMode ||
           Working.DataBegin != Snapshot.DataBegin || Working.DataEnd != Snapshot.DataEnd ||
           Working.TriggerOnAddress != Snapshot.TriggerOnAddress ||
           Working.TriggerAddress != Snapshot.TriggerAddress;
}

bool jTraceSettings::ApplyToTarget() {
    if (g_VETMTrace == nullptr) return false;
    // Decided once: a host may answer a command with an apply of its own, which makes
    // the images equal while this one is half done.
    const bool boardDiffers = Working.BoardFile != Snapshot.BoardFile;
    const int32_t wasEnabled = Snapshot.Enable;
    const bool controlDiffers = ControlChanged(), positionDiffers = TriggerPositionChanged();
    const bool portDiffers = PortChanged(), traceDiffers = TraceChanged();

    // Hosts rely on the order, which IOrnVETMTrace.h gives: the board's own commands run
    // first and can be overruled, and a trigger finds the comparators that the ranges left.
    if (boardDiffers) Send("macro " + Working.BoardFile);
    if (controlDiffers && !SwitchTrace(wasEnabled != 0)) return false;
    const bool control = !controlDiffers ||
                         g_VETMTrace->SetValue(ORN_VALUE_CONTROL, EncodeControlWord(Working)) != 0;
    const bool position = !positionDiffers ||
                          g_VETMTrace->SetValue(ORN_VALUE_TRIGGER_COUNT, EncodeTriggerCount()) != 0;
    const bool port = !portDiffers || ApplyPort();
    const bool trace = !traceDiffers || ApplyTrace();
    if (!control || !position || !port || !trace) return false;

    Snapshot = Working;
    return true;
}

/// Returns false if the host refused "enable".
bool jTraceSettings::SwitchTrace(bool wasEnabled) {
    if (Working.Enable == 0 && wasEnabled) Send("disable");
    if (Working.Enable == 0 || wasEnabled) return true;

    const char* const refusal = g_VETMTrace->Command("enable", nullptr);
    if (refusal == nullptr) return true;
    // A copy: timers call the host while the box is open, and its text may go.
    const std::string reason = refusal;
    MessageBoxWithoutOwner(reason.c_str(), "Cannot enable trace", MB_OK | MB_ICONHAND);
    return false;
}

uint32_t jTraceSettings::EncodeTriggerCount() const {
    const double count = (100.0 - Working.TriggerPosition) * 0.01 * BufferSize;
    const double most = std::numeric_limits<uint32_t>::max();
    return static_cast<uint32_t>(std::clamp(count, 0.0, most));
}

bool jTraceSettings::ApplyPort() {
    const int32_t width = PortSizeFromIndex(Working.PortSizeIndex, Snapshot.PortSizeMask);
    if (width > 0) Send("etm portsize=" + std::to_string(width));

    // Half-rate clocking is one bit, but the list offers it by format. Its entries are the
    // first one of the normal format and the one behind those of it, which stands for the
    // demultiplexed format: the list does not show that one, a target may report it.
    const bool normal = Snapshot.NormalFormatSupported != 0;
    const int32_t normalEntries = !normal ? 0 : Snapshot.HalfRateSupported != 0 ? 2 : 1;
    const bool halfRate =
        (Snapshot.HalfRateSupported != 0) &&
        ((normal && Working.PortModeIndex == 0) ||
         (Snapshot.DemultiplexedFormatSupported != 0 && Working.PortModeIndex == normalEntries));
    const bool taken = Send(halfRate ? "etm halfrate=on" : "etm halfrate=off");

    const char* board = Working.BoardFile.c_str();
    const BoardSelection kind = KindOfBoard(board);
    if (kind == BoardSelection::Empty) board = ORN_BOARD_NONE;
    if (g_XTraceClient != nullptr && kind != BoardSelection::Unknown)
        g_XTraceClient->WriteSetting(ORN_SETTING_SECTION, ORN_SETTING_BOARD_FILE, board);
    return taken;
}

bool jTraceSettings::ApplyTrace() {
    static constexpr const char* kDataKinds[] = {"none", "addr", "value", "all"};
    const jTraceState& wanted = Working;

    bool taken = true;
    const auto send = [&taken](const std::string& command) { taken &= Send(command); };
    switch (wanted.PcMode) {
    case PC_NONE:
        send("etm pc=none");
        break;
    case PC_ALL:
        send("etm pc=all");
        break;
    case PC_START:
        send("etm pc=start " + wanted.PcBegin);
        break;
    case PC_START_STOP:
        send("etm pc=start " + wanted.PcBegin);
        send("etm pc=stop " + wanted.PcEnd);
        break;
    case PC_RANGE:
        send("etm pc=from " + wanted.PcBegin);
        send("etm pc=to " + wanted.PcEnd);
        break;
    default:
        send("etm complex");
        break;
    }
    send(std::string("etm data=") + kDataKinds[wanted.DataMode & DATA_KINDS]);

    if (taken && (wanted.DataMode & DATA_IN_RANGE) != 0) {
        send("etm data=from " + wanted.DataBegin);
        send("etm data=to " + wanted.DataEnd);
    }
    if (taken && wanted.TriggerOnAddress != 0) send("etm trigger " + wanted.TriggerAddress);
    return taken;
}
