#include "check/host_proxies.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <sstream>
#include <vector>

#include "check/HostSide.h"
#include "check/report.h"
#include "check/system.h"
#include "frame/interfaces/IOrnAPI.h"
#include "frame/interfaces/IOrnEmu.h"
#include "frame/interfaces/IOrnTraceClient.h"
#include "frame/interfaces/IOrnVETMTrace.h"
#include "frame/interfaces/IOrnXTrace.h"
#include "frame/interfaces/IOrnXTraceClient.h"

namespace hostcheck {

namespace {

using record::Text;

constexpr int kFirst = 6; // operation behind those of identity

std::string Hex(uint32_t value) {
    std::ostringstream text;
    text << "0x" << std::hex << std::uppercase << value;
    return text.str();
}

template <class Interface> class HostProxy : public Interface, public HostSide {
public:
    HostProxy(const char* name, IOrnInterface* object, int ownOperations = 0)
        : HostSide(name, object, kFirst + ownOperations) {}

    IOrnInterface* Proxy() override { return this; }

    const char* GetInterfaceName() override {
        HostCall call(*this, 0, "GetInterfaceName", {});
        if (!call.IsPossible()) return "";
        return call.InterfaceName(call.Make([this] { return object->GetInterfaceName(); }));
    }
    int32_t GetInterfaceVersion() override {
        HostCall call(*this, 1, "GetInterfaceVersion", {});
        if (!call.IsPossible()) return 0;
        return call.Return(call.Make([this] { return object->GetInterfaceVersion(); }));
    }
    const char* GetComponentName() override {
        HostCall call(*this, 2, "GetComponentName", {});
        if (!call.IsPossible()) return "";
        return call.ComponentName(call.Make([this] { return object->GetComponentName(); }));
    }
    int32_t GetComponentVersion() override {
        HostCall call(*this, 3, "GetComponentVersion", {});
        if (!call.IsPossible()) return 0;
        return call.Return(call.Make([this] { return object->GetComponentVersion(); }));
    }
    IOrnInterface* GetInterface(const char* name) override {
        HostCall call(*this, 4, "GetInterface", {{"name", Text(name)}});
        if (!call.IsPossible()) return nullptr;
        IOrnInterface* const found = call.Make([&] { return object->GetInterface(name); });
        call.Result("return", Text(found != nullptr ? name : nullptr));
        return found;
    }
    void ReleaseInterface(IOrnInterface* released) override {
        HostCall call(*this, 5, "ReleaseInterface", {{"object", released != nullptr}});
        if (call.IsPossible()) call.Make([&] { object->ReleaseInterface(released); });
    }

protected:
    Interface& Host() { return *static_cast<Interface*>(object); }
};

// --- Words and buffers that the host writes to --------------------------------------------

/// Memory for what the host writes, with more behind it that it must leave alone.
class Guarded {
public:
    Guarded(size_t size, unsigned char seed) : m_Size(size), m_Bytes(size + kBehind) {
        for (size_t i = 0; i < m_Bytes.size(); ++i) m_Bytes[i] = Seed(i, seed);
        m_Seed = seed;
    }

    template <class Word> Word* As() { return reinterpret_cast<Word*>(m_Bytes.data()); }
    bool IsWritten(size_t index) const { return m_Bytes[index] != Seed(index, m_Seed); }
    bool IsUntouched() const {
        for (size_t i = 0; i < m_Size; ++i)
            if (IsWritten(i)) return false;
        return true;
    }
    void CheckBehind(const HostCall& call) const {
        for (size_t i = m_Size; i < m_Bytes.size(); ++i) {
            if (!IsWritten(i)) continue;
            call.Tell(Rule::BufferOverrun, "it writes behind the " + std::to_string(m_Size) +
                                               " bytes that it was given");
            return;
        }
    }

private:
    static constexpr size_t kBehind = 64;
    static unsigned char Seed(size_t index, unsigned char seed) {
        return static_cast<unsigned char>(seed ^ (index % 4 * 0x29));
    }

    size_t m_Size;
    std::vector<unsigned char> m_Bytes;
    unsigned char m_Seed = 0;
};

constexpr unsigned char kSeed = 0xA6;
constexpr unsigned char kOtherSeed = 0x59; // no byte is as with the first

/// Copies the bytes of `word` that were written.
void TakeWritten(Guarded& word, uint32_t& value) {
    auto* const bytes = reinterpret_cast<unsigned char*>(&value);
    for (size_t i = 0; i < sizeof value; ++i)
        if (word.IsWritten(i)) bytes[i] = word.As<unsigned char>()[i];
}

// --- IOrnVETMTrace ------------------------------------------------------------------------

/// What tells commands apart: "etm pc" of "etm pc=start main".
std::string KindOf(const std::string& command) {
    const size_t first = command.find(' ');
    const bool isEtm = command.starts_with("etm ");
    return Quote(command.substr(0, isEtm ? command.find_first_of(" =", first + 1) : first));
}

class TraceProxy final : public HostProxy<IOrnVETMTrace> {
public:
    explicit TraceProxy(IOrnInterface* object) : HostProxy(ORN_VETM_TRACE, object, 7) {}

