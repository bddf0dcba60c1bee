// IOrnIParam: numeric parameters of a component.
//
// What it is     Four operations that every component of this family offers. The
//                control component has no parameters and answers 0 to all four.
// Who owns it    It is a base of the component, see IOrnKVETMCtrl.h.
// Which thread   The host's one thread (see IOrnInterface.h).

#ifndef IORNIPARAM_H
#define IORNIPARAM_H

#include "IOrnInterface.h"

class IOrnIParam : public IOrnInterface {
public:
    /// Slot 6. Returns the number of parameters.
    virtual int32_t GetParamCount() = 0;

    /// Slot 7. Returns 0; neither argument is looked at.
    virtual int32_t GetParam(uint32_t id, uint32_t argument) = 0;

    /// Slot 8. Returns 0; neither argument is looked at.
    virtual int32_t SetParam(uint32_t id, uint32_t value) = 0;

    /// Slot 9. Returns 0; neither argument is looked at.
    virtual int32_t CheckParam(uint32_t id, uint32_t value) = 0;

protected:
    ~IOrnIParam() = default;
};

#endif
