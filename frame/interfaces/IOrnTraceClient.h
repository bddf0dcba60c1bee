// IOrnTraceClient: named actions of the host.
//
// What it is     One operation; the module uses it to let the host judge the
//                addresses that a person types.
// Who owns it    The host; it outlives its attachment. May be left unattached:
//                the module then accepts integer constants only.
// Which thread   The host's one thread (see IOrnInterface.h), also from inside
//                IOrnKVETMCtrl::Open.

#ifndef IORNTRACECLIENT_H
#define IORNTRACECLIENT_H

#include "IOrnInterface.h"

constexpr char ORN_TRACE_CLIENT[] = "IOrnTraceClient"; // its name
constexpr int32_t ORN_TRACE_CLIENT_VERSION = 100;

class IOrnTraceClient : public IOrnInterface {
public:
    /// Slot 6. Performs `action`; `argument` may be null. Returns true on success.
    /// The module calls, once each per address entry:
    ///   Action("CheckAction", "Eval")   true iff the host evaluates expressions;
    ///   Action("Eval ENTRY", null)    true iff the entry is a valid expression.
    /// No other action is called. Without an evaluator, answer 0 to the first.
    virtual OrnBool Action(const char* action, const char* argument) = 0;

protected:
    ~IOrnTraceClient() = default;
};

#endif
