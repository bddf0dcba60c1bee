// The help texts: what each control does, what it sends to the host, and when it can be used.
//
// They are shown on F1, as tips on the pages, and to screen readers; so each is short, and true
// whatever the state of the control. "Sent" means by OK and Apply of the sheet.

#include <string_view>

#include "resources/dialog_1001.h"
#include "resources/dialog_106.h"
#include "resources/dialog_107.h"
#include "resources/dialog_108.h"
#include "toolkit/constants.h"
#include "toolkit/template.h"

namespace {

struct HelpRow {
    int dialog; // 0: the frame of the sheet
    int ids[3]; // a label shares the text of its control; 0: no more
    const char* text;
};

constexpr HelpRow kHelp[] = {
    // --- The frame ---------------------------------------------------------------------
    {0, {IDOK}, "Checks the page in front, sends to the target what has changed, and closes."},
    {0,
     {IDCANCEL},
     "Closes, and forgets what was not sent. What Apply, Start, Stop or Trigger Now has sent "
     "stays on the target."},
    {0,
     {IDC_APPLY_NOW},
     "Sends to the target what has changed, and stays open. Available once a setting was "
     "changed."},

    // --- Status --------------------------------------------------------------------------
    {106,
     {1037, 1038},
     "What the host says of its emulator or of the chip's trace buffer. It can only be read, and "
     "is asked for when the page first comes up."},
    {106,
     {1062, 1063},
     "The trace resources of the chip: the answer to the command \"capability\", or why there is "
     "none. They can only be read, and are asked for when the page first comes up."},

    // --- General Control -------------------------------------------------------------------
    {107,
     {1000},
     "Switches trace on or off: \"enable\" or \"disable\" is sent. Always available; as long as "
     "it is clear, nothing else can be set on this page or under ETM Trace Settings."},
    {107,
     {1029},
     "Opens ETM Configuration with the trace port and the board file. Available while ETM is "
     "enabled."},
    {107,
     {1036},
     "What ends a capture: bit 1 of the control word that is sent, or its bits 8 and 9, the "
     "triggers. Available while ETM is enabled."},
    {107,
     {1061},
     "The capture goes on until the processor stops: bits 1, 8 and 9 of the control word are sent "
     "as 0. Available while ETM is enabled."},
    {107,
     {1034},
     "The capture ends when the trace buffer is full: bit 1 of the control word is sent. "
     "Available while ETM is enabled, but not with an ETB."},
    {107,
     {1035},
     "The capture ends when its share of the buffer behind the trigger is full: bits 8 and 9 of "
     "the control word are sent as Trigger Settings say. Available while ETM is enabled, but not "
     "with a TPIU."},
    {107,
     {1006},
     "Sends what has changed and then \"trigger force\": the trigger comes now. Available while "
     "ETM is enabled, but not with an ETB or a TPIU."},
    {107,
     {1003},
     "What raises the trigger, and how much of the buffer stays from before it. Available while "
     "ETM is enabled and the capture ends after the trigger."},
    {107,
     {1032, 1007, 1008},
     "How much of the buffer stays from before the trigger; the rest is sent as the trigger "
     "count. Available while ETM is enabled; with an ETB or a TPIU only if the capture ends after "
     "the trigger."},
    {107,
     {1005},
     "The ETM raises the trigger at an address: bit 9 of the control word and \"etm trigger\" are "
     "sent. Available while ETM is enabled and the capture ends after the trigger."},
    {107,
     {1077},
     "The address of the trigger, sent with \"etm trigger\"; a change of it alone goes with OK, "
     "not "
     "with Apply. Available while ETM is enabled, the capture ends after the trigger, and ETM "
     "Trigger on Address is checked."},
    {107,
     {1004},
     "The external pin raises the trigger: bit 8 of the control word is sent. Available while ETM "
     "is enabled and the capture ends after the trigger, but not with an ETB or a TPIU."},
    {107,
     {1002},
     "The buffer keeps what it holds when the processor runs again: bit 2 of the control word is "
     "sent. Available while ETM is enabled."},
    {107,
     {1009},
     "Start and Stop alone begin and end a capture: bit 3 of the control word is sent. Available "
     "while ETM is enabled."},
    {107,
     {1030},
     "Sends what has changed and then \"start\". Available while ETM is enabled and no capture "
     "runs."},
    {107,
     {1031},
     "Sends what has changed and then \"stop\". Available while ETM is enabled and a capture "
     "runs."},
    {107,
     {1083},
     "Says that this target makes some controls unavailable. Shown while ETM is enabled, with an "
     "ETB or a TPIU."},

    // --- ETM Trace Settings -------------------------------------------------------------------
    {108,
     {1011},
     "When the program counter (PC) is traced, sent as \"etm pc=\". Available while ETM is "
     "enabled."},
    {108,
     {1030},
     "No PC trace: \"etm pc=none\" is sent. Available while ETM is enabled, on a Cortex-M3."},
    {108,
     {1012},
     "All of the program is traced: \"etm pc=all\" is sent. Available while ETM is enabled."},
    {108,
     {1013},
     "Trace begins when the program comes to Begin: \"etm pc=start\" is sent. Available while ETM "
     "is enabled, on a Cortex-M3 or an ETM from 1.2 on with address comparators."},
    {108,
     {1015},
     "Trace begins at Begin and ends at End: \"etm pc=start\" and \"etm pc=stop\" are sent. "
     "Available while ETM is enabled, on a Cortex-M3 or an ETM from 1.2 on with address "
     "comparators."},
    {108,
     {1017},
     "Only the code from Begin to End is traced: \"etm pc=from\" and \"etm pc=to\" are sent. "
     "Available while ETM is enabled, on an ETM from 1.2 on with address comparators."},
    {108,
     {1028, 1018},
     "Where PC trace begins, sent with \"etm pc=start\" or \"etm pc=from\": an address, or on a "
     "Cortex-M3 the index of a DWT comparator. "
     "Available while ETM is enabled and the PC tracing mode has a beginning."},
    {108,
     {1020, 1019},
     "Where PC trace ends, sent with \"etm pc=stop\" or \"etm pc=to\": an address, or on a "
     "Cortex-M3 the index of a DWT comparator. Available "
     "while ETM is enabled and the PC tracing mode has an end."},
    {108,
     {1025},
     "What is traced of data accesses, sent as \"etm data=\". Available while ETM is enabled, on "
     "a chip with data or address comparators."},
    {108,
     {1026},
     "The values of data accesses are traced: \"etm data=value\" is sent, or \"etm data=all\" with "
     "addresses. Available while ETM is enabled, on a chip with data or address comparators."},
    {108,
     {1027},
     "The addresses of data accesses are traced: \"etm data=addr\" is sent, or \"etm data=all\" "
     "with values. Available while ETM is enabled, on a chip with data or address comparators."},
    {108,
     {1075},
     "Only accesses from Begin to End are traced: \"etm data=from\" and \"etm data=to\" are sent. "
     "Available while ETM is enabled and data are captured, on a chip with address comparators."},
    {108,
     {1029, 1014},
     "Where the data address range begins, a number or an expression, sent with \"etm data=from\". "
     "Available while ETM is "
     "enabled, data are captured, and data tracing is limited to the range."},
    {108,
     {1021, 1016},
     "Where the data address range ends, a number or an expression, sent with \"etm data=to\". "
     "Available while ETM is "
     "enabled, data are captured, and data tracing is limited to the range."},
    {108,
     {1083},
     "Says what Begin and End take on this target. Shown on a Cortex-M3 while ETM is enabled, and "
     "available while the PC tracing mode has a beginning."},

    // --- ETM Configuration -----------------------------------------------------------------
    {1001,
     {1079, 1078},
     "What prepares the trace pins: a board file or the debugger's startup macro, sent as "
     "\"macro\" and kept as a setting. Always available."},
    {1001,
     {1050, 1065},
     "The width of the trace port in bits, sent as \"etm portsize=\". Available if there are "
     "several widths to choose from."},
    {1001,
     {1067, 1068},
     "The clock of the trace port, sent as \"etm halfrate=on\" or \"etm halfrate=off\". Available "
     "if there are several modes to choose from."},
    {1001,
     {1081, 1080},
     "Title and commands of the board file that is selected, or of the next one to create. Not "
     "available for the startup macro; a file too long to be shown whole can only be read."},
    {1001,
     {1082},
     "Writes a board file with the title, the trace port and the commands above, and selects it; "
     "nothing is sent. Not available for the startup macro, nor for a file too long to be shown "
     "whole."},
    {1001,
     {1056},
     "Sets the trace port and the board file to their defaults, in this dialog alone. Always "
     "available."},
    {1001,
     {IDOK},
     "Takes the settings over into ETM Control, which sends them with its own OK or Apply, or at "
     "once if enabling ETM has asked for them. Always available."},
    {1001,
     {IDCANCEL},
     "Closes and leaves the settings as they were, but for those that Create New Board File has "
     "taken over. Always available."},
};

constexpr bool Has(const HelpRow& row, int id) {
    for (const int one : row.ids)
        if (one == id && id != 0) return true;
    return false;
}

constexpr int CountRows(int dialog, int id) {
    int count = 0;
    for (const HelpRow& row : kHelp)
        if (row.dialog == dialog && Has(row, id)) ++count;
    return count;
}

/// True iff each control that a person can ever see has one text, and the texts are of no other.
constexpr bool Complete(const DialogTemplate& dialog) {
    size_t seen = 0;
    for (const ControlTemplate& control : dialog.controls) {
        const bool seeable =
            control.id != -1 && (control.styles & style::Hidden) == 0 && control.x < dialog.width;
        if (CountRows(dialog.id, control.id) != (seeable ? 1 : 0)) return false;
        if (seeable) ++seen;
    }
    for (const HelpRow& row : kHelp)
        for (const int id : row.ids)
            if (row.dialog == dialog.id && id != 0) --seen;
    return seen == 0;
}
static_assert(Complete(dialog_106::dialog) && Complete(dialog_107::dialog) &&
              Complete(dialog_108::dialog) && Complete(dialog_1001::dialog));

/// True iff a text is one or two sentences of printable ASCII, short enough for a tip.
constexpr bool IsReadable(std::string_view text) {
    constexpr size_t kShortest = 40;
    constexpr size_t kLongest = 230;
    if (text.size() < kShortest || text.size() > kLongest || !text.ends_with('.')) return false;
    int sentences = 0;
    for (size_t i = 0; i < text.size(); ++i) {
        if (text[i] < ' ' || text[i] > '~' || text.substr(i, 2) == "  ") return false;
        if (text[i] == '.' && (i + 1 == text.size() || text[i + 1] == ' ')) ++sentences;
    }
    return sentences <= 2;
}
static_assert([] {
    for (const HelpRow& row : kHelp)
        if (!IsReadable(row.text)) return false;
    return true;
}());

} // namespace

const char* FindHelp(int dialog, int id) {
    for (const HelpRow& row : kHelp)
        if (row.dialog == dialog && Has(row, id)) return row.text;
    return nullptr;
}
