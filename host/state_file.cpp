#include "host/state_file.h"

#include <fstream>
#include <nlohmann/json.hpp>

#include "host/host_error.h"
#include "host/system.h"

namespace etmhost {

using Json = nlohmann::json;

struct StateFile::Document {
    Json root;
};

namespace {

constexpr const char* kFormat = "etmhost state 1";
constexpr int kDeepest = 16;

// JSON knows UTF-8 only. Text in any other encoding is kept as an array of its bytes.
Json FromText(const std::string& text) {
    try {
        (void)Json(text).dump();
        return text;
    } catch (const Json::exception&) {
        return std::vector<unsigned char>(text.begin(), text.end());
    }
}

std::string ToText(const Json& value) {
    if (!value.is_array()) {
        return value.get<std::string>();
    }
    std::string text;
    for (const Json& byte : value) {
        text += static_cast<char>(byte.get<unsigned char>());
    }
    return text;
}

// A number of 32 bits: `get` alone would cut what does not fit.
uint32_t ToWord(const Json& value) {
    if (!value.is_number_unsigned() || value.get<uint64_t>() > UINT32_MAX) {
        throw HostError("\"" + value.dump() + "\" is no 32-bit number");
    }
    return value.get<uint32_t>();
}

template <class Enum> Enum ToEnum(const Json& value, Enum last) {
    const uint32_t number = ToWord(value);
    if (number > static_cast<uint32_t>(last)) {
        throw HostError("no choice has the number " + std::to_string(number));
    }
    return static_cast<Enum>(number);
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
              {"halfRate", trace.halfRate}}},
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
    for (const auto& [section, keys] : json.items()) {
        for (const auto& [key, value] : keys.items()) {
            settings[section][key] = ToText(value);
        }
    }
    return settings;
}

// Runs `read`, and turns whatever it finds wrong into one message.
template <class Read> auto Undamaged(const std::filesystem::path& file, Read read) {
    try {
        return read();
    } catch (const std::exception& error) {
        throw HostError("state file \"" + PathText(file) + "\" is damaged: " + error.what());
    }
}

} // namespace

StateFile::StateFile(std::filesystem::path file)
    : file_(std::move(file)), document_(std::make_unique<Document>()) {
    namespace fs = std::filesystem;
    std::error_code error;
    // A link stays a link: its file is what gets replaced.
    if (const fs::path target = fs::weakly_canonical(fs::absolute(file_), error); !error) {
        file_ = target;
    }
    const fs::file_status status = fs::status(file_, error);
    if (status.type() == fs::file_type::not_found) {
        if (!fs::is_directory(file_.parent_path(), error)) {
            throw HostError("state file \"" + PathText(file_) + "\": there is no such directory");
        }
        document_->root = {
            {"format", kFormat}, {"targets", Json::object()}, {"settings", Json::object()}};
        return;
    }
    std::ifstream in;
    if (status.type() == fs::file_type::regular) {
        in.open(file_, std::ios::binary);
    }
    if (!in.is_open()) {
        throw HostError("cannot read state file \"" + PathText(file_) + "\"");
    }
    document_->root = Undamaged(file_, [&in] {
        Json root = Json::parse(in, [](int depth, Json::parse_event_t, const Json&) {
            if (depth > kDeepest) { // what is kept unread is still copied, level by level
                throw HostError("it is nested too deep");
            }
            return true;
        });
        if (!root.is_object() || root.value("format", "") != kFormat ||
            !root.at("targets").is_object() || !root.at("settings").is_object()) {
            throw HostError("it is no state of etmhost");
        }
        return root;
    });
}

StateFile::~StateFile() = default;

void StateFile::Load(SimulatedHost& host) const {
    Undamaged(file_, [this, &host] {
        const Json& targets = document_->root.at("targets");
        const auto target = targets.find(host.target.chip().name);
        NamedSettings settings = ToSettings(document_->root.at("settings"));
        if (target != targets.end()) {
            host.target.state = ToTarget(*target);
        }
        host.settings = std::move(settings);
    });
}

void StateFile::Save(const SimulatedHost& host) {
    namespace fs = std::filesystem;
    Json root = document_->root;
    root["targets"][host.target.chip().name] = FromTarget(host.target.state);
    for (const auto& [section, keys] : host.settings) {
        for (const auto& [key, value] : keys) {
            root["settings"][section][key] = FromText(value);
        }
    }
    if (root == document_->root) {
        return;
    }
    const std::string text = root.dump(2) + "\n";
    fs::path fresh = file_;
    fresh += ".new";
    std::ofstream out(fresh, std::ios::binary | std::ios::trunc);
    out.write(text.data(), static_cast<std::streamsize>(text.size()));
    out.close();
    std::error_code error;
    if (out) {
        fs::rename(fresh, file_, error);
    }
    if (!out || error) {
        std::error_code ignored;
        fs::remove(fresh, ignored);
        throw HostError("cannot write state file \"" + PathText(file_) +
                        "\"; it is as it was before");
    }
    document_->root = std::move(root);
}

} // namespace etmhost
