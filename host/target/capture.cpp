#include "host/target/capture.h"

#include <algorithm>
#include <functional>
#include <utility>

#include "frame/interfaces/IOrnVETMTrace.h"
#include "host/support/words.h"
#include "host/target/component_codec.h"
#include "host/target/etm_programming.h"
#include "host/target/etm_registers.h"

namespace etmhost {

namespace {

Refusal TooMany(uint32_t capacity) {
    return "The trace buffer has only " + std::to_string(capacity) + " words";
}

bool EtmSends(uint32_t control) {
    constexpr uint32_t kSending = ETMCR_POWER_DOWN | ETMCR_PROGRAMMING | ETMCR_ENABLE;
    return (control & kSending) == ETMCR_ENABLE;
}

// --- The on-chip buffer ------------------------------------------------------------------

class BufferSink final : public TraceSink {
public:
    BufferSink(RegisterBus& bus, const TraceHardware& hardware, uint32_t& count)
        : m_Bus(bus), m_Hardware(hardware), m_Base(*hardware.etbBase), m_Count(count) {}

    Refusal CheckControl(uint32_t control) const override {
        if ((control & ORN_CONTROL_STOP_WHEN_FULL) != 0)
            return "An on-chip buffer goes round and round: it cannot stop when it is full";
        if ((control & ORN_CONTROL_TRIGGER_PIN) != 0)
            return "No external pin leads to the trigger of this on-chip buffer";
        return {};
    }

    uint32_t TriggerCount() override {
        const uint32_t held = m_Bus.Read(m_Base + ETB_TRIGGER);
        return EncodeTriggerCount(m_Count).value == held ? m_Count : DecodeTriggerCount(held);
    }

    Refusal SetTriggerCount(uint32_t count) override {
        if (count > m_Hardware.capacity) return TooMany(m_Hardware.capacity);
        if (IsCapturing()) return "The trigger count of an ETB cannot be changed while it captures";
        OrAsBefore([&] {
            Prepare();
            Write("the ETB's trigger counter", EncodeTriggerCount(count));
        });
        m_Count = count;
        return {};
    }

    void Start(uint32_t control) override {
        const uint32_t count = TriggerCount();
        OrAsBefore([&] {
            Prepare();
            if ((control & ORN_CONTROL_ACCUMULATE) == 0) Empty();
            m_Bus.Write(m_Base + ETB_TRIGGER, EncodeTriggerCount(count).value);
            constexpr uint32_t kTriggers = ORN_CONTROL_TRIGGER_ADDRESS | ORN_CONTROL_TRIGGER_PIN;
            for (const RegisterWrite& write : EncodeCapture((control & kTriggers) != 0))
                Write(write.offset == ETB_CONTROL ? kControl : "the ETB's formatter control",
                      write);
        });
    }

    void Stop() override {
        if ((m_Bus.Read(m_Base + ETB_CONTROL) & ETB_CAPTURE) == 0) return;
        Unlock(m_Bus, m_Base, "ETB");
        if ((m_Bus.Read(m_Base + ETB_FORMATTER_STATUS) & ETB_FORMATTER_STOPPED) != 0) {
            m_Bus.Write(m_Base + ETB_CONTROL, 0); // its trigger has stopped it
            return;
        }
        const uint32_t formatter = m_Bus.Read(m_Base + ETB_FORMATTER) | ETB_STOP_ON_FLUSH;
        m_Bus.Write(m_Base + ETB_FORMATTER, formatter);
        m_Bus.Write(m_Base + ETB_FORMATTER, formatter | ETB_FLUSH);
        const uint32_t flushed = Await(m_Bus, m_Base + ETB_FORMATTER, ETB_FLUSH, 0);
        m_Bus.Write(m_Base + ETB_CONTROL, 0); // also where the flush does not end
        const uint32_t stopped = Await(m_Bus, m_Base + ETB_FORMATTER_STATUS, ETB_FORMATTER_STOPPED,
                                       ETB_FORMATTER_STOPPED);
        if ((flushed & ETB_FLUSH) != 0 || (stopped & ETB_FORMATTER_STOPPED) == 0) {
            throw BusError("the ETB's formatter did not stop: its control register reads " +
                           Hex(flushed) + ", its status " + Hex(stopped));
        }
    }

    Refusal ForceTrigger() override {
        return "The trigger of an ETB comes from the ETM and cannot be forced";
    }

