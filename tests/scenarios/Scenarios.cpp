#include "tests/scenarios/Scenarios.h"

#include <cstdlib>
#include <fstream>
#include <map>
#include <sstream>
#include <stdexcept>

namespace {

#if defined(_WIN32)
constexpr char kSlash = '\\';
#else
constexpr char kSlash = '/';
#endif

void Traced(RecordingHost& host) {
    host.values[ORN_VALUE_CONTROL] = ORN_CONTROL_ENABLE;
}

const std::map<std::string, void (*)(RecordingHost&)> kHosts = {
    {"plain", [](RecordingHost&) {}},
    {"traced", Traced},
    {"running when started",
     [](RecordingHost& host) {
         Traced(host);
         host.onCall = [&host](const std::string& call) { // bit 2: it runs
             if (call == "Command(start)") host.state = 0x4;
             if (call == "Command(stop)") host.state = 0;
         };
     }},
    {"one pair, with a trigger",
     [](RecordingHost& host) {
         host.values[ORN_VALUE_CONTROL] = ORN_CONTROL_ENABLE | ORN_CONTROL_TRIGGER_ADDRESS;
         host.lines = {"ETM TRIGGER 0x100", "ETM PC = start 0x10", "ETM DATA = all"};
         const size_t pairs = host.report.find("pairs: 4");
         host.report.replace(pairs, 8, "pairs: 1");
     }},
    {"range, with a pin",
     [](RecordingHost& host) {
         host.values[ORN_VALUE_CONTROL] = ORN_CONTROL_ENABLE | ORN_CONTROL_TRIGGER_PIN;
         host.lines = {"ETM PC = from 1", "ETM PC = to 2"};
     }},
    {"Cortex-M3",
     [](RecordingHost& host) {
         Traced(host);
         host.features = {0x3000000, 0x4000000};
         host.report = "ETM architecture version: 3.5\n";
     }},
};

Scenario Read(const char* name, const char* text) {
    Scenario scenario{name, nullptr, etmhost::ParseScript(std::string(name) + ".txt", text), {}};
    for (const auto& [line, error] : scenario.script.errors)
        throw std::runtime_error(Located(scenario.script, line, error));
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);)
        if (line.starts_with("#: host "))
            scenario.prepare = kHosts.at(line.substr(8));
        else if (line.starts_with("#: sends "))
            scenario.changes.push_back(line.substr(9));
        else if (line.starts_with("#:"))
            throw std::runtime_error(scenario.script.name + ": " + line);
    return scenario;
}

} // namespace

Scenario Scenario::In(const std::string& directory) const {
    Scenario here = *this;
    const auto replace = [&](std::string& text) {
        if (const size_t place = text.find("{dir}"); place != std::string::npos)
            text.replace(place, 5, directory + kSlash);
    };
    for (std::string& change : here.changes) replace(change);
    for (etmhost::Step& step : here.script.steps) replace(step.text);
    return here;
}

const std::vector<Scenario>& AllScenarios() {
    static const std::vector<Scenario> scenarios = [] {
        static constexpr const char* texts[][2] = {
#include "scenarios.inc"
        };
        std::vector<Scenario> all;
        for (const auto& [name, text] : texts) all.push_back(Read(name, text));
        return all;
    }();
    return scenarios;
}

std::vector<std::string> TakeJournal(const Scenario& scenario, RecordingHost& host,
                                     const std::string& directory) {
    if (const char* folder = std::getenv("KVETM_JOURNALS")) {
        std::ofstream journal(std::string(folder) + "/" + scenario.name + ".txt", std::ios::binary);
        for (std::string call : host.calls) {
            const size_t place = call.find(directory);
            if (place != std::string::npos) call.replace(place, directory.size() + 1, "{dir}");
            if (call != "GetTraceState") journal << call << '\n';
        }
    }
    std::vector<std::string> changes = host.TakeChanges();
    if (changes.empty() || changes[0] != "Command(capability)")
        throw std::runtime_error("the dialog did not ask for the report first");
    changes.erase(changes.begin());
    return changes;
}
