// IOrnAPI: the host itself.
//
// What it is     Proof that a host stands behind the module. It must be attached
//                for IOrnKVETMCtrl::Open; none of its operations is called there.
//                IOrnAPIBase::SetAPI asks it for its interface name, nothing more.
// Who owns it    The host; it outlives its attachment.
// Which thread   The host's one thread (see IOrnInterface.h).

#ifndef IORNAPI_H
#define IORNAPI_H

#include "IOrnInterface.h"

constexpr char ORN_API[] = "IOrnAPI"; // its name
constexpr int32_t ORN_API_VERSION = 100;

class IOrnAPI : public IOrnInterface {
protected:
    ~IOrnAPI() = default;
};

#endif