    const char* Command(const char* text, std::ostream* stream) override {
        HostCall call(*this, kFirst, "Command",
                      {{"text", Text(text)}, {"stream", stream != nullptr}},
                      text != nullptr ? KindOf(text) : "");
        if (!call.IsPossible()) return HostCall::kNotMade;
        if (stream == nullptr)
            return Judged(call, call.Make([&] { return Host().Command(text, nullptr); }));
        if (UsesOtherCxxLibrary(CodeOf(kFirst)))
            call.Tell(Rule::OtherLibrarysStream,
                      "it is called next; what it writes may get lost, or end the program");
        std::ostringstream report; // of which a copy goes on
        const char* const answer =
            Judged(call, call.Make([&] { return Host().Command(text, &report); }));
        const std::string written = report.str();
        stream->write(written.data(), static_cast<std::streamsize>(written.size()));
        call.Result("report", written);
        if (answer == nullptr) CheckReport(call, written);
        return answer;
    }

    const char* GetInfoText(uint32_t which) override {
        HostCall call(*this, kFirst + 1, "GetInfoText", {{"which", which}});
        if (!call.IsPossible()) return nullptr;
        return call.Text(call.Make([&] { return Host().GetInfoText(which); }));
    }

    uint32_t GetTraceState(uint32_t* detail) override {
        HostCall call(*this, kFirst + 2, "GetTraceState", {{"detail", detail != nullptr}});
        if (!call.IsPossible()) return 0;
        Guarded word(sizeof *detail, kSeed);
        const uint32_t state = call.Return(call.Make([&] {
            return Host().GetTraceState(detail != nullptr ? word.As<uint32_t>() : nullptr);
        }));
        word.CheckBehind(call);
        if (detail == nullptr || word.IsUntouched()) return state;
        TakeWritten(word, *detail);
        call.Result("detail", *detail);
        return state;
    }

    OrnBool HasFeature(uint32_t feature) override {
        HostCall call(*this, kFirst + 3, "HasFeature", {{"feature", feature}}, Hex(feature));
        if (!call.IsPossible()) return 0;
        return call.Truth(call.Make([&] { return Host().HasFeature(feature); }));
    }

    OrnBool SetValue(uint32_t id, uint32_t value) override {
        HostCall call(*this, kFirst + 4, "SetValue", {{"id", id}, {"value", value}}, Hex(id));
        if (!call.IsPossible()) return 0;
        return call.Truth(call.Make([&] { return Host().SetValue(id, value); }));
    }

    OrnBool GetValue(uint32_t id, uint32_t* value) override {
        HostCall call(*this, kFirst + 5, "GetValue", {{"id", id}, {"value", value != nullptr}},
                      Hex(id));
        if (!call.IsPossible() || value == nullptr) return 0;
        Guarded word(sizeof *value, kSeed);
        const OrnBool answer =
            call.Truth(call.Make([&] { return Host().GetValue(id, word.As<uint32_t>()); }));
        word.CheckBehind(call);
        if (answer == 0) return answer;
        FindUnwritten(call, id, word);
        TakeWritten(word, *value);
        call.Result("value", *value);
        return answer;
    }

    const char* GetSettingsLine(uint32_t index) override {
        HostCall call(*this, kFirst + 6, "GetSettingsLine", {{"index", index}});
        if (!call.IsPossible()) return nullptr;
        const char* const line =
            call.Text(call.Make([&] { return Host().GetSettingsLine(index); }));
        if (index == 0) m_EmptyLines = 0;
        const bool blankBefore = m_EmptyLines > 0;
        m_EmptyLines = call.HasText() && line != nullptr && *line == '\0' ? m_EmptyLines + 1 : 0;
        const auto tell = [&](Rule rule, const std::string& what) {
            call.Tell(rule, "line " + std::to_string(index) + what);
        };
        if (line == nullptr && blankBefore)
            call.Tell(Rule::LinesEnd,
                      "line " + std::to_string(index - 1) + ", the last one, is an empty text");
        if (call.HasText() && line != nullptr && std::strpbrk(line, "\r\n") != nullptr)
            tell(Rule::LineBreak, " has a line end: " + Quote(line));
        if (line != nullptr && index + 1 >= kMostLines)
            tell(Rule::LinesEnd, " is there still, and no null");
        if (m_EmptyLines < kMostEmptyLines) return line;
        tell(Rule::LinesEnd,
             " is an empty text, as are those before it; the checker ends the lines");
        call.Replace("return", nullptr);
        return nullptr;
    }

private:
    static constexpr uint32_t kMostLines = 1000000; // behind which the module asks no more
    static constexpr uint32_t kMostEmptyLines = 1000;

    static const char* Judged(HostCall& call, const char* answer) {
        const char* const text = call.Text(answer);
        if (text == nullptr) return nullptr;
        call.Refuse(text);
        if (call.HasText() && *text == '\0')
            call.Tell(Rule::EmptyRefusal, "it refuses with an empty text; null is success");
        return text;
    }

