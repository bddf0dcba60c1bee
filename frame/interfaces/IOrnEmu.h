// IOrnEmu: the host's emulator interface.
//
// What it is     Taken by AttachInterface and handed back by
//                GetAttachedInterface; the module calls none of its operations.
// Who owns it    The host; it outlives its attachment.
// Which thread   The host's one thread (see IOrnInterface.h).

#ifndef IORNEMU_H
#define IORNEMU_H

#include "IOrnInterface.h"

constexpr char ORN_EMU[] = "IOrnEmu"; // its name
constexpr int32_t ORN_EMU_VERSION = 100;

class IOrnEmu : public IOrnInterface {
protected:
    ~IOrnEmu() = default;
};

#endif
