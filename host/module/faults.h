// Failures and delays of the host on request: what becomes of the module, and of a person, when the
// target refuses or is slow.

#pragma once

#include <chrono>
#include <string>
#include <vector>

#include "host/module/answered_objects.h"

namespace etmhost {

/// The longest delay of one call.
inline constexpr std::chrono::milliseconds kLongestDelay(60'000);

/// Stands in front of a host's objects. A call that has to fail is told among the events as any
/// refusal is, and does not reach the object below.
///
/// Calls are named by OPERATION[:ARGUMENT][@COUNT]. OPERATION is one of the host's interfaces, with
/// the interface and a point ahead where only that one's is meant. ARGUMENT is its first argument,
/// or several with commas between; a number as 16 or 0x10, a text as it is, with * for any
/// characters. COUNT: of the calls that the rest names only that one, counted from 1 since the
/// program began.
class Faults final : public Answerer {
public:
    explicit Faults(record::EventStream& events) : m_Events(events) {}

    /// Takes CALLS[=REASON]. Where an argument holds "=" itself, each place may be the one that
    /// divides: a call decides. Throws HostError with what is wrong.
    void Fail(const std::string& text);

    /// Takes CALLS=TIME, such as 500ms or 2s. Throws HostError too.
    void Delay(const std::string& text);

    bool Answer(record::Event& call) override;

    /// Returns a sentence about each that has met no call.
    std::vector<std::string> Unmet() const;

private:
    /// Calls, and how many of them there were.
    struct Calls {
        std::string object; ///< empty: any
        std::string operation;
        std::vector<std::string> arguments; ///< patterns
        uint64_t count = 0;                 ///< 0: all of them
        uint64_t seen = 0;
        std::string reason;

        bool Meet(const record::Event& call);
    };
    struct Fault {
        std::string option; ///< as it was given
        std::vector<Calls> readings;
        std::chrono::milliseconds delay{0};
        bool met = false;
    };

    static Calls ParseCalls(const std::string& text);
    static const std::string* Met(Fault& fault, const record::Event& call);

    record::EventStream& m_Events;
    std::vector<Fault> m_Failures, m_Delays;
};

} // namespace etmhost
