// IOrnXTrace: the host's extended trace interface.
//
// What it is     Taken by AttachInterface and handed back by
//                GetAttachedInterface; the module calls none of its operations.
// Who owns it    The host; it outlives its attachment.
// Which thread   The host's one thread (see IOrnInterface.h).

#ifndef IORNXTRACE_H
#define IORNXTRACE_H

#include "IOrnInterface.h"

constexpr char ORN_XTRACE[] = "IOrnXTrace"; // its name
constexpr int32_t ORN_XTRACE_VERSION = 100;

class IOrnXTrace : public IOrnInterface {
protected:
    ~IOrnXTrace() = default;
};

#endif
