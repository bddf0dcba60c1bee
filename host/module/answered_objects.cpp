#include "host/module/answered_objects.h"

#include <algorithm>
#include <ostream>
#include <set>

#include "frame/interfaces/IOrnAPI.h"
#include "frame/interfaces/IOrnEmu.h"
#include "frame/interfaces/IOrnTraceClient.h"
#include "frame/interfaces/IOrnVETMTrace.h"
#include "frame/interfaces/IOrnXTrace.h"
#include "frame/interfaces/IOrnXTraceClient.h"
#include "host/record/operations.h"

namespace etmhost {

namespace {

using record::Event;
using record::Fields;
using record::Value;

/// Finds an object of the same host.
using Siblings = std::function<IOrnInterface*(std::string_view name)>;

int64_t NumberOf(const Fields& fields, const char* name) {
    const Value* value = record::Find(fields, name);
    const int64_t* number = value != nullptr ? std::get_if<int64_t>(value) : nullptr;
    return number != nullptr ? *number : 0;
}

// What every object has. `m_Below` is null where each call is answered.
template <class Interface> class Answered : public Interface {
public:
    Answered(const char* name, const std::string& suffix, Answerer& answerer,
             const ObjectsBelow& below, const Siblings& siblings)
        : m_Name(name + suffix), m_Answerer(answerer), m_Siblings(siblings),
          m_Below(below ? static_cast<Interface*>(below(name)) : nullptr) {}

    const char* GetInterfaceName() override {
        Event call = Call("GetInterfaceName", {});
        return IsAnswered(call) ? ForGood(call) : m_Below->GetInterfaceName();
    }
    int32_t GetInterfaceVersion() override {
        Event call = Call("GetInterfaceVersion", {});
        return IsAnswered(call) ? Number<int32_t>(call) : m_Below->GetInterfaceVersion();
    }
    const char* GetComponentName() override {
        Event call = Call("GetComponentName", {});
        return IsAnswered(call) ? ForGood(call) : m_Below->GetComponentName();
    }
    int32_t GetComponentVersion() override {
        Event call = Call("GetComponentVersion", {});
        return IsAnswered(call) ? Number<int32_t>(call) : m_Below->GetComponentVersion();
    }
    IOrnInterface* GetInterface(const char* name) override {
        Event call = Call("GetInterface", {{"name", record::Text(name)}});
        return IsAnswered(call) ? m_Siblings(record::TextOf(call.results, "return"))
                                : m_Below->GetInterface(name);
    }
    void ReleaseInterface(IOrnInterface* object) override {
        Event call = Call("ReleaseInterface", {{"object", object != nullptr}});
        if (!IsAnswered(call)) m_Below->ReleaseInterface(object);
    }

protected:
    Event Call(const char* operation, Fields arguments) const {
        return {.direction = Event::Direction::ToHost,
                .object = m_Name,
                .operation = operation,
                .arguments = std::move(arguments)};
    }
    bool IsAnswered(Event& call) { return m_Answerer.Answer(call) || m_Below == nullptr; }

    // The answer in `call`.
    template <class Integer> static Integer Number(const Event& call) {
        return static_cast<Integer>(NumberOf(call.results, "return"));
    }
    static OrnBool YesNo(const Event& call) {
        const Value* value = record::Find(call.results, "return");
        const int64_t* byte = value != nullptr ? std::get_if<int64_t>(value) : nullptr;
        return byte != nullptr ? static_cast<OrnBool>(*byte)
                               : static_cast<OrnBool>(record::IsTrue(call.results, "return"));
    }
    /// Until the next call; by then the old text is gone, as it may be.
    const char* Text(const Event& call) {
        const Value* value = record::Find(call.results, "return");
        const auto* text = value != nullptr ? std::get_if<std::string>(value) : nullptr;
        m_Text = text != nullptr ? std::make_unique<std::string>(*text) : nullptr;
        return m_Text != nullptr ? m_Text->c_str() : nullptr;
    }
    const char* ForGood(const Event& call) {
        const char* text = Text(call);
        return text != nullptr ? m_Names.insert(text).first->c_str() : nullptr;
    }

    const std::string m_Name;
    Answerer& m_Answerer;
    const Siblings& m_Siblings;
    Interface* const m_Below;
    std::unique_ptr<std::string> m_Text;
    std::set<std::string> m_Names;
};

class AnsweredTrace final : public Answered<IOrnVETMTrace> {
public:
    using Answered::Answered;