    Refusal Clear() override {
        if (IsCapturing()) return "An on-chip buffer cannot be cleared while it captures";
        Prepare();
        Empty();
        m_Cleared = true;
        return {};
    }

    std::vector<uint32_t> StateAddresses() const override {
        return {m_Base + ETB_CONTROL, m_Base + ETB_FORMATTER_STATUS, m_Base + ETB_STATUS,
                m_Base + ETB_WRITE_POINTER};
    }

    Capture Look(uint32_t, const std::vector<uint32_t>& words, const Capture& before) override {
        const BufferState state = DecodeBuffer(words[0], words[1], words[2], words[3],
                                               m_Hardware.capacity, m_Hardware.bufferIsController);
        Capture capture = before;
        capture.running = state.running;
        capture.triggered = state.triggered;
        if (state.enabled) m_Cleared = false;
        capture.captured = m_Cleared ? 0 : state.captured;
        return capture;
    }

private:
    static constexpr const char* kControl = "the ETB's control register";

    // Each register of the buffer is written whole.
    void Write(const char* name, const RegisterWrite& write) {
        WriteChecked(m_Bus, name, m_Base + write.offset, write.value, write.mask);
    }

    // Calls `work`. If that fails, nothing captures, and the other registers hold what they did: a
    // capture that a trigger had ended would begin anew if its bit were set again.
    void OrAsBefore(const std::function<void()>& work) {
        std::vector<uint32_t> addresses = {m_Base + ETB_FORMATTER, m_Base + ETB_TRIGGER,
                                           m_Base + ETB_WRITE_POINTER, m_Base + ETB_READ_POINTER};
        if (m_Hardware.bufferIsController) addresses.push_back(m_Base + ETB_MODE);
        const std::vector<uint32_t> words = m_Bus.Read(addresses);
        std::vector<std::pair<uint32_t, uint32_t>> before = {{m_Base + ETB_CONTROL, 0}};
        for (size_t i = 0; i < words.size(); ++i) before.emplace_back(addresses[i], words[i]);
        OrRestore(m_Bus, before, work);
    }

    bool IsCapturing() {
        const uint32_t addresses[] = {m_Base + ETB_CONTROL, m_Base + ETB_FORMATTER_STATUS};
        const std::vector<uint32_t> words = m_Bus.Read(addresses);
        return DecodeBuffer(words[0], words[1], 0, 0, 0, false).running;
    }

    // Opens and disables the buffer, so that its registers can be written.
    void Prepare() {
        Unlock(m_Bus, m_Base, "ETB");
        if ((m_Bus.Read(m_Base + ETB_CONTROL) & ETB_CAPTURE) != 0)
            Write(kControl, EncodeNoCapture());
        if (!m_Hardware.bufferIsController) return;
        Await(m_Bus, m_Base + ETB_STATUS, ETB_STATUS_COMPLETE, ETB_STATUS_COMPLETE);
        WriteChecked(m_Bus, "the buffer's mode register", m_Base + ETB_MODE, 0, 3);
    }

    void Empty() {
        WriteChecked(m_Bus, "the ETB's write pointer", m_Base + ETB_WRITE_POINTER, 0);
        m_Bus.Write(m_Base + ETB_READ_POINTER, 0);
    }

    RegisterBus& m_Bus;
    const TraceHardware& m_Hardware;
    const uint32_t m_Base;
    uint32_t& m_Count;
    bool m_Cleared = false; // since the last capture
};

// --- The port ------------------------------------------------------------------------------

class PortSink final : public TraceSink {
public:
    PortSink(RegisterBus& bus, const TraceHardware& hardware) : m_Bus(bus), m_Hardware(hardware) {}

    Refusal CheckControl(uint32_t control) const override {
        if ((control & ORN_CONTROL_STOP_WHEN_FULL) != 0)
            return "A trace port has no buffer that could be full; what takes its trace is outside";
        if ((control & ORN_CONTROL_TRIGGER_PIN) != 0)
            return "No external pin leads to the trigger of this trace port";
        return {};
    }
    uint32_t TriggerCount() override { return 0; }
    Refusal SetTriggerCount(uint32_t count) override {
        if (count == 0) return {};
        return "A trace port has no buffer with words behind a trigger";
    }
    void Start(uint32_t) override { Gate(ETMCR_ENABLE); }
    void Stop() override { Gate(0); }
    Refusal ForceTrigger() override { return "A TPIU has no trigger that could be forced"; }
    Refusal Clear() override { return {}; }
    Capture Look(uint32_t etmControl, const std::vector<uint32_t>&,
                 const Capture& before) override {
        Capture capture = before;
        capture.running = EtmSends(etmControl);
        return capture;
    }

private:
    void Gate(uint32_t enable) {
        const EtmWrite writes[] = {{ETMCR, enable, ETMCR_ENABLE}};
        ProgramEtm(m_Bus, m_Hardware, {std::begin(writes), std::end(writes)});
    }

