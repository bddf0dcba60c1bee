// ScriptedServer: a debug server on a thread, which answers as a test tells it to.

#pragma once

#include <functional>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "host/remote/Connection.h"

/// Serves one caller, at a port of its own at the loopback address. Must outlive the caller's end:
/// it goes when that has gone.
class ScriptedServer {
public:
    /// Stand behind an answer: the server closes the connection there, or says the same again and
    /// again until the caller has gone.
    static constexpr char kHangUp = '\x04', kForever = '\x05';

    /// `answer` gives the bytes to send for each question: a Tcl command without its end, or the
    /// inside of a GDB packet. What it leaves empty is not answered. Every answer comes in two
    /// pieces. `greeting` is sent ahead of all questions.
    explicit ScriptedServer(std::function<std::string(const std::string& question)> answer,
                            std::string greeting = "")
        : m_Thread([this, answer = std::move(answer), greeting = std::move(greeting)] {
              try {
                  Serve(answer, greeting);
              } catch (const etmhost::ConnectionLost&) { // the caller has gone
              }
          }) {}
    ~ScriptedServer() { m_Thread.join(); }

    etmhost::Connection Connect() const {
        return etmhost::Connection::To("", m_Listener.port(), Soon());
    }

    uint16_t port() const { return m_Listener.port(); }

    /// Returns what it was asked.
    std::vector<std::string> Questions() const {
        const std::lock_guard lock(m_Mutex);
        return m_Questions;
    }

private:
    static etmhost::Deadline Soon() { return etmhost::Deadline(std::chrono::seconds(10)); }

    void Serve(const std::function<std::string(const std::string&)>& answer,
               const std::string& greeting) {
        std::optional<etmhost::Connection> caller = m_Listener.Accept(Soon());
        if (!caller) return;
        caller->Send(greeting, Soon());
        for (std::string bytes;;) {
            bytes.erase(0, bytes.find_first_not_of('+'));
            const bool packet = bytes.starts_with('$'), refused = bytes.starts_with('-');
            const size_t end = refused ? 0 : bytes.find(packet ? '#' : '\x1A');
            const size_t size = refused ? 1 : end + (packet ? 3 : 1);
            if (end == std::string::npos || size > bytes.size() || bytes.empty()) {
                bytes += caller->Receive(Soon());
                continue;
            }
            const std::string question =
                refused ? "-" : bytes.substr(packet ? 1 : 0, end - (packet ? 1 : 0));
            bytes.erase(0, size);
            {
                const std::lock_guard lock(m_Mutex);
                m_Questions.push_back(question);
            }
            const std::string all = answer(question),
                              sent = all.substr(0, all.find_first_of("\x04\x05"));
            caller->Send(sent.substr(0, sent.size() / 2), Soon());
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
            caller->Send(sent.substr(sent.size() / 2), Soon());
            while (all.ends_with(kForever)) caller->Send(sent, Soon());
            if (sent != all) return;
        }
    }

    etmhost::Listener m_Listener{0};
    mutable std::mutex m_Mutex;
    std::vector<std::string> m_Questions;
    std::thread m_Thread; // the last: it uses the others
};
