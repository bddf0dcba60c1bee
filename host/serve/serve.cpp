#include "host/serve/serve.h"

#include <algorithm>

#include "host/serve/BitbangSession.h"
#include "host/serve/DebugPort.h"

namespace etmhost {

namespace {

using namespace std::chrono_literals;

constexpr auto kTick = 100ms;
constexpr int kMicrosecondsEach = 10; // for an instruction: enough to see it run
constexpr auto kSendTime = 10s;       // for a caller that does not read what it asked for

class Service {
public:
    Service(const ServedChip& chip, const std::atomic<bool>& stop)
        : m_Chip(chip), m_Stop(stop), m_Core(chip.registers, chip.core, chip.reset),
          m_Memory(m_Core, chip.romTable), m_Port(m_Memory), m_Tap(m_Port) {}

    void Run(Listener& listener, bool once) {
        while (!m_Stop) {
            std::optional<Connection> caller = listener.Accept(Deadline(kTick));
            LetTimePass();
            if (!caller) continue;
            try {
                Converse(*caller);
            } catch (const ConnectionLost&) { // the next one may come
            }
            m_Core.HoldReset(false); // nobody pulls at the line any more
            TellChange();
            if (once) return;
        }
    }

private:
    void Converse(Connection& caller) {
        BitbangSession session(m_Tap, [this](bool held) { m_Core.HoldReset(held); });
        std::string answer;
        for (bool goesOn = true; goesOn && !m_Stop;) {
            const bool input = caller.HasInput(Deadline(kTick));
            LetTimePass();
            if (!input) continue;
            answer.clear();
            goesOn = session.Take(caller.Receive(Deadline(kTick)), answer);
            if (!answer.empty()) caller.Send(answer, Deadline(kSendTime));
            TellChange();
        }
    }

    void LetTimePass() {
        const auto now = Deadline::Clock::now();
        // Of a long pause only its end is made up for.
        const auto since = std::min<Deadline::Clock::duration>(now - m_Ran, kTick);
        const auto due = std::chrono::duration_cast<std::chrono::microseconds>(since);
        m_Core.Run(uint32_t(due.count() / kMicrosecondsEach));
        m_Ran = now;
        if (now - m_Stepped >= kTick) {
            m_Core.Step();
            m_Stepped = now;
        }
    }

    void TellChange() {
        if (m_Core.TakeChipWritten() && m_Chip.changed) m_Chip.changed();
    }

    const ServedChip& m_Chip;
    const std::atomic<bool>& m_Stop;
    CoreDebug m_Core;
    MemoryAccessPort m_Memory;
    DebugPort m_Port;
    Tap m_Tap;
    Deadline::Clock::time_point m_Ran = Deadline::Clock::now(), m_Stepped = m_Ran;
};

} // namespace

void Serve(const ServedChip& chip, Listener& listener, bool once, const std::atomic<bool>& stop) {
    Service(chip, stop).Run(listener, once);
}

} // namespace etmhost
