// A line about the target that renews itself while the dialog is open.

#pragma once

#include <chrono>
#include <condition_variable>
#include <ostream>
#include <thread>

#include "host/module/host_interfaces.h"
#include "host/module/journal.h"

namespace etmhost {

class Watch {
public:
    /// Shows the line from now on, until the dialog closes: on the terminal that the standard
    /// output is, else on that of standard error. Where there is no terminal, each news but how
    /// full the buffer is becomes a line of its own on the standard output, behind "# ".
    /// `everyCall`: another writer prints each call. `host` must outlive the watch.
    Watch(SimulatedHost& host, bool everyCall);
    ~Watch();
    Watch(const Watch&) = delete;
    Watch& operator=(const Watch&) = delete;

private:
    // Around what the other writers do with an event: the line goes, and comes back below.
    struct Eraser final : record::EventWriter {
        explicit Eraser(Watch& watch) : m_Watch(watch) {}
        void Write(const record::Event& event) override;
        Watch& m_Watch;
    };
    struct Drawer final : record::EventWriter {
        explicit Drawer(Watch& watch) : m_Watch(watch) {}
        void Write(const record::Event& event) override;
        Watch& m_Watch;
    };

    void LookByClock();
    std::string Line(size_t width) const;
    std::string State(bool withCapacity) const;
    void Draw();
    void Erase();
    void Leave();
    size_t Width() const;

    SimulatedHost& m_Host;
    const bool m_EveryCall;
    const bool m_OnErrors;
    const bool m_OnTerminal;
    std::ostream& m_Out;
    Eraser m_Eraser{*this};
    Drawer m_Drawer{*this};
    PollNews m_News;
    Capture m_Seen; // at the last look
    std::string m_Sent, m_Refused;
    bool m_SentRefused = false; // the last refusal is that of what was sent last
    std::string m_Shown;        // what stands on the line
    std::chrono::steady_clock::time_point m_Polled;
    bool m_Over = false;
    std::condition_variable_any m_Ended;
    std::thread m_Clock; // the last: it uses the others
};

} // namespace etmhost