    const char* Command(const char* text, std::ostream* stream) override {
        Event call = Call("Command", {{"text", record::Text(text)}, {"stream", stream != nullptr}});
        if (!IsAnswered(call)) return m_Below->Command(text, stream);
        if (stream != nullptr) *stream << record::TextOf(call.results, "report");
        return Text(call);
    }
    const char* GetInfoText(uint32_t which) override {
        Event call = Call("GetInfoText", {{"which", which}});
        return IsAnswered(call) ? Text(call) : m_Below->GetInfoText(which);
    }
    uint32_t GetTraceState(uint32_t* detail) override {
        Event call = Call("GetTraceState", {{"detail", detail != nullptr}});
        if (!IsAnswered(call)) return m_Below->GetTraceState(detail);
        Give(call, "detail", detail);
        return Number<uint32_t>(call);
    }
    OrnBool HasFeature(uint32_t feature) override {
        Event call = Call("HasFeature", {{"feature", feature}});
        return IsAnswered(call) ? YesNo(call) : m_Below->HasFeature(feature);
    }
    OrnBool SetValue(uint32_t id, uint32_t value) override {
        Event call = Call("SetValue", {{"id", id}, {"value", value}});
        return IsAnswered(call) ? YesNo(call) : m_Below->SetValue(id, value);
    }
    OrnBool GetValue(uint32_t id, uint32_t* value) override {
        Event call = Call("GetValue", {{"id", id}, {"value", value != nullptr}});
        if (!IsAnswered(call)) return m_Below->GetValue(id, value);
        Give(call, "value", value);
        return YesNo(call);
    }
    const char* GetSettingsLine(uint32_t index) override {
        Event call = Call("GetSettingsLine", {{"index", index}});
        return IsAnswered(call) ? Text(call) : m_Below->GetSettingsLine(index);
    }

private:
    // What was not written stays as it is.
    static void Give(const Event& call, const char* name, uint32_t* word) {
        if (word != nullptr && record::Find(call.results, name) != nullptr)
            *word = static_cast<uint32_t>(NumberOf(call.results, name));
    }
};

class AnsweredTraceClient final : public Answered<IOrnTraceClient> {
public:
    using Answered::Answered;

    OrnBool Action(const char* action, const char* argument) override {
        Event call = Call("Action",
                          {{"action", record::Text(action)}, {"argument", record::Text(argument)}});
        return IsAnswered(call) ? YesNo(call) : m_Below->Action(action, argument);
    }
};

class AnsweredXTraceClient final : public Answered<IOrnXTraceClient> {
public:
    using Answered::Answered;

    OrnBool HasCommand(const char* name) override {
        Event call = Call("HasCommand", {{"name", record::Text(name)}});
        return IsAnswered(call) ? YesNo(call) : m_Below->HasCommand(name);
    }
    OrnBool WriteSetting(const char* section, const char* key, const char* value) override {
        Event call = Call("WriteSetting", {{"section", record::Text(section)},
                                           {"key", record::Text(key)},
                                           {"value", record::Text(value)}});
        return IsAnswered(call) ? YesNo(call) : m_Below->WriteSetting(section, key, value);
    }
    OrnBool ReadSetting(const char* section, const char* key, int32_t size, char* buffer) override {
        Event call = Call("ReadSetting", {{"section", record::Text(section)},
                                          {"key", record::Text(key)},
                                          {"size", size},
                                          {"buffer", buffer != nullptr}});
        if (!IsAnswered(call)) return m_Below->ReadSetting(section, key, size, buffer);
        const bool written = record::Find(call.results, "buffer") != nullptr;
        if (written && buffer != nullptr && size > 0) {
            const std::string text = record::TextOf(call.results, "buffer");
            buffer[text.copy(buffer, static_cast<size_t>(size) - 1)] = '\0';
        }
        return YesNo(call);
    }
};

} // namespace

struct AnsweredHost::Objects {
    Objects(Answerer& answerer, const ObjectsBelow& below, const std::string& suffix,
            Siblings others)
        : siblings(std::move(others)), api(ORN_API, suffix, answerer, below, siblings),
          trace(ORN_VETM_TRACE, suffix, answerer, below, siblings),
          traceClient(ORN_TRACE_CLIENT, suffix, answerer, below, siblings),
          xTraceClient(ORN_XTRACE_CLIENT, suffix, answerer, below, siblings),
          xTrace(ORN_XTRACE, suffix, answerer, below, siblings),
          emu(ORN_EMU, suffix, answerer, below, siblings) {}

    const Siblings siblings;
    Answered<IOrnAPI> api;
    AnsweredTrace trace;
    AnsweredTraceClient traceClient;
    AnsweredXTraceClient xTraceClient;
    Answered<IOrnXTrace> xTrace;
    Answered<IOrnEmu> emu;
};

AnsweredHost::AnsweredHost(Answerer& answerer, const ObjectsBelow& below, const std::string& suffix)
    : m_Objects(std::make_unique<Objects>(answerer, below, suffix,
                                          [this](std::string_view name) { return Find(name); })) {}

AnsweredHost::~AnsweredHost() = default;

IOrnInterface* AnsweredHost::Find(std::string_view name) {
    const std::pair<const char*, IOrnInterface*> objects[] = {
        {ORN_API, &m_Objects->api},
        {ORN_VETM_TRACE, &m_Objects->trace},
        {ORN_TRACE_CLIENT, &m_Objects->traceClient},
        {ORN_XTRACE_CLIENT, &m_Objects->xTraceClient},
        {ORN_XTRACE, &m_Objects->xTrace},
        {ORN_EMU, &m_Objects->emu}};
    const auto* found =
        std::ranges::find(objects, name, &std::pair<const char*, IOrnInterface*>::first);
    return found != std::end(objects) ? found->second : nullptr;
}

Fields FailureOf(const Event& call, const std::string& reason) {
    if (call.operation == "Command") {
        Fields results = {{"return", reason}};
        if (record::IsTrue(call.arguments, "stream")) results.emplace_back("report", "");
        return results;
    }
    if (call.operation.ends_with("Name")) return {{"return", ""}}; // never null
    if (call.operation.ends_with("Version") || call.operation == "GetTraceState")
        return {{"return", 0}};
    if (call.operation == "GetInfoText" || call.operation == "GetSettingsLine" ||
        call.operation == "GetInterface")
        return {{"return", nullptr}};
    if (call.operation == "ReleaseInterface") return {};
    return {{"return", false}};
}

} // namespace etmhost
