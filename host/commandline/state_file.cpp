#include "host/commandline/state_file.h"

#include <chrono>
#include <fstream>
#include <nlohmann/json.hpp>
#include <optional>
#include <random>
#include <thread>

#include "host/record/json_text.h"
#include "host/support/host_error.h"
#include "host/support/system.h"

namespace etmhost {

using Json = nlohmann::json;

// Moved, a JSON value checks itself by assertions, and throws nothing.
// NOLINTNEXTLINE(bugprone-exception-escape)
struct StateFile::Document {
    Json root; ///< the file's content as it was read last
    Json base; ///< what the file and the host agreed on last: "target" and "settings"
};

namespace {

constexpr const char* kFormat = "etmhost state 1";
constexpr int kDeepestState = 16;
constexpr int kReadTries = 20;
constexpr std::chrono::milliseconds kReadPause(10);

Json FromText(const std::string& text) {
    return record::JsonFromText<Json>(text);
}

std::string ToText(const Json& value) {
    return record::TextFromJson(value);
}

// A number of 32 bits: `get` alone would cut what does not fit.
uint32_t ToWord(const Json& value) {
    if (!value.is_number_unsigned() || value.get<uint64_t>() > UINT32_MAX)
        throw HostError("\"" + value.dump() + "\" is no 32-bit number");
    return value.get<uint32_t>();
}

template <class Enum> Enum ToEnum(const Json& value, Enum last) {
    const uint32_t number = ToWord(value);
    if (number > static_cast<uint32_t>(last))
        throw HostError("no choice has the number " + std::to_string(number));
    return static_cast<Enum>(number);
}

Json FromNumbers(const std::map<uint32_t, uint32_t>& numbers) {
    Json json = Json::object();
    for (const auto& [key, value] : numbers) json[Hex(key)] = value;
    return json;
}

std::map<uint32_t, uint32_t> ToNumbers(const Json& json) {
    std::map<uint32_t, uint32_t> numbers;
    for (const auto& [key, value] : json.items()) {
        size_t used = 0;
        const unsigned long long number = std::stoull(key, &used, 16);
        if (used != key.size() || number > UINT32_MAX || key[0] == '-')
            throw HostError(key + " is no address");
        numbers[static_cast<uint32_t>(number)] = ToWord(value);
    }
    return numbers;
}

Json FromTarget(const TargetState& state) {
    const TraceSettings& trace = state.trace;
    const Capture& capture = state.capture;
    return {{"control", state.control},
            {"triggerCount", state.triggerCount},
            {"macro", FromText(state.macro)},
            {"pinsReady", state.pinsReady},
            {"trace",
             {{"pc", static_cast<int>(trace.pc)},
              {"pcBegin", FromText(trace.pcBegin)},
              {"pcEnd", FromText(trace.pcEnd)},
              {"data", static_cast<int>(trace.data)},
              {"dataBegin", FromText(trace.dataBegin)},
              {"dataEnd", FromText(trace.dataEnd)},
              {"trigger", FromText(trace.trigger)},
              {"portSize", trace.portSize},
              {"halfRate", trace.halfRate},
              {"pcPending", trace.pcPending},
              {"dataPending", trace.dataPending}}},
            {"registers", FromNumbers(state.registers)},
            {"dwt", FromNumbers(state.dwt)},
            {"capture",
             {{"running", capture.running},
              {"ended", capture.ended},
              {"triggered", capture.triggered},
              {"steps", capture.steps},
              {"captured", capture.captured},
              {"remaining", capture.remaining}}}};
}

TargetState ToTarget(const Json& json) {
    TargetState state;
    state.control = ToWord(json.at("control"));
    state.triggerCount = ToWord(json.at("triggerCount"));
    state.macro = ToText(json.at("macro"));
    state.pinsReady = json.at("pinsReady").get<bool>();
    const Json& trace = json.at("trace");
    state.trace.pc = ToEnum(trace.at("pc"), PcTrace::Complex);
    state.trace.pcBegin = ToText(trace.at("pcBegin"));
    state.trace.pcEnd = ToText(trace.at("pcEnd"));
    state.trace.data = ToEnum(trace.at("data"), DataTrace::All);
    state.trace.dataBegin = ToText(trace.at("dataBegin"));
    state.trace.dataEnd = ToText(trace.at("dataEnd"));
    state.trace.trigger = ToText(trace.at("trigger"));
    state.trace.portSize = ToWord(trace.at("portSize"));
    state.trace.halfRate = trace.at("halfRate").get<bool>();
    state.trace.pcPending = trace.value("pcPending", false);
    state.trace.dataPending = trace.value("dataPending", false);
    state.registers = ToNumbers(json.value("registers", Json::object()));
    state.dwt = ToNumbers(json.value("dwt", Json::object()));
    const Json& capture = json.at("capture");
    state.capture.running = capture.at("running").get<bool>();
    state.capture.ended = capture.at("ended").get<bool>();
    state.capture.triggered = capture.at("triggered").get<bool>();
    state.capture.steps = ToWord(capture.at("steps"));
    state.capture.captured = ToWord(capture.at("captured"));
    state.capture.remaining = ToWord(capture.at("remaining"));
    return state;
}

NamedSettings ToSettings(const Json& json) {
    NamedSettings settings;
    for (const auto& [section, keys] : json.items())
        for (const auto& [key, value] : keys.items()) settings[section][key] = ToText(value);
    return settings;
}

Json FromHost(const SimulatedHost& host) {
    Json settings = Json::object();
    for (const auto& [section, keys] : host.settings)
        for (const auto& [key, value] : keys) settings[section][key] = FromText(value);
    return {{"target", FromTarget(host.target.state)}, {"settings", settings}};
}

// Puts into `file` the values in which `own` differs from `base`, and those that `file` lacks. What
// has gone from `base` to `own` goes there too if `isList`: if the keys are the host's own, and not
// names, of which another version may have more.
void Merge(Json& file, const Json& base, const Json& own, bool isList = false) {
    if (!file.is_object() || !own.is_object()) {
        file = own;
        return;
    }
    for (const auto& [key, value] : own.items()) {
        const Json before = base.is_object() ? base.value(key, Json()) : Json();
        if (!file.contains(key))
            file[key] = value;
        else if (before != value)
            Merge(file[key], before, value, key == "registers" || key == "dwt");
    }
    if (!isList || !base.is_object()) return;
    for (const auto& [key, value] : base.items()) {
        const auto kept = file.find(key);
        if (!own.contains(key) && kept != file.end() && *kept == value) file.erase(kept);
    }
}

// Runs `read`, and turns whatever it finds wrong into one message.
template <class Read> auto Undamaged(const std::filesystem::path& file, Read read) {
    try {
        return read();
    } catch (const Json::parse_error& error) {
        throw HostError("state file \"" + PathText(file) + "\" is damaged: it is no JSON at byte " +
                        std::to_string(error.byte));
    } catch (const std::exception& error) {
        const std::string text = error.what(); // the JSON library puts a code in brackets ahead
        throw HostError("state file \"" + PathText(file) + "\" is damaged: " +
                        text.substr(text.starts_with('[') ? text.find("] ") + 2 : 0));
    }
}

// The content of `file`. A file that does not exist yet is one without content.
Json ReadRoot(const std::filesystem::path& file) {
    std::ifstream in;
    // Where a rename is no single step, a file that another program just replaces can't be
    // opened for a moment.
    for (int left = kReadTries; left > 0 && !in.is_open(); --left) {
        if (left < kReadTries) std::this_thread::sleep_for(kReadPause);
        std::error_code error;
        const std::filesystem::file_status status = std::filesystem::status(file, error);
        if (status.type() == std::filesystem::file_type::not_found)
            return {{"format", kFormat}, {"targets", Json::object()}, {"settings", Json::object()}};
        const bool known = std::filesystem::status_known(status);
        if (known && status.type() != std::filesystem::file_type::regular) break;
        in.open(file, std::ios::binary);
    }
    if (!in.is_open()) throw HostError("cannot read state file \"" + PathText(file) + "\"");
    return Undamaged(file, [&in] {
        Json root = Json::parse(in, [](int depth, Json::parse_event_t, const Json&) {
            if (depth > kDeepestState) // what is kept unread is still copied, level by level
                throw HostError("it is nested too deep");
            return true;
        });
        if (!root.is_object() || root.value("format", "") != kFormat ||
            !root.at("targets").is_object() || !root.at("settings").is_object())
            throw HostError("it is no state of etmhost");
        return root;
    });
}

// Writes beside `file` and renames. Returns whether that worked.
bool Replace(const std::filesystem::path& file, const std::string& text) {
    std::filesystem::path fresh = file;
    fresh += "." + std::to_string(std::random_device()()) + ".new";
    std::ofstream out(fresh, std::ios::binary | std::ios::trunc);
    out.write(text.data(), static_cast<std::streamsize>(text.size()));
    out.close();
    const bool done = out && MoveOver(fresh, file);
    if (!done) {
        std::error_code ignored;
        std::filesystem::remove(fresh, ignored);
    }
    return done;
}

std::filesystem::path LockOf(std::filesystem::path file) {
    return file += ".lock";
}

} // namespace

StateFile::StateFile(std::filesystem::path file)
    : m_File(std::move(file)), m_Document(std::make_unique<Document>()) {
    namespace fs = std::filesystem;
    std::error_code error;
    // A link stays a link: its file is what gets replaced.
    if (const fs::path target = fs::weakly_canonical(fs::absolute(m_File), error); !error)
        m_File = target;
    if (!fs::exists(m_File, error) && !fs::is_directory(m_File.parent_path(), error))
        throw HostError("state file \"" + PathText(m_File) + "\": there is no such directory");
    m_Document->root = ReadRoot(m_File);
}

StateFile::~StateFile() = default;

void StateFile::Load(SimulatedHost& host) {
    Undamaged(m_File, [this, &host] {
        const Json& targets = m_Document->root.at("targets");
        const auto target = targets.find(host.target.hardware().name);
        NamedSettings settings = ToSettings(m_Document->root.at("settings"));
        // Once, chips had no registers in this file.
        if (target != targets.end())
            host.target.TakeOver(ToTarget(*target), target->contains("registers"));
        host.settings = std::move(settings);
    });
    m_Document->base = FromHost(host);
}

void StateFile::Update(SimulatedHost& host, const std::function<void()>& change) {
    std::optional<FileLock> lock;
    std::optional<std::string> problem;
    try {
        lock.emplace(LockOf(m_File));
        m_Document->root = ReadRoot(m_File);
        Pull(host);
    } catch (const HostError& error) {
        problem = error.what();
    }
    change();
    if (!problem)
        Push(host);
    else if (FromHost(host) != m_Document->base)
        throw HostError(*problem);
}

// Takes over what others have written, but for what this host has not been able to write.
void StateFile::Pull(SimulatedHost& host) {
    const std::string chip = host.target.hardware().name;
    const Json own = FromHost(host);
    Json agreed = {{"target", m_Document->root["targets"].value(chip, own["target"])},
                   {"settings", m_Document->root["settings"]}};
    Json merged = agreed;
    Merge(merged, m_Document->base, own);
    if (merged != own) {
        Undamaged(
            m_File,
            [&] {
                const TargetState state = ToTarget(merged["target"]);
                host.settings = ToSettings(merged["settings"]);
                host.target.state = state;
            });
    }
    m_Document->base = std::move(agreed);
}

void StateFile::Push(const SimulatedHost& host) {
    const Json own = FromHost(host);
    Json root = m_Document->root;
    Json& targets = root["targets"];
    const std::string& chip = host.target.hardware().name;
    Merge(targets[chip], m_Document->base["target"], own["target"]);
    Merge(root["settings"], m_Document->base["settings"], own["settings"]);
    if (root == m_Document->root) return;
    if (!Replace(m_File, root.dump(2) + "\n")) {
        throw HostError("cannot write state file \"" + PathText(m_File) +
                        "\"; it is as it was before");
    }
    m_Document->base = own;
}

} // namespace etmhost
