// What goes to and fro between a host and the module, call by call. Whoever loads the module can
// record this: the folder needs nothing of the rest of the host.

#pragma once

#include <cstdint>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

namespace record {

/// An argument or a result: null, yes or no, a number, or a text of any bytes. An object stands as
/// the name of its interface.
using Value = std::variant<std::nullptr_t, bool, int64_t, std::string>;

/// Returns `text` as a value; null stays null.
inline Value Text(const char* text) {
    return text != nullptr ? Value(text) : Value(nullptr);
}

/// A value by name. In arguments a pointer to what receives a result stands as whether there was
/// one; in results it stands as what was put there. "return" is what the operation returned.
using Fields = std::vector<std::pair<std::string, Value>>;

/// Returns the value `name`, or null if there is none of that name.
const Value* Find(const Fields& fields, std::string_view name);

/// Returns the text `name`; empty if there is no text of that name.
std::string TextOf(const Fields& fields, std::string_view name);

/// Returns whether the value `name` is there and neither null, nor no, nor 0.
bool IsTrue(const Fields& fields, std::string_view name);

struct Event {
    enum class Direction {
        ToHost,   ///< the module calls the host
        ToModule, ///< the host calls the module
        Host,     ///< the host tells something of itself: "begin", "target", "step", "note"
    };
    /// A call from which others come back is told twice, so that they stand between the two.
    enum class Phase { Whole, Call, Return };

    Direction direction = Direction::Host;
    Phase phase = Phase::Whole;
    std::string object{}; ///< the interface that was called; empty if the host tells something
    std::string operation;
    Fields arguments{};                   ///< none behind Return
    Fields results{};                     ///< none behind Call
    std::optional<std::string> refusal{}; ///< why the host refused it, in words

    bool operator==(const Event&) const = default;
};

class EventWriter {
public:
    virtual ~EventWriter() = default;
    virtual void Write(const Event& event) = 0;
};

/// Hands events to writers, in the order in which those were added. May be used by several threads.
class EventStream {
public:
    EventStream() = default;
    EventStream(const EventStream&) = delete;
    EventStream& operator=(const EventStream&) = delete;

    /// `writer` must outlive the stream, or be removed ahead of its end.
    void Add(EventWriter& writer);
    void AddFirst(EventWriter& writer); ///< ahead of all others
    void Remove(EventWriter& writer);

    void Write(const Event& event);

    /// Writes that the host tells something of itself.
    void Tell(const char* operation, Fields arguments);

    /// A step of whoever works at the host, and what the host does beside what it was asked for: an
    /// event "step" or "note" with a "text". A note stands ahead of the call that it belongs to.
    void Step(const std::string& text);
    void Note(const std::string& text);

    /// Keeps others from writing, and so from what they do in a call that they tell of.
    std::unique_lock<std::recursive_mutex> Lock() { return std::unique_lock(m_Mutex); }

private:
    std::recursive_mutex m_Mutex;
    std::vector<EventWriter*> m_Writers;
};

} // namespace record
