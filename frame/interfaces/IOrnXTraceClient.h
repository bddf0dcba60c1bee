// IOrnXTraceClient: the host's named settings, and its commands by name.
//
// What it is     A store of texts by section and key, in which the module keeps
//                its one persistent value, and a test for host commands.
// Who owns it    The host; it outlives its attachment. A host that attaches
//                IOrnVETMTrace attaches this too; otherwise the board selection
//                is not known at each read, and none is kept.
// Which thread   The host's one thread (see IOrnInterface.h), also from inside
//                IOrnKVETMCtrl::Open.
//
// The one setting: section "KVETM", key "BoardFile", at most 259 characters: the
// path of a board file, "/none" or "/startup". A longer path is never written.
//
// GetInterfaceVersion matters here: HasCommand is called from the version
// ORN_VERSION_WITH_HAS_COMMAND on.

#ifndef IORNXTRACECLIENT_H
#define IORNXTRACECLIENT_H

#include "IOrnInterface.h"

constexpr char ORN_XTRACE_CLIENT[] = "IOrnXTraceClient"; // its name
constexpr int32_t ORN_VERSION_WITH_HAS_COMMAND = 111;
constexpr int32_t ORN_XTRACE_CLIENT_VERSION = ORN_VERSION_WITH_HAS_COMMAND;

/// The one named setting, and the characters that it has at most.
constexpr char ORN_SETTING_SECTION[] = "KVETM";        // its section
constexpr char ORN_SETTING_BOARD_FILE[] = "BoardFile"; // its key
constexpr int32_t ORN_SETTING_LENGTH = 259;            // without the NUL

/// Values of it that are no path, in any case of the letters.
constexpr char ORN_BOARD_UNKNOWN[] = "---";      // no selection is known; never written
constexpr char ORN_BOARD_NONE[] = "/none";       // no board file
constexpr char ORN_BOARD_STARTUP[] = "/startup"; // the debugger's startup macro

class IOrnXTraceClient : public IOrnInterface {
public:
    /// Slot 6. Returns true iff the host offers the command `name`. The module asks
    /// for "ExecuteCmd" when it lists the boards: true adds the choice "Call debugger
    /// startup macro functions".
    virtual OrnBool HasCommand(const char* name) = 0;

    /// Slot 7. Stores `value` under `section` and `key`. The result is not looked
    /// at. Part of an apply (see IOrnVETMTrace.h); an empty selection is written as
    /// "/none", and one that is not known is not written.
    virtual OrnBool WriteSetting(const char* section, const char* key, const char* value) = 0;

    /// Slot 8. Copies the text stored under `section` and `key` into the `size`
    /// bytes at `buffer`, terminator included. Returns false if there is none; the
    /// buffer is then not looked at, and the board selection counts as not known. An
    /// empty text counts as "/none". The module asks with a size of 260.
    virtual OrnBool ReadSetting(const char* section, const char* key, int32_t size,
                                char* buffer) = 0;

protected:
    ~IOrnXTraceClient() = default;
};

#endif
