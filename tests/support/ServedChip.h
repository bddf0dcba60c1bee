// ServedChip: a simulated chip offered by "etmhost serve", and the real OpenOCD attached to it.

#pragma once

#include "host/remote/Connection.h"
#include "tests/support/Program.h"
#include "tests/support/built.h"

/// All ports are the system's choice. Both programs go with the object.
class ServedChip {
public:
    explicit ServedChip(const std::string& chip = "cortex-m4")
        : probe({built::kEtmhost, "serve", "--chip", chip, "--port", "0"}),
          probePort(PortOf(probe, "listening on port ", "\n")),
          openocd({"openocd", "-c",
                   "set PORT " + std::to_string(probePort) +
                       "; set TCL_PORT 0; set GDB_PORT 0; set TELNET_PORT disabled",
                   "-f", built::kEtmhostConfiguration}),
          gdbPort(PortOf(openocd, "port ", " for gdb")),
          tclPort(PortOf(openocd, "port ", " for tcl")),
          m_Tcl(etmhost::Connection::To("", tclPort, Soon())) {}

    /// Returns what OpenOCD answers to a Tcl command.
    std::string Ask(const std::string& command) {
        m_Tcl.Send(command + '\x1A', Soon());
        std::string answer;
        while (!answer.ends_with('\x1A')) answer += m_Tcl.Receive(Soon());
        answer.pop_back();
        return answer;
    }

    /// Returns the word at `address`, as OpenOCD prints it: "0x411".
    std::string Word(uint32_t address) {
        return Ask("read_memory " + std::to_string(address) + " 32 1");
    }

    Program probe;
    const uint16_t probePort;
    Program openocd;
    const uint16_t gdbPort, tclPort;

    static etmhost::Deadline Soon() { return etmhost::Deadline(std::chrono::seconds(10)); }

    /// Waits until `program` prints the port that it listens at, between these words.
    static uint16_t PortOf(const Program& program, const std::string& before,
                           const std::string& behind) {
        std::string output;
        size_t begin = 0, end = 0;
        if (!Program::Within([&] {
                output = program.Output();
                end = output.find(behind);
                begin = output.rfind(before, end);
                return end != std::string::npos && begin != std::string::npos;
            }))
            throw std::runtime_error("never listens, but prints: " + program.Output());
        begin += before.size();
        return uint16_t(std::stoi(output.substr(begin, end - begin)));
    }

private:
    etmhost::Connection m_Tcl;
};
