// IOrnKVETMSupp: the support component "KVETMSupp".
//
// What it is     Settles which board file prepares the board's trace pins, and
//                asks the user where that is not settled yet.
// Who owns it    The control component, whose GetInterface("IOrnKVETMSupp") hands
//                it out: one object, however often it is asked for, valid until
//                the control component is destroyed.
// Which thread   The host's one thread (see IOrnInterface.h). InitBoardFile may
//                show a dialog and then runs a modal message loop.

#ifndef IORNKVETMSUPP_H
#define IORNKVETMSUPP_H

#include "IOrnInterface.h"

constexpr char ORN_KVETM_SUPP[] = "IOrnKVETMSupp"; // its name
constexpr int32_t ORN_KVETM_SUPP_VERSION = 100;

/// What InitBoardFile tells of the selection.
constexpr int32_t ORN_MODE_NONE = -1;      // none that can be used
constexpr int32_t ORN_MODE_NO_FILE = 0;    // no board file
constexpr int32_t ORN_MODE_STARTUP = 1;    // the debugger's startup macro does the work
constexpr int32_t ORN_MODE_BOARD_FILE = 2; // a board file

class IOrnKVETMSupp : public IOrnInterface {
public:
    /// Slot 6. Returns true iff the board selection is settled.
    ///
    /// `directory`  where board files live, from this call on; empty or null: the
    ///              directory of the module's file.
    /// `value`      receives the selection, cut to `size` bytes and terminated:
    ///              "/none", "/startup" or the path of a board file. With ORN_MODE_NONE
    ///              it receives the value of the last success, or the empty text.
    ///              May be null; left alone if `size` is 0.
    /// `mode`       receives what the selection is; may be null:
    ///              ORN_MODE_NONE, ORN_MODE_NO_FILE, ORN_MODE_STARTUP or
    ///              ORN_MODE_BOARD_FILE.
    ///
    /// A selection that is not known, or a path that can't be opened, brings up the
    /// ETM Configuration dialog: over "ETM Control", which IOrnKVETMCtrl::Open shows
    /// for it and which closes with it, or over the one that is open already. OK
    /// applies the answer to the target. Cancel leaves a path that can't be opened in
    /// place: mode 2, and true unless "ETM Control" was open already.
    ///
    /// A selection that was settled and is not known any more gives false without a
    /// dialog; the next call asks.
    ///
    /// Behind false, GetLastError tells why: "Cancelled by user", "Module is not
    /// initialized properly", or the text of IOrnKVETMCtrl::Open. The text is empty
    /// for a selection that was lost, and for a dialog above the open sheet that was
    /// cancelled with a path selected; `mode` tells these two apart: -1 and 2.
    /// REQUIRES: a successful IOrnKVETMCtrl::Init.
    virtual bool InitBoardFile(const char* directory, char* value, uint32_t size,
                               int32_t* mode) = 0;

    /// Slot 7. Returns true.
    virtual bool CanInitBoardFile() = 0;

    /// Slot 8. Like IOrnKVETMCtrl::GetLastError, for this component.
    virtual void GetLastError(char* buffer, int32_t size) = 0;

protected:
    ~IOrnKVETMSupp() = default;
};

#endif
