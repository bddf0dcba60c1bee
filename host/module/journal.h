// The conversation between the host and the module, one line per call; and what the host refused.

#pragma once

#include <ostream>
#include <string>
#include <string_view>

namespace etmhost {

class Journal {
public:
    /// Writes calls and steps to `out` and refusals to `refusals`, which must outlive the journal;
    /// null: they are not written.
    explicit Journal(std::ostream* out = nullptr, std::ostream* refusals = nullptr)
        : m_Out(out), m_Refusals(refusals) {}

    bool enabled() const { return m_Out != nullptr; }

    /// A call of the module to the host with the host's answer: "call -> answer".
    void Call(const std::string& call, const std::string& answer);

    /// What the host refused, and why: see PrintRefusal.
    void Refused(std::string_view command, std::string_view reasons);

    /// What the host does beside what it was asked for; it goes where refusals go.
    void Tell(const std::string& text);

    /// A step of the host itself: "-- text".
    void Step(const std::string& text);

private:
    void Write(const std::string& line);

    std::ostream* m_Out;
    std::ostream* m_Refusals;
};

} // namespace etmhost
