#include "check/Checker.h"

#include <algorithm>
#include <cstdlib>

#include "check/HostSide.h"
#include "check/host_proxies.h"
#include "frame/interfaces/IOrnAPI.h"
#include "frame/interfaces/IOrnEmu.h"
#include "frame/interfaces/IOrnTraceClient.h"
#include "frame/interfaces/IOrnVETMTrace.h"
#include "frame/interfaces/IOrnXTrace.h"
#include "frame/interfaces/IOrnXTraceClient.h"
#include "host/record/json_lines.h"
#include "host/record/operations.h"

namespace hostcheck {

namespace {

constexpr struct {
    const char* name;
    bool isOptional;
} kAttachments[] = {{ORN_API, false},           {ORN_VETM_TRACE, false}, {ORN_TRACE_CLIENT, true},
                    {ORN_XTRACE_CLIENT, false}, {ORN_XTRACE, true},      {ORN_EMU, true}};

/// The recording: JSON lines, as docs/etmhost.md tells.
class JournalFile final : public record::EventWriter {
public:
    explicit JournalFile(std::FILE* file) : m_File(file) {}
    void Write(const record::Event& event) override {
        const std::string line = record::ToJsonLine(event) + '\n';
        std::fputs(line.c_str(), m_File);
        std::fflush(m_File); // the host may crash next
    }

private:
    std::FILE* const m_File;
};

bool IsSet(const char* variable) {
    const char* const value = std::getenv(variable);
    return value != nullptr && *value != '\0';
}

Checker* g_Checker = nullptr; // null until it is needed

} // namespace

Checker& Checker::Get() {
    static Checker& checker = *(g_Checker = new Checker); // it stays, whatever is called at the end
    return checker;
}

Checker::Checker()
    : findings(std::getenv("KVETM_CHECK_REPORT"), IsSet("KVETM_CHECK_QUIET"),
               [this](const std::string& line) { events.Note("KVETMHostCheck: " + line); }) {
    const char* const file = std::getenv("KVETM_CHECK_JOURNAL");
    if (file == nullptr || *file == '\0') return;
    std::FILE* const out = std::fopen(file, "wb");
    if (out == nullptr) {
        findings.Complain("cannot write the recording " + Quote(file));
        return;
    }
    events.Add(*new JournalFile(out));
    records = true;
    events.Tell("begin",
                {{"format", record::kFormat}, {"program", "KVETMHostCheck " KVETM_CHECK_VERSION}});
}

void Checker::Record(record::Event event) {
    if (!records) return;
    using Kind = record::Part::Kind;
    const record::Operation* const operation =
        record::FindOperation(event.direction, event.object, event.operation);
    if (operation != nullptr && event.phase != record::Event::Phase::Call) {
        for (const record::Part& part : operation->results) {
            if (part.optional || record::Find(event.results, part.name) != nullptr) continue;
            record::Value value = nullptr;
            if (part.kind == Kind::Number) value = 0;
            if (part.kind == Kind::YesNo) value = false;
            if (event.operation == "Command") value = event.refusal.value_or("");
            event.results.emplace_back(part.name, std::move(value));
        }
    }
    events.Write(event);
}

void Checker::Called(const std::string& place) {
    const std::lock_guard lock(m_Mutex);
    const std::thread::id thread = std::this_thread::get_id();
    if (m_Thread == std::thread::id()) m_Thread = thread;
    if (m_Thread != thread)
        findings.Tell(Rule::OtherThread, place,
                      "it is called on another thread than the first call");
}

void Checker::PathTold(const std::string& path, bool isOwn) {
    const std::lock_guard lock(m_Mutex);
    m_PathTold = true;
    if (!isOwn)
        findings.Tell(Rule::ModulePath, "IOrnAPIBase.SetModulePath",
                      Quote(path) + " is not the full path of the file that was loaded");
}

void Checker::ApiTold() {
    const std::lock_guard lock(m_Mutex);
    m_ApiTold = true;
}

void Checker::ComponentMade() {
    const std::lock_guard lock(m_Mutex);
    ++m_Components;
}

HostSide* Checker::Wrap(const std::string& name, IOrnInterface* object) {
    if (object == nullptr) return nullptr;
    const std::lock_guard lock(m_Mutex);
    for (HostSide* known : m_Objects)
        if (known->object == object && known->name == name) return known;
    HostSide* const made = MakeHostSide(name, object);
    if (made == nullptr) return nullptr;
    const auto count = 1 + std::ranges::count(m_Objects, made->name, &HostSide::name);
    if (count > 1) made->label += "#" + std::to_string(count);
    m_Objects.push_back(made);
    return made;
}

HostSide* Checker::Find(const IOrnInterface* proxy) {
    const std::lock_guard lock(m_Mutex);
    for (HostSide* known : m_Objects)
        if (known->Proxy() == proxy) return known;
    return nullptr;
}

void Checker::Attached(const std::string& name, HostSide* object) {
    HostSide* before = nullptr;
    {
        const std::lock_guard lock(m_Mutex);
        Attachment& attachment = m_Attachments[name];
        before = std::exchange(attachment.object, object);
        if (object != nullptr && m_Init != Init::None && !attachment.wasThere)
            findings.Tell(Rule::CallOrder, "IOrnKVETMCtrl.AttachInterface(" + name + ")",
                          "it was not attached at Init, and is now");
    }
    if (before != nullptr && before != object) before->Farewell();
}

void Checker::CheckAttachments(const char* operation) {
    const bool isInit = std::string_view(operation) == "Init";
    for (const auto& [name, isOptional] : kAttachments) {
        Attachment& attachment = m_Attachments[name];
        if (isInit) attachment.wasThere |= attachment.object != nullptr;
        if (attachment.object != nullptr || (isOptional && !isInit)) continue;
        findings.Tell(isOptional ? Rule::AttachmentAbsent : Rule::AttachmentMissing, name,
                      std::string("it is not attached when ") + operation + " is called");
    }
    if (isInit && !m_ApiTold)
        findings.Tell(Rule::AttachmentAbsent, "IOrnAPIBase.SetAPI",
                      "it has not been called when Init is called");
}

void Checker::BeginWork(const char* operation) {
    const std::lock_guard lock(m_Mutex);
    ++m_Work;
    const std::string_view name = operation;
    CheckAttachments(operation);
    if (name == "Init") return;
    const std::string place =
        (name == "InitBoardFile" ? "IOrnKVETMSupp." : "IOrnKVETMCtrl.") + std::string(name);
    if (m_Init == Init::None)
        findings.Tell(Rule::CallOrder, place, "there was no Init");
    else if (m_Init == Init::Failed)
        findings.Tell(Rule::CallOrder, place, "Init has failed");
    if (name != "Apply" && !m_PathTold)
        findings.Tell(Rule::ModulePath, place, "SetModulePath has not been called");
}

void Checker::EndWork() {
    const std::lock_guard lock(m_Mutex);
    --m_Work;
}

void Checker::InitEnded(bool done) {
    const std::lock_guard lock(m_Mutex);
    if (m_Work > 1 && !done) return; // refused for the moment: what was before remains
    m_Init = done ? Init::Done : Init::Failed;
}

void Checker::ComponentGone(bool last) {
    std::vector<HostSide*> objects;
    {
        const std::lock_guard lock(m_Mutex);
        --m_Components;
        if (!last) return;
        m_Init = Init::None;
        std::string names;
        for (auto& [name, attachment] : m_Attachments) {
            attachment.wasThere = false;
            if (attachment.object == nullptr) continue;
            objects.push_back(attachment.object);
            names += (names.empty() ? "" : ", ") + name;
            // From inside its own calls, nothing can be detached any more.
            if (m_Work > 0) attachment.object = nullptr;
        }
        if (m_Work == 0 && !names.empty())
            findings.Tell(Rule::DetachForgotten, "IOrnAPIBase.DestroyRowObject",
                          "attached still: " + names);
    }
    for (HostSide* object : objects) object->Farewell();
}

void Checker::End() {
    if (g_Checker == nullptr) return;
    const int left = g_Checker->m_Components;
    if (left > 0)
        g_Checker->findings.Tell(Rule::DestroyForgotten, "IOrnAPIBase.DestroyRowObject",
                                 "not called for " + std::to_string(left) +
                                     " of the components that were made");
    g_Checker->findings.Summarize();
}

} // namespace hostcheck
