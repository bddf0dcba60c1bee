// Writers of the conversation between the host and the module, for people: one line per call; and
// what the host refused.

#pragma once

#include <ostream>

#include "host/record/Event.h"

namespace etmhost {

/// Returns an event as its line of the journal, "call -> answer" or "-- step"; empty for one that
/// only a machine wants to know. A refusal has its reason behind it.
std::string JournalLine(const record::Event& event);

/// Returns a call without its answer, and one value of it, as they stand there.
std::string CallWords(const record::Event& event);
std::string ValueWords(const record::Event& event, const record::Value& value);

/// Returns what a refusal is about: a command as it is, of an action what it works on, or the call.
std::string RefusedPart(const record::Event& event);

/// Says of polls of the capture whether they tell anything new. The dialog polls by its clock: only
/// news is told, so that it does not depend on how fast the machine and its user are.
class PollNews {
public:
    /// Returns true iff `event` is no poll, or one whose state or refusal is not that of the last.
    bool Has(const record::Event& event);

private:
    std::optional<record::Event> m_Last;
};

/// Writes the journal. Lines are flushed, so that the dialog and its journal can be watched
/// together.
class TextJournal final : public record::EventWriter {
public:
    /// `out` must outlive the writer. Each line has `prefix` ahead of it.
    explicit TextJournal(std::ostream& out, const char* prefix = "")
        : m_Out(out), m_Prefix(prefix) {}
    void Write(const record::Event& event) override;

private:
    std::ostream& m_Out;
    const char* const m_Prefix;
    PollNews m_News;
};

/// Writes refusals and notes alone, as PrintRefusal does.
class RefusalPrinter final : public record::EventWriter {
public:
    /// `out` must outlive the writer.
    explicit RefusalPrinter(std::ostream& out) : m_Out(out) {}
    void Write(const record::Event& event) override;

private:
    std::ostream& m_Out;
    PollNews m_News; // a target that does not answer says so once, not with each look
};

} // namespace etmhost
