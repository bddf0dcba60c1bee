// Watchdog: notices that the windows never let an interpreter work.

#pragma once

#include <chrono>
#include <condition_variable>
#include <functional>
#include <mutex>
#include <thread>

#include "host/drive/Interpreter.h"

namespace etmhost {

/// Calls `bite`, on a thread of its own, whenever nobody has called Interpreter::Tick for
/// `patience`: then something blocks the windows' thread, and nothing else would come to an end
/// either.
class Watchdog {
public:
    Watchdog(const Interpreter& interpreter, std::function<void()> bite,
             std::chrono::milliseconds patience = std::chrono::seconds(30))
        : m_Patience(patience),
          m_Thread([this, &interpreter, bite = std::move(bite)] { Watch(interpreter, bite); }) {}
    ~Watchdog() {
        {
            const std::lock_guard lock(m_Mutex);
            m_Over = true;
        }
        m_Changed.notify_one();
        m_Thread.join();
    }
    Watchdog(const Watchdog&) = delete;
    Watchdog& operator=(const Watchdog&) = delete;

private:
    void Watch(const Interpreter& interpreter, const std::function<void()>& bite) {
        std::unique_lock lock(m_Mutex);
        for (unsigned ticks = interpreter.ticks();; ticks = interpreter.ticks()) {
            if (m_Changed.wait_for(lock, m_Patience, [this] { return m_Over; })) return;
            if (interpreter.ticks() == ticks) bite();
        }
    }

    const std::chrono::milliseconds m_Patience;
    std::mutex m_Mutex;
    std::condition_variable m_Changed;
    bool m_Over = false;
    std::thread m_Thread; // the last: it uses the others
};

} // namespace etmhost
