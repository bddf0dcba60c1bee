// The journal for programs: a file of JSON lines.

#pragma once

#include <fstream>
#include <string>

#include "host/record/Event.h"

namespace etmhost {

class JournalFile final : public record::EventWriter {
public:
    /// Makes `name`, or empties it. Throws HostError if that is not possible.
    explicit JournalFile(const std::string& name);

    /// Each line is the system's before this returns: a program that crashes loses none but the one
    /// that it was writing.
    void Write(const record::Event& event) override;

    /// Returns true iff something could not be written. That was told on standard error, once.
    bool Failed() const { return m_Failed; }

private:
    const std::string m_Name;
    std::ofstream m_Out;
    bool m_Failed = false;
};

} // namespace etmhost
