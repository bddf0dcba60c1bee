#include "frame/jKVETMSupp.h"

#include "frame/guard.h"
#include "frame/interfaces/IOrnXTraceClient.h"
#include "frame/jKVETMCtrl.h"
#include "frame/slots.h"
#include "platform/directory.h"
#include "settings/BoardSelection.h"
#include "settings/jTraceSettings.h"
#include "text/text_tools.h"
#include "toolkit/CallDepth.h"

namespace {

/// The board selection of the settings record.
struct SelectedBoard {
    SelectedBoard() { g_Settings->GetTextAttribute(TA_BOARD_FILE, text, sizeof text); }
    bool IsUnknown() const { return KindOfBoard(text) == BoardSelection::Unknown; }
    char text[260];
};

} // namespace

const char* jKVETMSupp::GetInterfaceName() {
    return ORN_KVETM_SUPP;
}
int32_t jKVETMSupp::GetInterfaceVersion() {
    return ORN_KVETM_SUPP_VERSION;
}
const char* jKVETMSupp::GetComponentName() {
    return "KVETMSupp";
}
int32_t jKVETMSupp::GetComponentVersion() {
    return 102;
}
IOrnInterface* jKVETMSupp::GetInterface(const char*) {
    return nullptr;
}
void jKVETMSupp::ReleaseInterface(IOrnInterface*) {}

bool jKVETMSupp::InitBoardFile(const char* directory, char* value, uint32_t size, int32_t* mode) {
    const calls::Counted counted; // behind its end this object may be gone
    bool result = GuardedEntry(false, LastError, [&] { return SettleSelection(directory); });
    if (Mode == ORN_MODE_NONE) result = false;
    if (mode != nullptr) *mode = Mode;
    CopyBounded(value, size, Value.c_str());
    return result;
}

bool jKVETMSupp::CanInitBoardFile() {
    return true;
}

void jKVETMSupp::GetLastError(char* buffer, int32_t size) {
    if (size > 0) CopyBounded(buffer, static_cast<size_t>(size), LastError.c_str());
}

bool jKVETMSupp::SettleSelection(const char* directory) {
    LastError.clear();
    if (g_Settings == nullptr || g_Ctrl == nullptr) {
        Mode = ORN_MODE_NONE;
        LastError = "Module is not initialized properly";
        return false;
    }
    g_Settings->SetTextAttribute(TA_BOARD_DIRECTORY, directory);

    const SelectedBoard selection;
    if (selection.IsUnknown()) {
        if (Mode == ORN_MODE_NONE) return AskUser();
        Mode = ORN_MODE_NONE; // a selection that was in force is lost: the next call asks
        return false;
    }
    if (TakeFixedSelection(selection.text)) return true;
    if (InputFile(selection.text).IsOpen()) {
        Take(ORN_MODE_BOARD_FILE, selection.text);
        return true;
    }
    Mode = ORN_MODE_NONE;
    return AskUser();
}

namespace {

bool OpenWindow() {
    if (g_SheetOpen != 0) return g_Ctrl->Open();
    const calls::Waiting waiting; // this call needs nothing of the host meanwhile
    return g_Ctrl->Open();
}

} // namespace

bool jKVETMSupp::AskUser() {
    if (g_SheetOpen == 0) g_BoardQueryPending = 1;
    const bool opened = OpenWindow();
    if (!opened) {
        char reason[260];
        g_Ctrl->GetLastError(reason, sizeof reason);
        LastError = reason;
    }

    const SelectedBoard answer;
    if (answer.IsUnknown()) {
        Mode = ORN_MODE_NONE; // whatever a call from inside the dialog made of it
        LastError = "Cancelled by user";
    } else if (!TakeFixedSelection(answer.text)) {
        Take(ORN_MODE_BOARD_FILE, answer.text);
    }
    return opened;
}

/// Takes a selection that names no file; false if it is not one of those.
bool jKVETMSupp::TakeFixedSelection(const char* selection) {
    switch (KindOfBoard(selection)) {
    case BoardSelection::Empty:
    case BoardSelection::None:
        Take(ORN_MODE_NO_FILE, ORN_BOARD_NONE);
        return true;
    case BoardSelection::Startup:
        Take(ORN_MODE_STARTUP, ORN_BOARD_STARTUP);
        return true;
    default:
        return false;
    }
}

void jKVETMSupp::Take(int32_t mode, const char* value) {
    Value = value;
    Mode = mode;
}
