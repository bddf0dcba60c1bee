// HostSide: the checker's view of one object of the host.
//
// Who owns it: nobody; it stays for good, because the module may have it.

#pragma once

#include <atomic>
#include <cstdint>
#include <optional>
#include <string>

#include "check/Checker.h"
#include "check/texts.h"
#include "frame/interfaces/IOrnInterface.h"

namespace hostcheck {

class HostSide {
public:
    /// Something of the type of that interface which calls `object`.
    virtual IOrnInterface* Proxy() = 0;

    IOrnInterface* const object;
    const std::string name; ///< of the interface
    std::string label;      ///< in the record: the name, with "#2" behind it for a second object

    /// Looks at the object as it is now, without a call of it.
    void Look();
    /// Looks at it and asks it what it is.
    void Introduce();
    /// The attachment ends, and so does what the object owes.
    void Farewell();

protected:
    /// `operations`: how many the interface has.
    HostSide(const char* name, IOrnInterface* object, int operations)
        : object(object), name(name), label(name), m_Operations(operations) {}
    ~HostSide() = default;

    /// The address of the code of an operation; null if there is none.
    const void* CodeOf(int slot) const;

private:
    friend class HostCall;

    /// Whether the next call is worth the effort to look: each of the first, and a few of those
    /// behind them. A host may give a million lines.
    bool IsThorough() const { return m_Calls < 10000 || m_Calls % 64 == 0; }
    bool IsThere() const;
    void ReadTable();
    void TellOfMissing(bool hasCommand) const;

    const int m_Operations;
    void* m_Table = nullptr;  // null: there is none
    uint32_t m_Missing = 0;   // bit n: operation n
    bool m_IsAnother = false; // an object of another interface, with the table of that
    std::atomic<int> m_Calls = 0;
    std::mutex m_Mutex; // for the texts
    KeptText m_Text, m_InterfaceName, m_ComponentName;
    std::string m_TextPlace;
};

/// A call of an operation of the host. Looks ahead of it whether it can be made, and records it
/// behind it.
class HostCall {
public:
    /// Who wants it to be made.
    enum class By { Module, Checker };

    /// `slot` is the operation's number. `place` tells places of one operation apart.
    HostCall(HostSide& side, int slot, const char* operation, record::Fields arguments,
             const std::string& place = "", By by = By::Module);
    ~HostCall();
    HostCall(const HostCall&) = delete;
    HostCall& operator=(const HostCall&) = delete;

    static constexpr const char* kNotMade = "KVETMHostCheck does not call this object";

    /// Returns whether the object can be called. If not, that is recorded as a refusal.
    bool IsPossible() const { return m_Possible; }

    /// Makes the call. What it throws is told of, and goes on to the module, which expects it.
    template <class Work> auto Make(Work&& work) {
        try {
            return work();
        } catch (const std::exception& error) {
            Thrown(error.what());
            throw;
        } catch (...) {
            Thrown("no std::exception");
            throw;
        }
    }

    /// Takes what was returned, and returns what the module gets in its place.
    OrnBool Truth(OrnBool value);
    const char* Text(const char* text);
    const char* InterfaceName(const char* text);
    const char* ComponentName(const char* text);
    template <class Number> Number Return(Number value) {
        Result("return", value);
        return value;
    }
    void Result(const char* name, record::Value value);
    void Replace(const char* name, const record::Value& value);
    void Refuse(const std::string& reason);

    void Tell(Rule rule, const std::string& what) const;

    /// Whether the text that was returned can be judged: what is in free memory says nothing.
    bool HasText() const { return m_HasText; }

    /// The host calls the module. Calls on this thread from inside which it does so are recorded
    /// ahead of that, and at their end once more.
    static void HostCallsBack();

private:
    void Announce();
    const char* Name(const char* text, KeptText& kept);
    void Thrown(const char* what);

    HostSide& m_Side;
    const By m_By;
    std::string m_Place;
    bool m_Possible = false;
    bool m_HasText = true;
    record::Event m_Event;
    HostCall* const m_Outer; // the call from inside which this one was made
};

} // namespace hostcheck
