#include "frame/jKVETMSupp.h"

#include "board/BoardFile.h"
#include "frame/guard.h"
#include "frame/jKVETMCtrl.h"
#include "frame/slots.h"
#include "platform/compare.h"
#include "settings/jTraceSettings.h"
#include "text/text_tools.h"
#include "toolkit/CallDepth.h"

namespace {

// Values of Mode; 0 and 1 need no board file.
constexpr int32_t kNoSelection = -1;
constexpr int32_t kNoBoardFile = 0;
constexpr int32_t kStartupMacro = 1;
constexpr int32_t kBoardFile = 2;

/// The board selection of the settings record.
struct Selection {
    Selection() { g_Settings->GetTextAttribute(TA_BOARD_FILE, text, sizeof text); }
    bool IsUnknown() const { return CompareNoCase(text, "---") == 0; }
    char text[260];
};

} // namespace

const char* jKVETMSupp::GetInterfaceName() {
    return "IOrnKVETMSupp";
}
int32_t jKVETMSupp::GetInterfaceVersion() {
    return 100;
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
    if (Mode == kNoSelection) result = false;
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
        Mode = kNoSelection;
        LastError = "Module is not initialized properly";
        return false;
    }
    g_Settings->SetTextAttribute(TA_BOARD_DIRECTORY, directory);

    const Selection selection;
    if (selection.IsUnknown()) {
        if (Mode == kNoSelection) return AskUser();
        Mode = kNoSelection; // a selection that was in force is lost: the next call asks
        return false;
    }
    if (TakeFixedSelection(selection.text)) return true;
    if (OpenForReading(selection.text)) {
        Take(kBoardFile, selection.text);
        return true;
    }
    Mode = kNoSelection;
    return AskUser();
}

static bool OpenWindow() {
    if (g_SheetOpen != 0) return g_Ctrl->Open();
    const calls::Waiting waiting; // this call needs nothing of the host meanwhile
    return g_Ctrl->Open();
}

bool jKVETMSupp::AskUser() {
    if (g_SheetOpen == 0) g_BoardQueryPending = 1;
    const bool opened = OpenWindow();
    if (!opened) {
        char reason[260];
        g_Ctrl->GetLastError(reason, sizeof reason);
        LastError = reason;
    }

    const Selection answer;
    if (answer.IsUnknown()) {
        Mode = kNoSelection; // whatever a call from inside the dialog made of it
        LastError = "Cancelled by user";
    } else if (!TakeFixedSelection(answer.text)) {
        Take(kBoardFile, answer.text);
    }
    return opened;
}

/// Takes a selection that names no file; false if it is not one of those.
bool jKVETMSupp::TakeFixedSelection(const char* selection) {
    if (*selection == '\0' || CompareNoCase(selection, "/none") == 0)
        Take(kNoBoardFile, "/none");
    else if (CompareNoCase(selection, "/startup") == 0)
        Take(kStartupMacro, "/startup");
    else
        return false;
    return true;
}

void jKVETMSupp::Take(int32_t mode, const char* value) {
    Value = value;
    Mode = mode;
}
