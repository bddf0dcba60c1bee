#include "host/commandline/actions.h"

#include <iomanip>
#include <ostream>
#include <sstream>

#include "host/support/words.h"
#include "host/target/report.h"

namespace etmhost {

namespace {

// Prints each line of `text` behind two blanks.
void PrintIndented(std::ostream& out, const std::string& text) {
    std::istringstream in(text);
    for (std::string line; std::getline(in, line);) out << "  " << line << '\n';
}

const char* DescribeState(const Capture& capture) {
    return !capture.running ? "stopped" : capture.triggered ? "running, triggered" : "running";
}

} // namespace

Status ShowChips(std::ostream& out) {
    for (const Chip& chip : Chips())
        out << std::left << std::setw(11) << chip.name << chip.description << '\n';
    return kDone;
}

Status ShowTarget(const SimulatedHost& host, std::ostream& out) {
    const Chip& chip = host.target.chip();
    const TargetState& state = host.target.state;
    out << chip.name << ": " << chip.description << "\n\nETM Resources\n";
    PrintIndented(out, CapabilityReport(chip));
    out << "\nTrace settings\n";
    for (const std::string& line : host.target.SettingsLines()) PrintIndented(out, line);
    out << "\nControl word " << Hex(state.control) << '\n';
    PrintIndented(out, DescribeControlWord(state.control));
    out << "\nCapture\n  " << DescribeState(state.capture) << ", state word "
        << Hex(host.target.StateWord()) << "\n  " << state.capture.captured << " of "
        << chip.bufferSize << " words in the trace buffer\n  " << state.triggerCount
        << " words to capture behind the trigger\n  " << chip.info << '\n';
    out << "\nBoard\n  trace pins are " << (state.pinsReady ? "switched on" : "off")
        << "\n  last macro: " << (state.macro.empty() ? "none" : state.macro) << '\n';
    for (const auto& [section, keys] : host.settings)
        for (const auto& [key, value] : keys)
            out << "  setting " << section << '/' << key << " = " << Quote(value.c_str()) << '\n';
    return kDone;
}

Status RunCommands(SimulatedHost& host, const std::vector<std::string>& commands,
                   std::ostream& out) {
    Status status = kDone;
    for (const std::string& command : commands) {
        std::ostringstream stream;
        out.flush(); // ahead of a refusal, which goes elsewhere
        if (host.trace.Command(command.c_str(), &stream) != nullptr) {
            status = kFailed;
            continue;
        }
        out << command << ": ok\n";
        const std::string text = stream.str();
        PrintIndented(out, text.substr(0, text.find('\0'))); // the NUL ends a report
    }
    return status;
}

Status OpenDialog(ModuleSession& session, SimulatedHost& host, std::ostream& errors) {
    host.journal.Step("Open");
    const bool shown = session.control().Open();
    host.journal.Step("Open gave " + YesNo(shown));
    if (!shown) PrintRefusal(errors, kProgram, "the dialog did not open: " + session.LastError());
    return shown ? kDone : kFailed;
}

Status Apply(ModuleSession& session, SimulatedHost& host, std::ostream& out, std::ostream& errors) {
    host.journal.Step("Apply");
    if (session.control().Apply()) {
        out << "applied\n";
        return kDone;
    }
    const std::string reason = session.LastError();
    PrintRefusal(errors, kProgram,
                 "the module could not apply: " +
                     (reason.empty() ? "the target refused a step" : reason));
    return kFailed;
}

Status InitBoardFile(ModuleSession& session, SimulatedHost& host, const std::string& directory,
                     std::ostream& out, std::ostream& errors) {
    IOrnKVETMSupp& support = session.support();
    char value[260] = "";
    char error[260] = "";
    int32_t mode = -1;
    host.journal.Step("InitBoardFile " + Quote(directory.c_str()));
    const bool settled = support.InitBoardFile(directory.c_str(), value, sizeof value, &mode);
    support.GetLastError(error, sizeof error);
    // Without a choice the support component says that the user cancelled, also where the dialog
    // never came up to ask. The control component knows why.
    const std::string unopened = session.LastError();
    out << "result: " << YesNo(settled) << "\nmode: " << mode << "\nvalue: " << value
        << "\nerror: " << (unopened.empty() ? error : unopened) << '\n';
    if (!unopened.empty()) PrintRefusal(errors, kProgram, "the dialog did not open: " + unopened);
    return settled ? kDone : kFailed;
}

} // namespace etmhost
