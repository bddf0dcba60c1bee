// IOrnVETMTrace: the host's trace engine, the module's way to the target.
//
// What it is     Commands, values by id, the present settings as text, a state
//                word and feature tests. All that the module knows of the target
//                comes from here, and all that it changes goes back through here.
// Who owns it    The host; it outlives its attachment. Without it Init leaves the
//                settings at their start values, and Open and Apply fail.
// Which thread   The host's one thread (see IOrnInterface.h), also from inside
//                IOrnKVETMCtrl::Open: from handlers and from a 600 ms timer.
//
// A full read of the settings (Init, and the start of each Open) calls, in order:
//   GetValue 0x1000004 and, while each succeeds, 0x1000014; then 0x10001E4 if bit
//   31 of the first word is set, 5, and Command("capability", stream);
//   GetValue 0, 1 and 2, always all three;
//   GetSettingsLine 0, 1, 2 ... until null;
//   if 0, 1 and 2 succeeded: IOrnXTraceClient::ReadSetting.
// The read fails unless 0, 1 and 2 succeed. Without the first two words what is known
// of the chip stays as it was: at first, no comparators and no port sizes.
//
// An apply calls, in order, what belongs to the groups that differ, each group whole;
// ADDRESS is an address as it was typed, of any length; FILE a path; BITS in decimal:
//   board file  Command "macro FILE"
//   control     Command "enable" or "disable", if that changes; SetValue 0
//   position    SetValue 2
//   port        Command "etm portsize=BITS", unless the chip offers no such port;
//               "etm halfrate=on" or "etm halfrate=off";
//               IOrnXTraceClient::WriteSetting
//   trace       Command "etm pc=none", "etm pc=all" or "etm complex", or
//               "etm pc=start ADDRESS", or that and "etm pc=stop ADDRESS", or
//               "etm pc=from ADDRESS" and "etm pc=to ADDRESS";
//               "etm data=none", "etm data=addr", "etm data=value" or "etm data=all";
//               "etm data=from ADDRESS" and "etm data=to ADDRESS", for a range of data;
//               "etm trigger ADDRESS", for a trigger on an address
// A new board file is part of the port group too; the switch of the trigger on an
// address is part of both the control group and the trace group.
//
// A refused "enable" ends the apply, and a message box shows the text. A failed
// SetValue, a refused "etm halfrate" and a refusal in the trace group make the apply
// fail without a word; the rest is sent all the same, but neither range nor trigger
// behind a refused pc or kind of data, and no trigger behind a refused range. Other
// failures are not looked at. After a failed apply the next one sends it all again.

#ifndef IORNVETMTRACE_H
#define IORNVETMTRACE_H

#include <iosfwd>

#include "IOrnInterface.h"

/// Ids of GetValue, and where it says so of SetValue.
constexpr uint32_t ORN_VALUE_CONTROL = 0;          // general control word; both
constexpr uint32_t ORN_VALUE_BUFFER_SIZE = 1;      // capacity of the trace buffer, in units
constexpr uint32_t ORN_VALUE_TRIGGER_COUNT = 2;    // units behind the trigger; both
constexpr uint32_t ORN_VALUE_PORT_SIZES = 5;       // mask: bit k for a port of k + 1 bits
constexpr uint32_t ORN_VALUE_REGISTER = 0x1000000; // plus the offset of an ETM register
constexpr uint32_t ORN_VALUE_ETMCCR = ORN_VALUE_REGISTER + 0x004; // configuration code register
constexpr uint32_t ORN_VALUE_ETMSCR = ORN_VALUE_REGISTER + 0x014; // system configuration register
constexpr uint32_t ORN_VALUE_ETMIDR = ORN_VALUE_REGISTER + 0x1E4; // ID register

/// Of the ETM configuration code register: there is an ETM ID register.
constexpr uint32_t ORN_ETMCCR_HAS_ID = 0x80000000;

