// IOrnObject: how a component names what it needs and takes it.
//
// What it is     The operations by which a host asks a component for the
//                interfaces that it requires and hands them over by name.
// Who owns it    It is a base of the component. Attached objects stay the host's:
//                the component borrows the pointers and calls none of the six
//                root operations when they come or go.
// Which thread   The host's one thread (see IOrnInterface.h).

#ifndef IORNOBJECT_H
#define IORNOBJECT_H

#include "IOrnIParam.h"

class IOrnObject : public IOrnIParam {
public:
    /// Slot 10. Takes the host's object for the interface `name`, replacing an
    /// earlier one; `object` may be null. Returns 0 for a required name, compared
    /// exactly and with regard to case; -1 for any other, and nothing changes. Called
    /// from inside one of the host's operations, it takes effect when all calls of the
    /// module that are on their way have ended; between them, say from a timer of the
    /// host's while the dialog is open, at once.
    /// REQUIRES: `object` really implements `name` and outlives its attachment.
    virtual int32_t AttachInterface(const char* name, IOrnInterface* object) = 0;

    /// Slot 11. The same as AttachInterface(name, null).
    virtual int32_t DetachInterface(const char* name) = 0;

    /// Slot 12. Returns the number of interfaces that the component implements: 1.
    virtual int32_t GetImplementedCount() = 0;

    /// Slot 13. Returns the name of implemented interface `index`, from 0; null
    /// for any other index.
    virtual const char* GetImplementedName(int32_t index) = 0;

    /// Slot 14. Returns the number of interfaces that the component requires: 6.
    virtual int32_t GetRequiredCount() = 0;

    /// Slot 15. Returns the name of required interface `index`, from 0; null for
    /// any other index. In order: "IOrnAPI", "IOrnVETMTrace", "IOrnTraceClient",
    /// "IOrnXTraceClient", "IOrnXTrace", "IOrnEmu". Open can't do without the first two,
    /// Init and Apply have nothing to work with without the second, and whoever attaches
    /// the second attaches "IOrnXTraceClient" too. The others are optional.
    virtual const char* GetRequiredName(int32_t index) = 0;

    /// Slot 16. Returns 0 for every argument.
    virtual int32_t GetRequiredOption(int32_t index) = 0;

    /// Slot 17. Returns what is attached for `name` at present, or null; null for
    /// an unknown name, compared like that of AttachInterface. An attachment that waits
    /// is not attached yet.
    virtual IOrnInterface* GetAttachedInterface(const char* name) = 0;

protected:
    ~IOrnObject() = default;
};

#endif
