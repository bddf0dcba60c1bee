// The host's objects, where something else answers for them: a recording, or somebody who tries
// what becomes of a failure. Each operation becomes an event, and its answer is made of the event.

#pragma once

#include <functional>
#include <memory>
#include <string>
#include <string_view>

#include "frame/interfaces/IOrnInterface.h"
#include "host/record/Event.h"

namespace etmhost {

/// Who answers the module's calls.
class Answerer {
public:
    virtual ~Answerer() = default;

    /// Writes the results of `call` into it. Returns false to leave the call to the object below.
    /// Must not throw.
    virtual bool Answer(record::Event& call) = 0;
};

/// Gives the object below for the interface of that name.
using ObjectsBelow = std::function<IOrnInterface*(const std::string& name)>;

/// The objects of one host. They live as long as it; what an operation returns as text remains
/// valid until the next call on the same object, and names remain valid as long as the host.
class AnsweredHost {
public:
    /// `answerer` must outlive this, and so must what `below` gives. Without it each call has to be
    /// answered. `suffix` stands behind the names of the objects in events.
    explicit AnsweredHost(Answerer& answerer, const ObjectsBelow& below = nullptr,
                          const std::string& suffix = "");
    ~AnsweredHost();

    /// Returns the object for the interface `name`, or null.
    IOrnInterface* Find(std::string_view name);

private:
    struct Objects;
    std::unique_ptr<Objects> m_Objects;
};

/// Returns the results of a `call` that fails: `reason` for a Command, an empty name, else null, 0
/// or no, with nothing written.
record::Fields FailureOf(const record::Event& call, const std::string& reason);

} // namespace etmhost
