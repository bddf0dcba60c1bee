#include "host/commandline/actions.h"

#include <iomanip>
#include <ostream>
#include <sstream>

#include "host/support/words.h"
#include "host/target/etm_registers.h"
#include "host/target/report.h"

namespace etmhost {

namespace {

// Prints each line of `text` behind two blanks.
void PrintIndented(std::ostream& out, const std::string& text) {
    std::istringstream in(text);
    for (std::string line; std::getline(in, line);) out << "  " << line << '\n';
}

void PrintComparators(std::ostream& out, const std::vector<DwtComparator>& comparators) {
    if (comparators.empty()) return;
    out << "\nDWT comparators\n";
    for (size_t index = 0; index < comparators.size(); ++index) {
        const DwtComparator& comparator = comparators[index];
        out << "  " << index << ": ";
        if (comparator.function == 0)
            out << "off";
        else if (comparator.function == DWT_FUNCTION_ETM_PC)
            out << Hex(comparator.address) << ", tells the ETM";
        else
            out << Hex(comparator.address) << ", in use by a debugger (function "
                << Hex(comparator.function) << ")";
        out << (comparator.lost ? "; what was set here is lost\n" : "\n");
    }
}

const char* DescribeState(const Capture& capture) {
    return !capture.running ? "stopped" : capture.triggered ? "running, triggered" : "running";
}

} // namespace

Status ShowChips(std::span<const Chip> chips, std::ostream& out) {
    for (const Chip& chip : chips)
        out << std::left << std::setw(15) << chip.name << chip.description << '\n';
    return kDone;
}

Status ShowTarget(SimulatedHost& host, std::ostream& out) {
    Target& target = host.target;
    const TraceHardware& hardware = target.hardware();
    target.Look();
    const TargetState& state = target.state;
    const uint32_t control = target.Control();
    const TraceSettings trace = target.Settings();
    out << hardware.name << ": " << hardware.description << "\n\nETM Resources\n";
    PrintIndented(out, CapabilityReport(hardware.etm));
    out << "\nTrace settings\n";
    for (const std::string& line : target.SettingsLines()) PrintIndented(out, line);
    if (trace.pcPending) out << "  the PC range is pending: it takes its other end\n";
    if (trace.dataPending) out << "  the data range is pending: it takes its other end\n";
    PrintComparators(out, target.DwtComparators());
    out << "\nControl word " << Hex(control) << '\n';
    PrintIndented(out, DescribeControlWord(control));
    out << "\nCapture\n  " << DescribeState(state.capture) << ", state word "
        << Hex(target.StateWord()) << '\n';
    if (hardware.capacity > 0) {
        out << "  " << state.capture.captured << " of " << hardware.capacity
            << " words in the trace buffer\n  " << target.TriggerCount()
            << " words to capture behind the trigger\n";
    }
    out << "  " << hardware.info << '\n';
    out << "\nBoard\n  trace pins are "
        << (state.pinsReady        ? "switched on"
            : target.IsSimulated() ? "off"
                                   : "not switched on by this run")
        << "\n  last macro: " << (state.macro.empty() ? "none" : state.macro) << '\n';
    for (const auto& [section, keys] : host.settings)
        for (const auto& [key, value] : keys)
            out << "  setting " << section << '/' << key << " = " << Quote(value.c_str()) << '\n';
    return kDone;
}

Status RunCommands(SimulatedHost& host, const std::vector<std::string>& commands,
                   std::ostream& out) {
    Status status = kDone;
    auto& trace = static_cast<IOrnVETMTrace&>(*host.Find(ORN_VETM_TRACE));
    for (const std::string& command : commands) {
        if (SkipBlanks(command).starts_with('#')) continue;
        std::ostringstream stream;
        out.flush(); // ahead of a refusal, which goes elsewhere
        if (trace.Command(command.c_str(), &stream) != nullptr) {
            status = kFailed;
            continue;
        }
        out << command << ": ok\n";
        const std::string text = stream.str();
        PrintIndented(out, text.substr(0, text.find('\0'))); // the NUL ends a report
    }
    return status;
}

Status OpenDialog(ModuleSession& session, record::EventStream& events) {
    const bool shown = session.Open();
    if (!shown) events.Note("the dialog did not open: " + session.LastError());
    return shown ? kDone : kFailed;
}

Status Apply(ModuleSession& session, record::EventStream& events, std::ostream& out) {
    if (session.Apply()) {
        out << "applied\n";
        return kDone;
    }
    const std::string reason = session.LastError();
    events.Note("the module could not apply: " +
                (reason.empty() ? "the target refused a step" : reason));
    return kFailed;
}

Status InitBoardFile(ModuleSession& session, record::EventStream& events,
                     const std::string& directory, std::ostream& out) {
    const BoardFileAnswer answer = session.InitBoardFile(directory);
    // Without a choice the support component says that the user cancelled, also where the dialog
    // never came up to ask. The control component knows why.
    const std::string unopened = session.LastError();
    out << "result: " << YesNo(answer.settled) << "\nmode: " << answer.mode
        << "\nvalue: " << answer.value
        << "\nerror: " << (unopened.empty() ? answer.error : unopened) << '\n';
    if (!unopened.empty()) events.Note("the dialog did not open: " + unopened);
    return answer.settled ? kDone : kFailed;
}

} // namespace etmhost