/// Bits of the general control word.
constexpr uint32_t ORN_CONTROL_ENABLE = 0x1;            // trace is enabled
constexpr uint32_t ORN_CONTROL_STOP_WHEN_FULL = 0x2;    // capture stops when the buffer is full
constexpr uint32_t ORN_CONTROL_ACCUMULATE = 0x4;        // between runs of the processor
constexpr uint32_t ORN_CONTROL_MANUAL = 0x8;            // capture is started and stopped by hand
constexpr uint32_t ORN_CONTROL_KEPT = 0x30;             // go back as they came
constexpr uint32_t ORN_CONTROL_TRIGGER_PIN = 0x100;     // stops after a trigger from the pin
constexpr uint32_t ORN_CONTROL_TRIGGER_ADDRESS = 0x200; // stops after one from an address

/// Bits of the state word.
constexpr uint32_t ORN_STATE_LOOK_AGAIN = 0x2; // when it changes
constexpr uint32_t ORN_STATE_RUNNING = 0x4;    // capture is running

/// Features of a target.
constexpr uint32_t ORN_FEATURE_ETB = 0x2000000;       // trace goes to an on-chip buffer
constexpr uint32_t ORN_FEATURE_TPIU = 0x3000000;      // it goes out through a TPIU
constexpr uint32_t ORN_FEATURE_CORTEX_M3 = 0x4000000; // addresses are DWT comparators

constexpr char ORN_VETM_TRACE[] = "IOrnVETMTrace"; // its name
constexpr int32_t ORN_VETM_TRACE_VERSION = 100;

class IOrnVETMTrace : public IOrnInterface {
public:
    /// Slot 6. Carries out a command of the host's language. Returns null on
    /// success, otherwise a text that says what went wrong: any text, an empty one
    /// too, is a refusal.
    ///
    /// Behind "macro " stands the path of a board file, as it stands in the settings, or
    /// one of two special values: "/none", no board file, and "/startup", the debugger's
    /// own startup macro prepares the pins.
    ///
    /// Beside the commands of an apply, the module sends "start", "stop" and
    /// "trigger force" (the buttons Start, Stop and Trigger Now; the result is not
    /// looked at), and "capability" (each read, and once for the Status page), the
    /// one command with a `stream`: the host writes the capability report into it
    /// and ends it with a NUL. For all others `stream` is null. It is a stream of the
    /// module's C++ library: a host with another one writes through orn_stream.h.
    ///
    /// The report is free text, shown on the Status page. The module looks for the
    /// labels below, exactly so, in any order; behind each a colon and a value:
    ///   a decimal number:
    ///     "ETM protocol version", "Number of address comparator pairs",
    ///     "Number of data comparators", "Number of memory map decoders",
    ///     "Number of counters", "Number of external inputs",
    ///     "Number of external outputs"
    ///   two numbers with a point, such as 3.1:
    ///     "ETM architecture version"
    ///   yes or no, on the colon's line:
    ///     "Sequencer present", "FIFOFULL logic present",
    ///     "Half-rate clocking supported", "Full-rate clocking supported",
    ///     "Normal format supported", "Multiplexed  format  supported" (with two
    ///     blanks twice), "Demultiplexed format supported"
    /// What is missing counts as 0, 1.0 or no; so does all if "capability" is refused.
    /// A whole report, the NUL at its end included:
    ///   ETM protocol version: 3
    ///   ETM architecture version: 1.3
    ///   Number of address comparator pairs: 4
    ///   Number of data comparators: 2
    ///   Number of memory map decoders: 8
    ///   Number of counters: 2
    ///   Sequencer present: yes
    ///   Number of external inputs: 4
    ///   Number of external outputs: 1
    ///   FIFOFULL logic present: yes
    ///   Half-rate clocking supported: yes
    ///   Full-rate clocking supported: no
    ///   Normal format supported: yes
    ///   Multiplexed  format  supported: no
    ///   Demultiplexed format supported: no
    ///   (NUL)
    virtual const char* Command(const char* text, std::ostream* stream) = 0;

