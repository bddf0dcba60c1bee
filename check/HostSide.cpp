#include "check/HostSide.h"

#include <algorithm>
#include <iterator>

#include "check/system.h"
#include "frame/interfaces/IOrnAPI.h"
#include "frame/interfaces/IOrnEmu.h"
#include "frame/interfaces/IOrnTraceClient.h"
#include "frame/interfaces/IOrnVETMTrace.h"
#include "frame/interfaces/IOrnXTrace.h"
#include "frame/interfaces/IOrnXTraceClient.h"

namespace hostcheck {

namespace {

constexpr int kIdentityOperations = 6;
constexpr int kHasCommand = 6; // of IOrnXTraceClient
constexpr const char* kInterfaces[] = {ORN_API,           ORN_VETM_TRACE, ORN_TRACE_CLIENT,
                                       ORN_XTRACE_CLIENT, ORN_XTRACE,     ORN_EMU};

bool EqualNoCase(const std::string& one, const std::string& other) {
    const auto small = [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c; };
    return std::ranges::equal(one, other, {}, small, small);
}

void TellOfText(KeptText::State state, const std::string& place, const std::string& text) {
    Findings& findings = Checker::Get().findings;
    if (state == KeptText::State::Bad)
        findings.Tell(Rule::BadText, place, "what it returns is no text that can be read");
    if (state == KeptText::State::Gone)
        findings.Tell(Rule::ShortLivedText, place,
                      "it returns a text whose memory is free already: " + Quote(text));
    if (state == KeptText::State::Changed)
        findings.Tell(Rule::ChangedText, place,
                      "the text that it returned has changed since, which was " + Quote(text));
}

} // namespace

// --- HostSide ---------------------------------------------------------------------------

bool HostSide::IsThere() const {
    void* table = nullptr;
    return m_Table != nullptr && ReadMemory(object, &table, sizeof table) == sizeof table &&
           table == m_Table;
}

const void* HostSide::CodeOf(int slot) const {
    const void* code = nullptr;
    if (m_Table == nullptr) return nullptr;
    const auto* const entry = static_cast<const char*>(m_Table) + sizeof code * slot;
    return ReadMemory(entry, &code, sizeof code) == sizeof code ? code : nullptr;
}

void HostSide::ReadTable() {
    void* table = nullptr;
    if (ReadMemory(object, &table, sizeof table) != sizeof table) table = nullptr;
    m_Table = table;
    m_Missing = 0;
    m_IsAnother = false;
    for (int slot = 0; slot < m_Operations; ++slot)
        if (CodeOf(slot) == nullptr) m_Missing |= 1u << slot;
    if (m_Missing + 1 == 1u << m_Operations) m_Table = nullptr; // none at all
}

void HostSide::TellOfMissing(bool hasCommand) const {
    Findings& findings = Checker::Get().findings;
    if (m_Table == nullptr) {
        findings.Tell(Rule::MissingOperation, name, "the object has no table of operations");
        return;
    }
    for (int slot = 0; slot < (m_IsAnother ? kIdentityOperations : m_Operations); ++slot)
        if ((m_Missing >> slot & 1) != 0 && (hasCommand || slot != kHasCommand))
            findings.Tell(Rule::MissingOperation, name,
                          "the table has no operation in slot " + std::to_string(slot));
}

void HostSide::Look() {
    ReadTable();
    TellOfMissing(true);
}

void HostSide::Introduce() {
    ReadTable();
    const auto ask = [this](int slot, const char* operation, auto&& work) {
        HostCall call(*this, slot, operation, {}, "", HostCall::By::Checker);
        if (call.IsPossible()) Quietly([&] { work(call); });
    };
    ask(
        0, "GetInterfaceName",
        [this](HostCall& call) {
            call.InterfaceName(call.Make([this] { return object->GetInterfaceName(); }));
        });
    ask(2, "GetComponentName", [this](HostCall& call) {
        call.ComponentName(call.Make([this] { return object->GetComponentName(); }));
    });
    bool hasCommand = true;
    if (name == ORN_XTRACE_CLIENT) {
        ask(
            1, "GetInterfaceVersion",
            [&](HostCall& call) {
                const int32_t version =
                    call.Return(call.Make([this] { return object->GetInterfaceVersion(); }));
                hasCommand = version >= ORN_VERSION_WITH_HAS_COMMAND;
                if (!hasCommand)
                    call.Tell(Rule::OldVersion, "the version is " + std::to_string(version));
            });
    }
    TellOfMissing(hasCommand);
}

void HostSide::Farewell() {
    if (m_Table == nullptr) return; // which has been told
    if (!IsThere()) {
        Checker::Get().findings.Tell(Rule::ObjectGone, name,
                                     "the object is not there any more, and still attached");
        return;
    }
    const std::lock_guard lock(m_Mutex);
    TellOfText(m_InterfaceName.Release(), name + ".GetInterfaceName", m_InterfaceName.Words());
    TellOfText(m_ComponentName.Release(), name + ".GetComponentName", m_ComponentName.Words());
}

// --- HostCall ---------------------------------------------------------------------------

namespace {

thread_local HostCall* g_Innermost = nullptr;

} // namespace

HostCall::HostCall(HostSide& side, int slot, const char* operation, record::Fields arguments,
                   const std::string& place, By by)
    : m_Side(side), m_By(by), m_Place(side.name + "." + operation), m_Outer(g_Innermost) {
    if (!place.empty()) m_Place += "(" + place + ")";
    if (by == By::Checker) m_Place += " (asked by the checker)";
    m_Event.direction = record::Event::Direction::ToHost;
    m_Event.object = side.label;
    m_Event.operation = operation;
    m_Event.arguments = std::move(arguments);
    ++side.m_Calls;
    if (side.m_Table != nullptr && side.IsThorough() && !side.IsThere()) {
        Tell(Rule::ObjectGone, "the object is not there any more; it is not called");
    } else {
        const std::lock_guard lock(side.m_Mutex);
        TellOfText(side.m_Text.Release(), side.m_TextPlace, side.m_Text.Words());
        m_Possible = side.m_Table != nullptr && (side.m_Missing >> slot & 1) == 0 &&
                     (!side.m_IsAnother || slot < kIdentityOperations);
    }
    if (!m_Possible) Refuse(kNotMade);
    g_Innermost = this;
}

void HostCall::HostCallsBack() {
    if (g_Innermost != nullptr) g_Innermost->Announce();
}

void HostCall::Announce() {
    if (m_Event.phase != record::Event::Phase::Whole) return;
    if (m_Outer != nullptr) m_Outer->Announce();
    m_Event.phase = record::Event::Phase::Call;
    if (m_By == By::Module) Checker::Get().Record(m_Event);
    m_Event.phase = record::Event::Phase::Return;
    m_Event.arguments.clear();
}

HostCall::~HostCall() {
    g_Innermost = m_Outer;
    Quietly([this] {
        if (m_By == By::Module)
            Checker::Get().Record(m_Event);
        else
            Checker::Get().events.Note("KVETMHostCheck asks " + m_Event.object + "." +
                                       m_Event.operation);
    });
}

void HostCall::Tell(Rule rule, const std::string& what) const {
    Checker::Get().findings.Tell(rule, m_Place, what);
}

void HostCall::Result(const char* name, record::Value value) {
    m_Event.results.emplace_back(name, std::move(value));
}

void HostCall::Replace(const char* name, const record::Value& value) {
    for (auto& [known, old] : m_Event.results)
        if (known == name) old = value;
}

void HostCall::Refuse(const std::string& reason) {
    m_Event.refusal = reason;
}

void HostCall::Thrown(const char* what) {
    Quietly([&] {
        Tell(Rule::Exception, std::string("it has thrown: ") + what);
        Refuse(what);
    });
}

OrnBool HostCall::Truth(OrnBool value) {
    if (value > 1) Tell(Rule::TrueNotOne, "it answers " + std::to_string(value));
    Result("return", value > 1 ? record::Value(value) : record::Value(value == 1));
    return value;
}

const char* HostCall::Text(const char* text) {
    const std::lock_guard lock(m_Side.m_Mutex);
    KeptText& kept = m_Side.m_Text;
    const KeptText::State state = kept.Take(text, this, m_Side.IsThorough());
    TellOfText(state, m_Place, kept.Words());
    m_HasText = state == KeptText::State::Fine;
    m_Side.m_TextPlace = m_Place;
    Result("return", record::Text(kept.Copy()));
    return kept.Copy();
}

const char* HostCall::Name(const char* text, KeptText& kept) {
    const std::string before = kept.Words();
    const bool hadOne = kept.Copy() != nullptr;
    const KeptText::State earlier = kept.Release();
    TellOfText(earlier, m_Place, before);
    const KeptText::State state = kept.Take(text, this, true);
    TellOfText(state, m_Place, kept.Words());
    Result("return", record::Text(kept.Copy()));
    if (state == KeptText::State::Bad) return "";
    if (kept.Copy() == nullptr || kept.Words().empty())
        Tell(Rule::NamelessObject,
             text == nullptr ? "it returns null" : "it returns an empty text");
    else if (hadOne && earlier == KeptText::State::Fine && kept.Words() != before)
        TellOfText(KeptText::State::Changed, m_Place, before);
    return kept.Copy() != nullptr ? kept.Copy() : "";
}

const char* HostCall::ComponentName(const char* text) {
    const std::lock_guard lock(m_Side.m_Mutex);
    return Name(text, m_Side.m_ComponentName);
}

const char* HostCall::InterfaceName(const char* text) {
    const std::lock_guard lock(m_Side.m_Mutex);
    const std::string given = Name(text, m_Side.m_InterfaceName);
    // SetAPI, behind which the module asks, takes the name in any case of the letters.
    const bool fits =
        given == m_Side.name || (m_By == By::Module && EqualNoCase(given, m_Side.name));
    m_Side.m_IsAnother = !fits && std::ranges::find(kInterfaces, given) != std::end(kInterfaces);
    if (!fits && !given.empty())
        Tell(Rule::WrongObject, "the object handed over as " + m_Side.name + " says that it is " +
                                    Quote(given) +
                                    (m_Side.m_IsAnother ? "; nothing but its name is asked" : ""));
    return m_Side.m_InterfaceName.Copy() != nullptr ? m_Side.m_InterfaceName.Copy() : "";
}

} // namespace hostcheck
