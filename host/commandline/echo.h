// What was sent to the target, as "etmhost run" takes it, and what that has changed.

#pragma once

#include <ostream>
#include <string>

#include "host/record/Event.h"

namespace etmhost {

/// Returns the command of the host's language that does what the call `event` did; empty if it has
/// sent nothing.
std::string EchoLine(const record::Event& event);

/// Writes such lines. What else there is to say stands behind "# ", which "etmhost run -" passes
/// over.
class Echo final : public record::EventWriter {
public:
    /// `out` must outlive the writer.
    explicit Echo(std::ostream& out) : m_Out(out) {}
    void Write(const record::Event& event) override;

private:
    std::ostream& m_Out;
};

/// Returns `text` with "# " ahead of each line.
std::string Remarks(const std::string& text);

/// Returns the lines in which two texts of "show" differ, below the titles that they stand under;
/// empty if they are alike.
std::string Differences(const std::string& before, const std::string& after);

} // namespace etmhost
