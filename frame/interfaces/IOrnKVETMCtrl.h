// IOrnKVETMCtrl: the control component "KVETMControl".
//
// What it is     The component that shows the "ETM Control" dialog and applies
//                the trace settings. A host creates it through IOrnAPIBase,
//                attaches the interfaces that it names, and calls Init once.
// Who owns it    The host, from CreateRowObject to DestroyRowObject. One is enough:
//                all components of one load share the module's state, the settings
//                record among it, which goes with the last of them.
// Which thread   The host's one thread (see IOrnInterface.h); with the Qt display
//                that is the thread of the QApplication. Open runs a modal message
//                loop, and the host's interfaces are called from inside it.
//
// An operation that can fail returns false and leaves one line of text, which
// GetLastError delivers. Init, Apply and an Open with the dialog closed empty
// that text first. Where memory runs short on the way, the text is "No memory".
//
// Of the root operations, GetInterface("IOrnKVETMSupp") gives the support component
// (IOrnKVETMSupp.h), or null if memory is short; any other name gives null.

#ifndef IORNKVETMCTRL_H
#define IORNKVETMCTRL_H

#include "IOrnObject.h"

constexpr char ORN_KVETM_CTRL[] = "IOrnKVETMCtrl"; // its name
constexpr int32_t ORN_KVETM_CTRL_VERSION = 100;

class IOrnKVETMCtrl : public IOrnObject {
public:
    /// Slot 18. Creates the settings record and, if IOrnVETMTrace is attached,
    /// reads the target into it (see IOrnVETMTrace.h for the order of calls).
    /// `option` is not looked at. Returns false with
    ///   "No memory",
    ///   "Cannot read ETM/Trace settings from target", or
    ///   "Another operation of the module is running": called from inside a host
    ///   operation or while the dialog is open.
    /// A second Init begins with a new record. Behind a failed read nothing differs: an
    /// Apply sends nothing.
    /// REQUIRES: the interfaces are attached. A host that attaches IOrnVETMTrace
    /// attaches IOrnXTraceClient too. After a failed Init a host stops.
    virtual bool Init(uint32_t option) = 0;

    /// Slot 19. Reads the target, shows the modal "ETM Control" dialog and returns
    /// when it has closed: true for OK and Cancel alike. Edits that an earlier run
    /// left and never applied are gone then. Returns false with
    ///   "IOrnAPI interface is not attached",
    ///   "IOrnVETM interface is not attached",
    ///   "No memory" (there was no Init),
    ///   "Cannot read ETM/Trace settings from target", or
    ///   "Error while creating main window", followed by the reason if it is known.
    /// Called while the dialog is open, it builds no second one: it runs the ETM
    /// Configuration dialog, applies the settings behind OK, and returns false behind
    /// Cancel, with the text of the last failure as it was.
    virtual bool Open() = 0;

    /// Slot 20. Sends to the target what the settings record holds and the target
    /// does not (see IOrnVETMTrace.h for the commands). Returns false with
    /// "Module is not initialized properly" if there was no Init or IOrnVETMTrace
    /// is not attached, and with an empty text if the target refused a step. A
    /// refused "enable" is shown in a message box as well.
    virtual bool Apply() = 0;

    /// Slot 21. Copies the text of the last failure, or the empty text, into the
    /// `size` bytes at `buffer`, always terminated; what remains of the buffer is
    /// filled with NUL. Does nothing for a null buffer or a size below 1.
    virtual void GetLastError(char* buffer, int32_t size) = 0;

protected:
    ~IOrnKVETMCtrl() = default;
};

#endif
