// QemuMachine: a Cortex-M board without trace hardware, simulated by QEMU, behind its GDB server.

#pragma once

#include <string>

#include "tests/support/Program.h"

/// Runs an endless loop. It has begun, and listens, when the constructor is through.
class QemuMachine {
public:
    QemuMachine() {
        if (!Program::Listens(m_Monitor)) throw std::runtime_error(m_Program.Output());
        m_Questions = etmhost::Connection::To("", m_Monitor, Soon());
        Ask("qmp_capabilities"); // answered when it has begun
    }

    const uint16_t gdbPort = Program::FreePort();

    /// Returns whether its core runs.
    bool Runs() { return Ask("query-status").find("\"running\": true") != std::string::npos; }

private:
    static etmhost::Deadline Soon() { return etmhost::Deadline(std::chrono::seconds(10)); }

    std::string Ask(const std::string& command) {
        m_Questions->Send("{\"execute\":\"" + command + "\"}", Soon());
        std::string answer;
        while (answer.find("\"return\"") == std::string::npos || answer.back() != '\n')
            answer += m_Questions->Receive(Soon());
        return answer;
    }

    // The stack pointer, the first instruction's address, and a loop.
    static std::string Image() {
        using namespace std::string_literals;
        return "\0\x10\0\x20\x09\0\0\0\xFE\xE7\xFE\xE7"s;
    }

    const TemporaryDirectory m_Directory;
    const uint16_t m_Monitor = Program::FreePort();
    const Program m_Program{{"qemu-system-arm", "-M", "mps2-an386", "-kernel",
                             m_Directory.Write("image", Image()), "-display", "none", "-serial",
                             "null", "-monitor", "none", "-gdb",
                             "tcp:127.0.0.1:" + std::to_string(gdbPort), "-qmp",
                             "tcp:127.0.0.1:" + std::to_string(m_Monitor) + ",server=on,wait=off"}};
    std::optional<etmhost::Connection> m_Questions;
};
