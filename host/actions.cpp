#include "host/actions.h"

#include <iomanip>
#include <ostream>
#include <sstream>

#include "host/report.h"

namespace etmhost {

namespace {

// Prints each line of `text` behind two blanks.
void PrintIndented(std::ostream& out, const std::string& text) {
    std::istringstream in(text);
    for (std::string line; std::getline(in, line);) {
        out << "  " << line << '\n';
    }
}

// The report without the NUL that ends it.
std::string ReportText(const std::ostringstream& stream) {
    return stream.str().c_str();
}

const char* DescribeState(const Capture& capture) {
    return !capture.running ? "stopped" : capture.triggered ? "running, triggered" : "running";
}

} // namespace

Status ShowChips(std::ostream& out) {
    for (const Chip& chip : Chips()) {
        out << std::left << std::setw(11) << chip.name << chip.description << '\n';
    }
    return kDone;
}

Status ShowTarget(SimulatedHost& host, std::ostream& out) {
    const Chip& chip = host.target.chip();
    const TargetState& state = host.target.state;
    std::ostringstream report;
    const char* refusal = host.trace.Command("capability", &report);
    out << chip.name << ": " << chip.description << "\n\nETM Resources\n";
    PrintIndented(out, refusal != nullptr ? refusal : ReportText(report));
    out << "\nTrace settings\n";
    for (uint32_t index = 0; const char* line = host.trace.GetSettingsLine(index); ++index) {
        PrintIndented(out, line);
    }
    out << "\nControl word " << Hex(state.control) << '\n';
    PrintIndented(out, DescribeControlWord(state.control));
    const uint32_t word = host.trace.GetTraceState(nullptr);
    const char* info = host.trace.GetInfoText(0);
    out << "\nCapture\n  " << DescribeState(state.capture) << ", state word " << Hex(word) << "\n  "
        << state.capture.captured << " of " << chip.bufferSize << " words in the trace buffer\n  "
        << state.triggerCount << " words to capture behind the trigger\n  " << info << '\n';
    out << "\nBoard\n  trace pins are " << (state.pinsReady ? "switched on" : "off")
        << "\n  last macro: " << (state.macro.empty() ? "none" : state.macro) << '\n';
    for (const auto& [section, keys] : host.settings) {
        for (const auto& [key, value] : keys) {
            out << "  setting " << section << '/' << key << " = " << Quote(value.c_str()) << '\n';
        }
    }
    return kDone;
}

Status RunCommands(SimulatedHost& host, const std::vector<std::string>& commands,
                   std::ostream& out) {
    Status status = kDone;
    for (const std::string& command : commands) {
        std::ostringstream stream;
        const char* refusal = host.trace.Command(command.c_str(), &stream);
        out << command << ": " << (refusal != nullptr ? "refused" : "ok") << '\n';
        PrintIndented(out, refusal != nullptr ? refusal : ReportText(stream));
        status = refusal != nullptr ? kFailed : status;
    }
    return status;
}

Status OpenDialog(ModuleSession& session, SimulatedHost& host, std::ostream& errors) {
    host.journal.Step("Open");
    const bool shown = session.control().Open();
    host.journal.Step("Open gave " + YesNo(shown));
    if (!shown) {
        errors << "etmhost: the dialog did not open: " << session.LastError() << '\n';
    }
    return shown ? kDone : kFailed;
}

Status Apply(ModuleSession& session, SimulatedHost& host, std::ostream& out, std::ostream& errors) {
    host.journal.Step("Apply");
    if (session.control().Apply()) {
        out << "applied\n";
        return kDone;
    }
    const std::string reason = session.LastError();
    errors << "etmhost: the module could not apply: "
           << (reason.empty() ? "the target refused a step" : reason) << '\n';
    return kFailed;
}

Status InitBoardFile(ModuleSession& session, SimulatedHost& host, const std::string& directory,
                     std::ostream& out) {
    IOrnKVETMSupp& support = session.support();
    char value[260] = "";
    char error[260] = "";
    int32_t mode = -1;
    host.journal.Step("InitBoardFile " + Quote(directory.c_str()));
    const bool settled = support.InitBoardFile(directory.c_str(), value, sizeof value, &mode);
    support.GetLastError(error, sizeof error);
    out << "result: " << YesNo(settled) << "\nmode: " << mode << "\nvalue: " << value
        << "\nerror: " << error << '\n';
    return settled ? kDone : kFailed;
}

} // namespace etmhost
