// IOrnVETMTrace: the host's trace engine, the module's way to the target.
//
// What it is     Commands, values by id, the present settings as text, a state
//                word and feature tests. All that the module knows of the target
//                comes from here, and all that it changes goes back through here.
// Who owns it    The host; it outlives its attachment.
// Which thread   The host's one thread (see IOrnInterface.h), also from inside
//                IOrnKVETMCtrl::Open: from handlers and from a 600 ms timer.
//
// A full read of the settings (Init, and the start of each Open) calls, in order:
//   GetValue 0x1000004 and, while each succeeds, 0x1000014; then 0x10001E4 if bit
//   31 of the first word is set, 5, and Command("capability", stream);
//   GetValue 0, 1 and 2, always all three;
//   GetSettingsLine 0, 1, 2 ... until null;
//   if 0, 1 and 2 succeeded: IOrnXTraceClient::ReadSetting.
//
// An apply calls, in order, only what differs:
//   Command "macro <board file>"; "enable" or "disable"; SetValue 0; SetValue 2;
//   Command "etm portsize=<bits>"; "etm halfrate=on|off";
//   IOrnXTraceClient::WriteSetting;
//   Command "etm pc=none|all", "etm pc=start <a>", "etm pc=stop <a>",
//   "etm pc=from <a>", "etm pc=to <a>" or "etm complex";
//   "etm data=none|addr|value|all"; "etm data=from <a>"; "etm data=to <a>";
//   "etm trigger <a>".

#pragma once

#include <iosfwd>

#include "IOrnInterface.h"

class IOrnVETMTrace : public IOrnInterface {
public:
    /// Slot 6. Carries out a command of the host's language. Returns null on
    /// success, otherwise a text that says what went wrong.
    ///
    /// Beside the commands of an apply, the module sends "start", "stop" and
    /// "trigger force" (the buttons of those names), and "capability", the one
    /// command with a `stream`: the host writes the capability report into it and
    /// ends it with a NUL. For all others `stream` is null.
    ///
    /// The report is free text; the module looks for labels such as "Number of
    /// address comparator pairs", each followed by a colon and a value (the full
    /// list: settings/ReadCapabilities.cpp).
    virtual const char* Command(const char* text, std::ostream* stream) = 0;

    /// Slot 7. Returns a text about the emulator or ETB for the Status page, or
    /// null. `which` is always 0.
    virtual const char* GetInfoText(uint32_t which) = 0;

    /// Slot 8. Returns the state word. Bit 1 (0x2): when it changes, the dialog
    /// looks at everything again. Bit 2 (0x4): capture is running. `detail` is for
    /// the host to fill; the module does not read it.
    virtual uint32_t GetTraceState(uint32_t* detail) = 0;

    /// Slot 9. Returns true iff the target has the feature:
    ///   0x2000000  trace goes to an ETB,
    ///   0x3000000  trace goes out through a TPIU,
    ///   0x4000000  the target is a Cortex-M3.
    virtual bool HasFeature(uint32_t feature) = 0;

    /// Slot 10. Stores a value. Returns true on success.
    ///   0  the general control word:
    ///      bit 0 trace enabled, 1 stop when the buffer is full, 2 accumulate
    ///      between runs, 3 manual start and stop, 4 and 5 kept as read,
    ///      8 stop after a trigger from the external pin,
    ///      9 stop after a trigger from an address;
    ///   2  the number of units to capture behind the trigger.
    virtual bool SetValue(uint32_t id, uint32_t value) = 0;

    /// Slot 11. Reads a value into `*value`. Returns true on success.
    ///   0x1000000 + offset  ETM register: 0x004 configuration code, 0x014 system
    ///                       configuration, 0x1E4 ID register;
    ///   5  mask of the trace port sizes on offer: bit k stands for k + 1 bits;
    ///   0  the general control word;
    ///   1  capacity of the trace buffer in the units of id 2; 0: not known;
    ///   2  the number of units to capture behind the trigger.
    virtual bool GetValue(uint32_t id, uint32_t* value) = 0;

    /// Slot 12. Returns line `index`, from 0, of the present settings as text;
    /// null behind the last one. Within one pass an index names one line. Lines
    /// that begin with the word ETM are read:
    ///   ETM PC = none | all | start <a> | stop <a> | from <a> | to <a>
    ///   ETM COMPLEX
    ///   ETM DATA = none | addr | value | all | from <a> | to <a>
    ///   ETM TRIGGER <a>
    ///   ETM PORTSIZE = <decimal number of bits>
    ///   ETM HALFRATE = on | off
    virtual const char* GetSettingsLine(uint32_t index) = 0;

protected:
    ~IOrnVETMTrace() = default;
};
