// The operations of all interfaces: what a call and its answer may consist of.

#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "host/record/Event.h"

namespace record {

/// One value of a call or an answer.
struct Part {
    enum class Kind {
        Text,    ///< or null
        Number,  ///< of 32 bits, with or without sign
        YesNo,   ///< or a byte, which is more than yes
        Pointer, ///< whether there was one
        Object,  ///< by its name, or null
        Any,
    };
    std::string_view name;
    Kind kind = Kind::Any;
    bool optional = false; ///< a result that was not written
};

struct Operation {
    const char* object; ///< the interface; empty: all of that direction have it
    const char* name;
    Event::Direction direction;
    std::vector<Part> arguments, results;
};

/// Returns the name of the interface of an object: "IOrnEmu" of "IOrnEmu#2", the second one.
std::string_view InterfaceOf(std::string_view object);

/// Returns all operations, in the order of the interfaces.
const std::vector<Operation>& Operations();

/// Returns the operation `name` of `object` in that direction, or null.
const Operation* FindOperation(Event::Direction direction, std::string_view object,
                               std::string_view name);

/// Returns what keeps `event` from being a call between host and module, or a part of one; empty
/// if nothing does.
std::string FaultOf(const Event& event);

} // namespace record