    /// Looks for bytes of a value that the host has not written. If some look so, that may be by
    /// chance: then it is asked again, with others there before.
    void FindUnwritten(const HostCall& call, uint32_t id, const Guarded& word) {
        bool suspicious = false;
        for (size_t i = 0; i < sizeof(uint32_t); ++i) suspicious |= !word.IsWritten(i);
        if (!suspicious) return;
        Guarded second(sizeof(uint32_t), kOtherSeed);
        {
            HostCall again(*this, kFirst + 5, "GetValue", {}, Hex(id), HostCall::By::Checker);
            if (!again.IsPossible()) return;
            again.Make([&] { return Host().GetValue(id, second.As<uint32_t>()); });
        }
        size_t unwritten = 0;
        for (size_t i = 0; i < sizeof(uint32_t); ++i)
            unwritten += !word.IsWritten(i) && !second.IsWritten(i) ? 1 : 0;
        if (unwritten > 0)
            call.Tell(Rule::ValueNotWritten, "it answers true, and has not written " +
                                                 std::to_string(unwritten) + " of 4 bytes");
    }

    uint32_t m_EmptyLines = 0; // one after the other
};

// --- IOrnTraceClient ----------------------------------------------------------------------

class TraceClientProxy final : public HostProxy<IOrnTraceClient> {
public:
    explicit TraceClientProxy(IOrnInterface* object) : HostProxy(ORN_TRACE_CLIENT, object, 1) {}

    OrnBool Action(const char* action, const char* argument) override {
        HostCall call(*this, kFirst, "Action",
                      {{"action", Text(action)}, {"argument", Text(argument)}});
        if (!call.IsPossible()) return 0;
        return call.Truth(call.Make([&] { return Host().Action(action, argument); }));
    }
};

// --- IOrnXTraceClient ---------------------------------------------------------------------

class XTraceClientProxy final : public HostProxy<IOrnXTraceClient> {
public:
    explicit XTraceClientProxy(IOrnInterface* object) : HostProxy(ORN_XTRACE_CLIENT, object, 3) {}

    OrnBool HasCommand(const char* name) override {
        HostCall call(*this, kFirst, "HasCommand", {{"name", Text(name)}});
        if (!call.IsPossible()) return 0;
        return call.Truth(call.Make([&] { return Host().HasCommand(name); }));
    }

    OrnBool WriteSetting(const char* section, const char* key, const char* value) override {
        HostCall call(*this, kFirst + 1, "WriteSetting",
                      {{"section", Text(section)}, {"key", Text(key)}, {"value", Text(value)}});
        if (!call.IsPossible()) return 0;
        const OrnBool taken =
            call.Truth(call.Make([&] { return Host().WriteSetting(section, key, value); }));
        m_HasWritten = taken != 0 && value != nullptr; // the module has but one setting
        if (m_HasWritten) m_Written = value;
        return taken;
    }

    OrnBool ReadSetting(const char* section, const char* key, int32_t size, char* buffer) override {
        HostCall call(*this, kFirst + 2, "ReadSetting",
                      {{"section", Text(section)},
                       {"key", Text(key)},
                       {"size", size},
                       {"buffer", buffer != nullptr}});
        if (!call.IsPossible() || buffer == nullptr || size <= 0) return 0;
        const auto room = static_cast<size_t>(size);
        Guarded bytes(room, kSeed);
        const OrnBool answer = call.Truth(
            call.Make([&] { return Host().ReadSetting(section, key, size, bytes.As<char>()); }));
        bytes.CheckBehind(call);
        const bool found = answer != 0 && !bytes.IsUntouched();
        if (answer != 0 && !found)
            call.Tell(Rule::ValueNotWritten, "it answers true, and has written no text");
        if (found) {
            std::memcpy(buffer, bytes.As<char>(), room);
            if (std::memchr(buffer, '\0', room) == nullptr) {
                call.Tell(Rule::SettingEnd,
                          "no NUL is among the " + std::to_string(size) + " bytes");
                buffer[room - 1] = '\0';
            }
            call.Result("buffer", Text(buffer));
        }
        if (m_HasWritten && (!found || m_Written.substr(0, room - 1) != buffer))
            call.Tell(Rule::SettingLost, "it has taken " + Quote(m_Written) + ", and gives " +
                                             (found ? Quote(buffer) : "nothing"));
        m_HasWritten = false;
        return answer;
    }

private:
    bool m_HasWritten = false;
    std::string m_Written;
};

} // namespace

HostSide* MakeHostSide(const std::string& name, IOrnInterface* object) {
    if (name == ORN_API) return new HostProxy<IOrnAPI>(ORN_API, object);
    if (name == ORN_VETM_TRACE) return new TraceProxy(object);
    if (name == ORN_TRACE_CLIENT) return new TraceClientProxy(object);
    if (name == ORN_XTRACE_CLIENT) return new XTraceClientProxy(object);
    if (name == ORN_XTRACE) return new HostProxy<IOrnXTrace>(ORN_XTRACE, object);
    if (name == ORN_EMU) return new HostProxy<IOrnEmu>(ORN_EMU, object);
    return nullptr;
}

} // namespace hostcheck
