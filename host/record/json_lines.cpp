#include "host/record/json_lines.h"

#include <stdexcept>

#include "host/record/json_text.h"

namespace record {

namespace {

using OrderedJson = nlohmann::ordered_json;

constexpr int kDeepest = 4; // a text of bytes in the arguments has 3
constexpr const char* kDirections[] = {"toHost", "toModule", "host"};
constexpr const char* kPhases[] = {"whole", "call", "return"};

template <class Enum, size_t Count>
Enum ToEnum(const std::string& word, const char* const (&words)[Count]) {
    for (size_t i = 0; i < Count; ++i)
        if (word == words[i]) return static_cast<Enum>(i);
    throw std::runtime_error("an event has no \"" + word + "\"");
}

OrderedJson FromValue(const Value& value) {
    if (const bool* flag = std::get_if<bool>(&value)) return *flag;
    if (const int64_t* number = std::get_if<int64_t>(&value)) return *number;
    if (const auto* text = std::get_if<std::string>(&value))
        return JsonFromText<OrderedJson>(*text);
    return nullptr;
}

Value ToValue(const OrderedJson& json) {
    if (json.is_null()) return nullptr;
    if (json.is_boolean()) return json.get<bool>();
    if (!json.is_number_integer()) return TextFromJson(json);
    if (json.is_number_unsigned() && json.get<uint64_t>() > INT64_MAX)
        throw std::runtime_error(json.dump() + " is too large");
    return json.get<int64_t>();
}

OrderedJson FromFields(const Fields& fields) {
    OrderedJson json = OrderedJson::object();
    for (const auto& [name, value] : fields) json[name] = FromValue(value);
    return json;
}

Fields ToFields(const OrderedJson& event, const char* key) {
    Fields fields;
    if (const auto found = event.find(key); found != event.end())
        for (const auto& [name, value] : found->items()) fields.emplace_back(name, ToValue(value));
    return fields;
}

// FNV-1a: tells a line that somebody has edited, not one that somebody has forged.
std::string SumOf(const std::string& text) {
    uint32_t sum = 2166136261;
    for (const char c : text) sum = (sum ^ static_cast<unsigned char>(c)) * 16777619;
    std::string digits(8, '0');
    for (size_t i = digits.size(); i-- > 0; sum >>= 4) digits[i] = "0123456789abcdef"[sum & 15];
    return digits;
}

OrderedJson ToJson(const Event& event) {
    OrderedJson json = {{"direction", kDirections[static_cast<int>(event.direction)]}};
    if (event.phase != Event::Phase::Whole) json["phase"] = kPhases[static_cast<int>(event.phase)];
    if (!event.object.empty()) json["object"] = event.object;
    json["operation"] = event.operation;
    if (event.phase != Event::Phase::Return) json["arguments"] = FromFields(event.arguments);
    if (event.phase != Event::Phase::Call) json["results"] = FromFields(event.results);
    if (event.refusal) json["refusal"] = JsonFromText<OrderedJson>(*event.refusal);
    return json;
}

} // namespace

std::string ToJsonLine(const Event& event) {
    OrderedJson json = ToJson(event);
    json["sum"] = SumOf(json.dump());
    return json.dump();
}

Event FromJsonLine(std::string_view line, bool* altered) {
    try {
        const OrderedJson json =
            OrderedJson::parse(line, [](int depth, OrderedJson::parse_event_t, const OrderedJson&) {
                if (depth > kDeepest) throw std::runtime_error("an event is not nested so deep");
                return true;
            });
        if (!json.is_object()) throw std::runtime_error("an event is a JSON object");
        Event event;
        event.direction =
            ToEnum<Event::Direction>(json.at("direction").get<std::string>(), kDirections);
        event.phase = ToEnum<Event::Phase>(json.value("phase", kPhases[0]), kPhases);
        event.object = json.value("object", "");
        event.operation = json.at("operation").get<std::string>();
        event.arguments = ToFields(json, "arguments");
        event.results = ToFields(json, "results");
        if (json.contains("refusal")) event.refusal = TextFromJson(json["refusal"]);
        if (altered != nullptr)
            *altered = json.contains("sum") && json["sum"] != SumOf(ToJson(event).dump());
        return event;
    } catch (const nlohmann::json::exception& error) {
        const std::string text = error.what(); // with a code in brackets ahead
        throw std::runtime_error(text.substr(text.find("] ") + 2));
    }
}

} // namespace record
