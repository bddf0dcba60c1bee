#include "host/record/operations.h"

#include <algorithm>

namespace record {

namespace {

using Direction = Event::Direction;
using Kind = Part::Kind;

// Each part is "name:kind", with "?" behind a result that may be missing.
constexpr struct {
    const char *object, *name, *arguments, *results;
} kRoot[] =
    {
        {"", "GetInterfaceName", "", "return:text"},
        {"", "GetInterfaceVersion", "", "return:number"},
        {"", "GetComponentName", "", "return:text"},
        {"", "GetComponentVersion", "", "return:number"},
        {"", "GetInterface", "name:text", "return:object"},
        {"", "ReleaseInterface", "object:any", ""},
},
  kHost[] =
      {
          {"IOrnVETMTrace", "Command", "text:text stream:pointer", "return:text report:text?"},
          {"IOrnVETMTrace", "GetInfoText", "which:number", "return:text"},
          {"IOrnVETMTrace", "GetTraceState", "detail:pointer", "return:number detail:number?"},
          {"IOrnVETMTrace", "HasFeature", "feature:number", "return:yesno"},
          {"IOrnVETMTrace", "SetValue", "id:number value:number", "return:yesno"},
          {"IOrnVETMTrace", "GetValue", "id:number value:pointer", "return:yesno value:number?"},
          {"IOrnVETMTrace", "GetSettingsLine", "index:number", "return:text"},
          {"IOrnTraceClient", "Action", "action:text argument:text", "return:yesno"},
          {"IOrnXTraceClient", "HasCommand", "name:text", "return:yesno"},
          {"IOrnXTraceClient", "WriteSetting", "section:text key:text value:text", "return:yesno"},
          {"IOrnXTraceClient", "ReadSetting", "section:text key:text size:number buffer:pointer",
           "return:yesno buffer:text?"},
},
  kModule[] = {
      {"IOrnAPIBase", "GetRowCount", "", "return:number"},
      {"IOrnAPIBase", "GetRowComponentName", "row:number", "return:text"},
      {"IOrnAPIBase", "GetRowInterfaceName", "row:number", "return:text"},
      {"IOrnAPIBase", "CreateRowObject", "row:number", "return:object"},
      {"IOrnAPIBase", "DestroyRowObject", "row:number object:object", ""},
      {"IOrnAPIBase", "SetModulePath", "path:text", ""},
      {"IOrnAPIBase", "GetModulePath", "", "return:text"},
      {"IOrnAPIBase", "SetAPI", "api:object", ""},
      {"IOrnKVETMCtrl", "GetParamCount", "", "return:number"},
      {"IOrnKVETMCtrl", "GetParam", "id:number argument:number", "return:number"},
      {"IOrnKVETMCtrl", "SetParam", "id:number value:number", "return:number"},
      {"IOrnKVETMCtrl", "CheckParam", "id:number value:number", "return:number"},
      {"IOrnKVETMCtrl", "AttachInterface", "name:text object:object", "return:number"},
      {"IOrnKVETMCtrl", "DetachInterface", "name:text", "return:number"},
      {"IOrnKVETMCtrl", "GetImplementedCount", "", "return:number"},
      {"IOrnKVETMCtrl", "GetImplementedName", "index:number", "return:text"},
      {"IOrnKVETMCtrl", "GetRequiredCount", "", "return:number"},
      {"IOrnKVETMCtrl", "GetRequiredName", "index:number", "return:text"},
      {"IOrnKVETMCtrl", "GetRequiredOption", "index:number", "return:number"},
      {"IOrnKVETMCtrl", "GetAttachedInterface", "name:text", "return:object"},
      {"IOrnKVETMCtrl", "Init", "option:number", "return:yesno"},
      {"IOrnKVETMCtrl", "Open", "", "return:yesno"},
      {"IOrnKVETMCtrl", "Apply", "", "return:yesno"},
      {"IOrnKVETMCtrl", "GetLastError", "buffer:pointer size:number", "buffer:text?"},
      {"IOrnKVETMSupp", "InitBoardFile", "directory:text value:pointer size:number mode:pointer",
       "return:yesno value:text? mode:number?"},
      {"IOrnKVETMSupp", "CanInitBoardFile", "", "return:yesno"},
      {"IOrnKVETMSupp", "GetLastError", "buffer:pointer size:number", "buffer:text?"},
};

constexpr const char* kHostObjects[] = {"IOrnAPI",          "IOrnVETMTrace", "IOrnTraceClient",
                                        "IOrnXTraceClient", "IOrnXTrace",    "IOrnEmu"};
constexpr const char* kModuleObjects[] = {"IOrnAPIBase", "IOrnKVETMCtrl", "IOrnKVETMSupp"};

constexpr std::string_view kKinds[] = {"text", "number", "yesno", "pointer", "object", "any"};

std::vector<Part> ToParts(std::string_view text) {
    std::vector<Part> parts;
    while (!text.empty()) {
        std::string_view part = text.substr(0, text.find(' '));
        text.remove_prefix(std::min(text.size(), part.size() + 1));
        const bool optional = part.ends_with('?');
        if (optional) part.remove_suffix(1);
        const size_t colon = part.find(':');
        const auto kind = std::ranges::find(kKinds, part.substr(colon + 1));
        parts.push_back(
            {part.substr(0, colon), static_cast<Kind>(kind - std::begin(kKinds)), optional});
    }
    return parts;
}

bool Fits(const Value& value, Kind kind) {
    const int64_t* number = std::get_if<int64_t>(&value);
    const bool null = std::holds_alternative<std::nullptr_t>(value);
    switch (kind) {
    case Kind::Text:
    case Kind::Object:
        return null || std::holds_alternative<std::string>(value);
    case Kind::Number:
        return number != nullptr && *number >= INT32_MIN && *number <= UINT32_MAX;
    case Kind::YesNo:
        if (number != nullptr) return *number >= 0 && *number <= UINT8_MAX;
        return std::holds_alternative<bool>(value);
    case Kind::Pointer:
        return std::holds_alternative<bool>(value);
    default:
        return true;
    }
}

std::string FaultIn(const Fields& fields, const std::vector<Part>& parts, const char* what) {
    for (const auto& [name, value] : fields) {
        const auto part = std::ranges::find(parts, name, &Part::name);
        if (part == parts.end()) return std::string("it has no ") + what + " \"" + name + "\"";
        if (!Fits(value, part->kind))
            return std::string("its ") + what + " \"" + name + "\" is no such value";
    }
    for (const Part& part : parts)
        if (!part.optional && Find(fields, part.name) == nullptr)
            return std::string("its ") + what + " \"" + std::string(part.name) + "\" is missing";
    return "";
}

template <size_t Count> bool IsOneOf(std::string_view name, const char* const (&names)[Count]) {
    return std::ranges::find(names, name) != std::end(names);
}

} // namespace

std::string_view InterfaceOf(std::string_view object) {
    return object.substr(0, object.find('#'));
}

const std::vector<Operation>& Operations() {
    static const std::vector<Operation> operations = [] {
        std::vector<Operation> all;
        const auto add = [&all](const auto& rows, Direction direction) {
            for (const auto& row : rows)
                all.push_back({row.object, row.name, direction, ToParts(row.arguments),
                               ToParts(row.results)});
        };
        add(kRoot, Direction::ToHost);
        add(kHost, Direction::ToHost);
        add(kRoot, Direction::ToModule);
        add(kModule, Direction::ToModule);
        return all;
    }();
    return operations;
}

const Operation* FindOperation(Direction direction, std::string_view object,
                               std::string_view name) {
    const std::string_view interface = InterfaceOf(object);
    if (direction == Direction::ToHost ? !IsOneOf(interface, kHostObjects)
                                       : !IsOneOf(interface, kModuleObjects))
        return nullptr;
    for (const Operation& operation : Operations())
        if (operation.direction == direction && operation.name == name &&
            (*operation.object == '\0' || operation.object == interface))
            return &operation;
    return nullptr;
}

std::string FaultOf(const Event& event) {
    const Operation* operation = FindOperation(event.direction, event.object, event.operation);
    std::string fault = "there is no such operation";
    if (operation != nullptr) {
        fault.clear();
        if (event.phase != Event::Phase::Return)
            fault = FaultIn(event.arguments, operation->arguments, "argument");
        if (fault.empty() && event.phase != Event::Phase::Call)
            fault = FaultIn(event.results, operation->results, "result");
    }
    return fault.empty() ? "" : event.object + "." + event.operation + ": " + fault;
}

} // namespace record
