// IOrnInterface: the root of every interface that the module and its host
// exchange.
//
// What it is     Six identity operations. Every object that crosses the module's
//                border, in either direction, begins with these six slots.
// Who owns it    Whoever made it. The module never frees, counts or releases an
//                object of the host, and a host frees an object of the module
//                only through IOrnAPIBase::DestroyRowObject.
// Which thread   All calls, in both directions, are made on the one thread on
//                which the host calls the module.
//
// Rules for all interfaces:
//  * Abstract classes without data, without overloads and without a virtual
//    destructor: an object is its table of operations, in the order in which
//    the header declares them. "Slot n" is the n-th entry of that table, from 0.
//    orn.h has the tables for C; on 32-bit Windows operations are __thiscall.
//  * Text is 8-bit and NUL-terminated. A text that an operation returns belongs
//    to the object that returned it and remains valid at least until the next
//    call on the same interface.
//  * Whole numbers have 32 bits; ids, words and masks are unsigned. Truth is one
//    byte: the host answers with an OrnBool, of which zero is false and everything else
//    true, and whatever stands beside that byte in the register is not looked at. The
//    module answers with a `bool`, one byte, 0 or 1.
//  * No exception crosses the border.
//  * The host's operations are called while the host itself is inside an operation
//    of the module. From there it may call the module's in turn. What can't be done at
//    that moment is refused (Init) or waits for the end of the calls that are on their
//    way (AttachInterface, DetachInterface, DestroyRowObject); calls that nest deeper
//    than eight return false.
//  * Which thread: the first one on which IOrnKVETMCtrl::Open shows a window is the one
//    from then on, for all components. In a host with a Qt application of its own that
//    is the application's thread. A process forked from one that has shown windows
//    can't show any.
//  * On Linux a library that was loaded once stays mapped: the window toolkit keeps
//    pointers into it. Loading it again finds its state as it was left, the attached
//    interfaces among it. So detach, and destroy the component, before unloading.
//  * Who makes the application object of the window toolkit (Linux): the host, if it has
//    one, and it stays the host's; otherwise the module at the first window, until its
//    last component is destroyed. A host that means to have its own makes it first.
//    Once another application object has existed beside it, the module's stays for good.

#ifndef IORNINTERFACE_H
#define IORNINTERFACE_H

#include <cstdint>

/// What a host's operation answers where the question is yes or no: 0 is no, any
/// other value is yes. One byte; only that byte counts.
typedef uint8_t OrnBool;

class IOrnInterface {
public:
    /// Slot 0. Returns the name of the interface that this object implements,
    /// "IOrnAPI" for example. Static text.
    virtual const char* GetInterfaceName() = 0;

    /// Slot 1. Returns the version of that interface, a plain whole number to be
    /// tested for a minimum. Who implements all operations that a header declares
    /// answers with that header's ORN_..._VERSION.
    virtual int32_t GetInterfaceVersion() = 0;

    /// Slot 2. Returns the name of the component that implements it. Static text.
    virtual const char* GetComponentName() = 0;

    /// Slot 3. Returns the version of the implementation: 107 stands for 1.7.0.0.
    virtual int32_t GetComponentVersion() = 0;

    /// Slot 4. Returns an object that offers the interface `name`, or null.
    /// Names are compared exactly. The object stays with its owner.
    virtual IOrnInterface* GetInterface(const char* name) = 0;

    /// Slot 5. Tells the owner that `object` is no longer used. Objects of this
    /// module do nothing at all.
    virtual void ReleaseInterface(IOrnInterface* object) = 0;

protected:
    ~IOrnInterface() = default; // never deleted through an interface
};

#endif