    RegisterBus& m_Bus;
    const TraceHardware& m_Hardware;
};

// --- The simulated emulator ----------------------------------------------------------------

class EmulatorSink final : public TraceSink {
public:
    EmulatorSink(const SimulatedChip& chip, const TraceHardware& hardware, Capture& capture,
                 uint32_t& count)
        : m_Chip(chip), m_Hardware(hardware), m_Capture(capture), m_Count(count) {}

    Refusal CheckControl(uint32_t) const override { return {}; }
    uint32_t TriggerCount() override { return m_Count; }
    Refusal SetTriggerCount(uint32_t count) override {
        if (count > m_Hardware.capacity) return TooMany(m_Hardware.capacity);
        m_Count = count;
        return {};
    }

    void Start(uint32_t control) override {
        if (m_Capture.running) return;
        const uint32_t kept = (control & ORN_CONTROL_ACCUMULATE) != 0 ? m_Capture.captured : 0;
        m_Capture = {.running = true, .ended = m_Capture.ended, .captured = kept};
    }
    void Stop() override { m_Capture.running = false; }

    Refusal ForceTrigger() override {
        if (m_Hardware.tpiuBase) return "A TPIU has no trigger that could be forced";
        if (!m_Capture.running) return "Capture is not running";
        Trigger();
        return {};
    }
    Refusal Clear() override {
        m_Capture.captured = 0;
        return {};
    }

    Capture Look(uint32_t, const std::vector<uint32_t>&, const Capture&) override {
        return m_Capture;
    }

    void Step(uint32_t control) override {
        if (!m_Capture.running || !m_Chip.TraceFlows()) return;
        const uint32_t size = m_Hardware.capacity;
        const uint32_t amount = std::max<uint32_t>(size / kStepsToFill, 1);
        m_Capture.steps += 1;
        m_Capture.captured =
            static_cast<uint32_t>(std::min<uint64_t>(uint64_t{m_Capture.captured} + amount, size));
        if (m_Capture.triggered) m_Capture.remaining -= std::min(m_Capture.remaining, amount);
        if (m_Capture.steps == kTriggerStep && !m_Hardware.tpiuBase &&
            (control & ORN_CONTROL_TRIGGER_ADDRESS) != 0 && m_Chip.HasTrigger())
            Trigger();
        constexpr uint32_t kTriggers = ORN_CONTROL_TRIGGER_PIN | ORN_CONTROL_TRIGGER_ADDRESS;
        const bool full = (control & ORN_CONTROL_STOP_WHEN_FULL) != 0 && m_Capture.captured == size;
        const bool behindTrigger =
            (control & kTriggers) != 0 && m_Capture.triggered && m_Capture.remaining == 0;
        if (full || behindTrigger) {
            m_Capture.running = false;
            m_Capture.ended = !m_Capture.ended;
        }
    }

private:
    void Trigger() {
        if (m_Capture.triggered) return;
        m_Capture.triggered = true;
        m_Capture.remaining = m_Count;
    }

    const SimulatedChip& m_Chip;
    const TraceHardware& m_Hardware;
    Capture& m_Capture;
    uint32_t& m_Count;
};

} // namespace

std::unique_ptr<TraceSink> MakeBufferSink(RegisterBus& bus, const TraceHardware& hardware,
                                          uint32_t& count) {
    return std::make_unique<BufferSink>(bus, hardware, count);
}

std::unique_ptr<TraceSink> MakePortSink(RegisterBus& bus, const TraceHardware& hardware) {
    return std::make_unique<PortSink>(bus, hardware);
}

std::unique_ptr<TraceSink> MakeEmulatorSink(const SimulatedChip& chip,
                                            const TraceHardware& hardware, Capture& capture,
                                            uint32_t& count) {
    return std::make_unique<EmulatorSink>(chip, hardware, capture, count);
}

} // namespace etmhost
