#include "host/commandline/watch.h"

#include <algorithm>
#include <iostream>
#include <limits>
#include <string_view>

#include "host/commandline/echo.h"
#include "host/support/system.h"

namespace etmhost {

namespace {

constexpr std::chrono::milliseconds kPeriod(600); // the dialog's own
constexpr size_t kUsualWidth = 80;

// Cuts `text` to `width` bytes, with dots for what is left out, and no character of UTF-8 in two.
std::string Cut(std::string text, size_t width) {
    constexpr std::string_view kDots = "...";
    if (text.size() <= width) return text;
    const std::string_view end = kDots.substr(0, width);
    width -= end.size();
    while (width > 0 && (static_cast<unsigned char>(text[width]) & 0xC0) == 0x80) --width;
    return text.substr(0, width).append(end);
}

} // namespace

Watch::Watch(SimulatedHost& host, bool everyCall)
    : m_Host(host), m_EveryCall(everyCall),
      m_OnErrors(!IsTerminal(Output::Standard) && IsTerminal(Output::Errors)),
      m_OnTerminal(m_OnErrors || IsTerminal(Output::Standard)),
      m_Out(m_OnErrors ? std::cerr : std::cout), m_Seen(host.target.state.capture) {
    m_Host.events.AddFirst(m_Eraser);
    m_Host.events.Add(m_Drawer);
    m_Clock = std::thread([this] { LookByClock(); });
}

Watch::~Watch() {
    {
        const auto lock = m_Host.events.Lock();
        Leave();
    }
    m_Ended.notify_one();
    m_Clock.join();
    m_Host.events.Remove(m_Eraser);
    m_Host.events.Remove(m_Drawer);
}

void Watch::Eraser::Write(const record::Event& event) {
    // Where nothing else is printed, the line need not flicker.
    if (m_Watch.m_EveryCall || event.refusal || event.operation == "note" ||
        !EchoLine(event).empty())
        m_Watch.Erase();
}

void Watch::Drawer::Write(const record::Event& event) {
    if (event.operation == "GetTraceState")
        m_Watch.m_Polled = std::chrono::steady_clock::now();
    else if (const std::string line = EchoLine(event); !line.empty()) {
        m_Watch.m_Sent = line;
        m_Watch.m_SentRefused = event.refusal.has_value(); // which then tells it
    }
    m_Watch.m_Seen = m_Watch.m_Host.target.state.capture;
    if (event.refusal && m_Watch.m_News.Has(event))
        m_Watch.m_Refused = Escape(RefusedPart(event) + ": " + *event.refusal);
    m_Watch.Draw();
    const bool shows = event.operation == "Open" || event.operation == "InitBoardFile";
    if (shows && event.phase == record::Event::Phase::Return) m_Watch.Leave();
}

// The dialog looks at the capture on one of its pages only. Behind the others this does, and keeps
// what it sees to itself: the dialog has to find out by itself what has changed.
void Watch::LookByClock() {
    auto lock = m_Host.events.Lock();
    while (!m_Ended.wait_for(lock, kPeriod, [this] { return m_Over; })) {
        if (std::chrono::steady_clock::now() - m_Polled > 2 * kPeriod) {
            Capture& capture = m_Host.target.state.capture;
            const Capture before = capture;
            try {
                m_Host.target.Look();
                m_Seen = capture;
            } catch (const std::exception& error) {
                m_Refused = Escape(error.what());
            }
            capture = before;
        }
        Draw();
    }
}

// The line in `width` bytes. The command and the refusal share what the state leaves; what one of
// them does not need, the other gets.
std::string Watch::Line(size_t width) const {
    std::string line = State(true);
    std::string sent = m_Sent.empty() || m_SentRefused ? "" : " | sent: " + m_Sent;
    std::string refused = m_Refused.empty() ? "" : " | refused: " + m_Refused;
    if (line.size() + sent.size() + refused.size() > width) line = Cut(State(false), width);
    const size_t room = width - line.size(), half = room / 2;
    sent = Cut(sent, std::max(half, room - std::min(room, refused.size())));
    return line + sent + Cut(refused, room - sent.size());
}

std::string Watch::State(bool withCapacity) const {
    const uint32_t capacity = m_Host.target.hardware().capacity;
    const uint32_t control = m_Host.target.state.control;
    constexpr uint32_t kArmed = ORN_CONTROL_TRIGGER_ADDRESS | ORN_CONTROL_TRIGGER_PIN;
    std::string line = m_Seen.running ? "running" : "stopped";
    if (m_OnTerminal && capacity > 0) {
        const uint64_t percent = uint64_t{m_Seen.captured} * 100 / capacity;
        line += ", " + std::to_string(percent) + " %";
        if (withCapacity) line += " of " + std::to_string(capacity) + " words";
    }
    line += std::string(", trigger ") + (m_Seen.triggered          ? "occurred"
                                         : (control & kArmed) != 0 ? "armed"
                                                                   : "off");
    return line;
}

size_t Watch::Width() const {
    const size_t width = TerminalWidth(m_OnErrors ? Output::Errors : Output::Standard);
    return (width > 1 ? width : kUsualWidth) - 1; // in the last column some terminals wrap
}

// No escape sequences: what overwrites is a return and blanks, as far as the line reached.
void Watch::Draw() {
    if (m_Over) return;
    const std::string line = Line(m_OnTerminal ? Width() : std::numeric_limits<size_t>::max());
    if (line == m_Shown) return;
    if (m_OnTerminal) {
        const size_t rest = std::min(m_Shown.size(), Width());
        m_Out << '\r' + line + std::string(rest - std::min(rest, line.size()), ' ') << std::flush;
    } else {
        m_Out << "# " + line + '\n' << std::flush;
    }
    m_Shown = line;
}

void Watch::Erase() {
    if (m_Over || !m_OnTerminal || m_Shown.empty()) return;
    m_Out << '\r' + std::string(std::min(m_Shown.size(), Width()), ' ') + '\r' << std::flush;
    m_Shown.clear();
}

// The last state stays, on a line that is complete.
void Watch::Leave() {
    if (!m_Over && m_OnTerminal && !m_Shown.empty()) m_Out << '\n' << std::flush;
    m_Over = true;
}

} // namespace etmhost