    /// Slot 7. Returns a text about the emulator or ETB for the Status page, or
    /// null. Called once, when that page opens; `which` is always 0.
    virtual const char* GetInfoText(uint32_t which) = 0;

    /// Slot 8. Returns the state word. When ORN_STATE_LOOK_AGAIN changes, the General
    /// Control page looks at everything again. ORN_STATE_RUNNING: capture is running, so
    /// that Stop can be pressed and Start can't; a change of it alone shows behind
    /// those two only. Called every 600 ms while that page is in front. `detail` is never
    /// null and for the host to fill; the module does not read it.
    virtual uint32_t GetTraceState(uint32_t* detail) = 0;

    /// Slot 9. Returns true iff the target has the feature:
    ///   ORN_FEATURE_ETB        trace goes to an ETB,
    ///   ORN_FEATURE_TPIU       trace goes out through a TPIU (asked only if the above is
    ///                          false),
    ///   ORN_FEATURE_CORTEX_M3  the target is a Cortex-M3.
    virtual OrnBool HasFeature(uint32_t feature) = 0;

    /// Slot 10. Stores a value. Returns true on success.
    ///   ORN_VALUE_CONTROL        the general control word: bit 0 trace enabled, 1 stop
    ///                            when the buffer is full, 2 accumulate between runs,
    ///                            3 manual start and stop, 4 and 5 kept as read, 8 stop
    ///                            after a trigger from the external pin, 9 stop after a
    ///                            trigger from an address;
    ///   ORN_VALUE_TRIGGER_COUNT  the number of units to capture behind the trigger: the
    ///                            share of the capacity that lies behind it, the fraction
    ///                            cut off.
    virtual OrnBool SetValue(uint32_t id, uint32_t value) = 0;

    /// Slot 11. Reads a value into `*value`. Returns true on success.
    ///   ORN_VALUE_ETMCCR, ORN_VALUE_ETMSCR, ORN_VALUE_ETMIDR
    ///                            ETM registers: configuration code, system configuration,
    ///                            ID register;
    ///   ORN_VALUE_PORT_SIZES     mask of the trace port sizes on offer: bit k stands for
    ///                            k + 1 bits;
    ///   ORN_VALUE_CONTROL        the general control word, as for SetValue; of several
    ///                            reasons to stop, bit 1 counts first;
    ///   ORN_VALUE_BUFFER_SIZE    capacity of the trace buffer in the units of the next;
    ///                            0: not known;
    ///   ORN_VALUE_TRIGGER_COUNT  the number of units to capture behind the trigger.
    virtual OrnBool GetValue(uint32_t id, uint32_t* value) = 0;

    /// Slot 12. Returns line `index`, from 0, of the present settings as text;
    /// null behind the last one. Within one pass an index names one line. Lines
    /// that begin with the word ETM are read, words in any case and blanks between
    /// them at will; others are passed over. ADDRESS is the rest of the line, BITS a number
    /// of bits in decimal:
    ///   ETM PC = none | all | start ADDRESS | stop ADDRESS | from ADDRESS | to ADDRESS
    ///   ETM COMPLEX
    ///   ETM DATA = none | addr | value | all | from ADDRESS | to ADDRESS
    ///   ETM TRIGGER ADDRESS
    ///   ETM PORTSIZE = BITS
    ///   ETM HALFRATE = on | off
    /// What no line mentions stays as it was. Of lines about one setting the last
    /// counts; a range without a kind of data before it means all data within it.
    /// A line is one line: give it without its line end, or ADDRESS has that too and comes
    /// back with it in the commands of an apply. After 1,000,000 lines the module asks
    /// for no more.
    virtual const char* GetSettingsLine(uint32_t index) = 0;

protected:
    ~IOrnVETMTrace() = default;
};

#endif
