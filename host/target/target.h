// The target: what this host changes and reads on a chip, and what it remembers of it.

#pragma once

#include <initializer_list>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "host/support/refusal.h"
#include "host/target/capture.h"
#include "host/target/component_codec.h"
#include "host/target/etm_codec.h"
#include "host/target/expression.h"
#include "host/target/trace_hardware.h"

namespace etmhost {

/// What a target keeps beside the registers of a real chip.
struct TargetState {
    uint32_t control = 0; ///< as it was set last; trace enabled is the chip's
    uint32_t triggerCount = 0;
    std::string macro;      ///< value of the last "macro" command
    bool pinsReady = false; ///< a board file has switched the trace pins on
    TraceSettings trace;    ///< as they were asked for: the texts, and what is not complete yet
    Capture capture;
    ChipRegisters registers; ///< of a simulated chip, where they differ from those after reset
    std::map<uint32_t, uint32_t> dwt; ///< comparators that were set here, with their addresses

    bool operator==(const TargetState&) const = default;
};

/// An address as a person typed it, and what it is.
struct Address {
    std::string text;
    uint32_t value = 0;
};

/// One comparator of the DWT.
struct DwtComparator : DwtState {
    bool setHere = false;
    bool lost = false; ///< it was set here, and does not hold that any more
};

/// In target.cpp and, for what it traces, target_settings.cpp. Commands give a refusal; what only
/// reads throws BusError where the chip doesn't answer.
class Target {
public:
    /// A simulated chip fresh from reset. `chip` and `symbols` must outlive the target.
    explicit Target(const Chip& chip, const Symbols& symbols = NoSymbols());

    /// A chip behind `bus`. What is done beside what was asked for goes to `tell`.
    Target(std::unique_ptr<RegisterBus> bus, TraceHardware hardware, const Symbols& symbols,
           Tell tell);

    Target(const Target&) = delete;
    Target& operator=(const Target&) = delete;

    const TraceHardware& hardware() const { return m_Hardware; }
    const EtmResources& etm() const { return m_Hardware.etm; }
    /// Returns why the connection to the chip was lost; empty as long as it is there.
    const std::string& lost() const { return m_Lost; }
    bool IsSimulated() const { return m_Simulated != nullptr; }

    /// Says something on a line of its own to the person at the host.
    void TellPerson(const std::string& text) const { m_Tell(text); }

    TargetState state;

    // --- What it traces ---

    /// Returns what the registers set. A typed address stands for its value as long as it has that.
    TraceSettings Settings();

    /// Returns the settings as lines of text, the way GetSettingsLine hands them out.
    std::vector<std::string> SettingsLines();

    Refusal TracePc(PcTrace mode); ///< none, all, or what others have programmed
    Refusal StartPcAt(const Address& address);
    Refusal StopPcAt(const Address& address);
    /// One end of a range; the registers change when both are known.
    Refusal TracePcFrom(const Address& address);
    Refusal TracePcTo(const Address& address);
    Refusal TraceData(DataTrace kind); ///< everywhere
    Refusal TraceDataFrom(const Address& address);
    Refusal TraceDataTo(const Address& address);
    Refusal SetTrigger(const Address& address);
    Refusal SetPortSize(uint32_t bits);
    Refusal SetHalfRate(bool on);

    /// Takes `kept` of an earlier run over. What a real chip's registers say goes before it; the
    /// registers of a simulated one are set where `hasRegisters` says that `kept` has none of its
    /// own.
    void TakeOver(const TargetState& kept, bool hasRegisters);

    // --- Comparators of the DWT ---

    std::vector<DwtComparator> DwtComparators();
    /// Has comparator `index` tell the ETM when the core is at `address`. Refused for one that does
    /// something else: it is the debugger's.
    Refusal SetDwt(uint32_t index, uint32_t address);
    Refusal ClearDwt(uint32_t index);

    // --- Capture ---

    /// Returns the control word: trace enabled as the chip says, the rest as it was set.
    uint32_t Control();
    /// Takes a new control word; refused if it has a bit that the target lacks. Without
    /// ORN_CONTROL_TRIGGER_ADDRESS the trigger is disarmed.
    Refusal SetControl(uint32_t word);
    Refusal Enable(bool on);

    /// Words to capture behind the trigger. More than the buffer has are refused; so is any change
    /// while an on-chip buffer captures: it ignores the write then.
    uint32_t TriggerCount();
    Refusal SetTriggerCount(uint32_t count);

    Refusal Start();
    Refusal Stop();
    Refusal ForceTrigger();
    Refusal ClearBuffer();

    /// Looks at the capture, as Poll does, without letting time go by. Throws BusError.
    void Look();

    /// Looks at the capture, by one access to the chip; of a simulated one a step of time goes by
    /// first. Refused if the chip doesn't answer: the capture then counts as stopped.
    Refusal Poll();

    /// Returns the state word of GetTraceState, as it was at the last look.
    uint32_t StateWord() const;

    // --- The board ---

    /// Has the debug server prepare the pins by its own means, for the size that the port has. A
    /// size that is set later has it do so again.
    Refusal PreparePins();
    void ForgetPins(); ///< another board is used
    Refusal WriteMemory(uint32_t address, uint32_t value);

    static const Symbols& NoSymbols();

private:
    void Prepare();
    void Reprogram();
    Refusal Catch(const std::function<Refusal()>& action);
    Refusal Try(const std::function<Refusal()>& action); ///< gives trace its power first
    EtmImage ReadImage();
    bool IsEnabled();
    void PowerTrace();
    void Program(const std::vector<EtmWrite>& writes);
    Refusal ProgramPc(const EtmImage& image, EtmSettings wanted);
    Refusal ProgramPcEnds(PcTrace mode, const std::optional<Address>& begin,
                          const std::optional<Address>& end);
    Refusal ProgramDataRange(const Address& begin, const Address& end);
    Refusal PcRangeEnd(const Address& address, bool isEnd);
    Refusal DataRangeEnd(const Address& address, bool isEnd);
    Refusal CheckDwt(std::initializer_list<std::optional<uint32_t>> indexes);
    void Disarm();
    std::vector<EtmWrite> SendingWrites();
    void CheckProtocol();
    std::string TextOf(const std::string& typed, uint32_t value) const;
    std::optional<Address> Typed(const std::string& text) const;

    const Symbols& m_Symbols;
    Tell m_Tell = [](const std::string&) {};
    SimulatedChip* m_Simulated = nullptr;
    std::unique_ptr<RegisterBus> m_Bus;
    TraceHardware m_Hardware;
    std::unique_ptr<TraceSink> m_Sink;
    std::string m_Lost;
    bool m_PowerLost = false;    // and told so
    uint32_t m_PreparedSize = 0; // of the port, when the server prepared it; 0: it has not
};

} // namespace etmhost
