#include "host/remote/OpenOcdBus.h"

#include <algorithm>

#include "host/support/host_error.h"
#include "host/support/words.h"

namespace etmhost {

namespace {

constexpr char kEnd = '\x1A'; // ends commands and answers
constexpr uint32_t kMostWords = 4096;

// A name that the server gave, and that can stand in a command.
bool IsPlainName(const std::string& name) {
    return !name.empty() && name.front() != '-' &&
           std::all_of(
               name.begin(), name.end(),
               [](char c) {
                   return IsLetter(c) || IsDigit(c) || c == '_' || c == '.' || c == '-' || c == ':';
               });
}

std::string Reason(const std::string& text) {
    return text.empty() ? "OpenOCD gives no reason, its log may" : text;
}

} // namespace

OpenOcdBus::OpenOcdBus(Connection connection, std::string place, std::ostream& told,
                       std::chrono::milliseconds patience)
    : m_Connection(std::move(connection)), m_Place(std::move(place)), m_Patience(patience) {
    try {
        Examine(told);
    } catch (const BusLost&) {
        throw HostError(m_Place + " is not the Tcl port of OpenOCD: " + m_Connection.reason());
    }
}

void OpenOcdBus::Examine(std::ostream& told) {
    const Deadline deadline(m_Patience);
    const std::string version = Ask("version", deadline);
    if (!version.starts_with("Open On-Chip Debugger")) Lose("it answers " + Excerpt(version));
    const TclResult current = Run("target current", deadline);
    if (!current.succeeded || current.text.empty())
        throw HostError("OpenOCD at " + m_Place + " has no target: its configuration names none");
    m_Target = current.text;
    const TclResult names = Run("target names", deadline);
    const auto list = ParseTclList(names.text);
    if (names.succeeded && list && list->size() > 1) {
        told << "OpenOCD has " << list->size()
             << " targets; its current one is taken: " << Excerpt(m_Target) << "\n"
             << std::flush;
    }
}

void OpenOcdBus::Lose(const std::string& reason) {
    m_Connection.Close(reason);
    throw BusLost("The connection to OpenOCD at " + m_Place + " is lost: " + reason);
}

std::string OpenOcdBus::Ask(const std::string& command, Deadline deadline) {
    std::string answer;
    try {
        // Who has closed the connection is found out here, not after a command.
        if (m_Connection.HasInput(Deadline(std::chrono::milliseconds(0))))
            Lose("it sends what nobody asked for: " + Excerpt(m_Connection.Receive(deadline)));
        m_Connection.Send(command + kEnd, deadline);
        while (answer.find(kEnd) == std::string::npos) {
            if (answer.size() > kAnswerLimit) Lose("its answer has no end: " + Excerpt(answer));
            if (!answer.empty() && (deadline.IsOver() || !m_Connection.HasInput(deadline)))
                Lose("its answer breaks off: " + Excerpt(answer));
            answer += m_Connection.Receive(deadline);
        }
    } catch (const ConnectionLost& lost) {
        Lose(lost.what());
    }
    if (answer.find(kEnd) != answer.size() - 1)
        Lose("it answers more than it was asked: " + Excerpt(answer));
    answer.pop_back();
    return answer;
}

TclResult OpenOcdBus::Run(const std::string& command, Deadline deadline) {
    // The variable is one of the server's, where its user may have others.
    const std::string answer =
        Ask("list [catch {" + command + "} etmhost_result] $etmhost_result", deadline);
    std::optional<TclResult> result = ParseTclResult(answer);
    if (!result) Lose("its answer makes no sense: " + Excerpt(answer));
    return std::move(*result);
}

std::vector<uint32_t> OpenOcdBus::Read(std::span<const uint32_t> addresses) {
    if (addresses.empty()) return {};
    const std::vector<AddressRun> runs = Runs(addresses, kMostWords);
    std::string command;
    for (const AddressRun& run : runs) {
        const std::string part =
            "read_memory " + Hex(run.address) + " 32 " + std::to_string(run.count);
        command += runs.size() == 1 ? part : " [" + part + "]";
    }
    const TclResult result =
        Run(runs.size() == 1 ? command : "concat" + command, Deadline(m_Patience));
    if (!result.succeeded) {
        throw BusError("Cannot read " + AddressText(addresses) + " of " + m_Target + ": " +
                       Reason(result.text));
    }
    std::optional<std::vector<uint32_t>> words = ParseTclNumbers(result.text, addresses.size());
    if (!words) {
        Lose("not " + std::to_string(addresses.size()) +
             " words of 32 bits: " + Excerpt(result.text));
    }
    return std::move(*words);
}

void OpenOcdBus::Write(uint32_t address, uint32_t value) {
    const TclResult result =
        Run("write_memory " + Hex(address) + " 32 {" + Hex(value) + "}", Deadline(m_Patience));
    if (!result.succeeded) {
        throw BusError("Cannot write " + Hex(address) + " of " + m_Target + ": " +
                       Reason(result.text));
    }
    if (!result.text.empty()) Lose("it answers a write with " + Excerpt(result.text));
}

std::string OpenOcdBus::CoreType() {
    if (!IsPlainName(m_Target)) return {};
    const TclResult type = Run(m_Target + " cget -type", Deadline(m_Patience));
    return type.succeeded && IsPlainName(type.text) ? type.text : std::string();
}

Refusal OpenOcdBus::PreparePort(uint32_t width) {
    const Deadline deadline(m_Patience);
    const TclResult names = Run("tpiu names", deadline);
    const auto ports = ParseTclList(names.text);
    if (!names.succeeded || !ports)
        return "OpenOCD tells nothing of trace ports: " + Reason(names.text);
    if (ports->empty())
        return "OpenOCD's script for this target has no trace port (\"tpiu create\"): a board file "
               "can prepare the pins";
    if (ports->size() > 1)
        return "OpenOCD has several trace ports and does not tell which is meant: " +
               Excerpt(names.text);
    const std::string& port = ports->front();
    if (!IsPlainName(port) || !IsPlainName(m_Target))
        return "OpenOCD has a trace port whose name is not understood: " + Excerpt(port);

    const TclResult clock = Run(port + " cget -traceclk", deadline);
    if (clock.succeeded && clock.text == "0")
        return "OpenOCD's trace port has no clock: tell OpenOCD \"" + port +
               " configure -traceclk HZ\", with the clock of the core in Hz";
    const TclResult output = Run(port + " cget -output", deadline);
    if (output.succeeded && !output.text.empty() && output.text != "external")
        return "OpenOCD's trace port serves the debug probe (" + Excerpt(output.text) +
               "): tell OpenOCD \"" + port + " disable\" and \"" + port +
               " configure -output external\"";

    const std::string steps[] = {
        port + " disable", // an enabled one can't be configured
        port + " configure -protocol sync -port-width " + std::to_string(width) +
            " -output external",
        port + " enable",
    };
    Refusal refusal;
    for (const std::string& step : steps) {
        const TclResult result = Run(step, deadline);
        if (result.succeeded) continue;
        refusal = "OpenOCD refuses \"" + step + "\": " +
                  (result.text.empty()
                       ? "it gives no reason. Its log has one: a port that lacks this width, a "
                         "trace clock that is not set, or an access that failed"
                       : result.text);
        break;
    }
    // What the script does ahead of the port may have chosen another target.
    const TclResult current = Run("target current", deadline);
    if (!current.succeeded || current.text != m_Target) {
        const TclResult back = Run("targets " + m_Target, deadline);
        if (!back.succeeded) Lose("it has left " + m_Target + ": " + Reason(back.text));
    }
    return refusal;
}

} // namespace etmhost
