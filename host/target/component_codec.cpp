#include "host/target/component_codec.h"

#include <algorithm>

#include "host/target/etm_registers.h"

namespace etmhost {

namespace {

constexpr uint32_t kDwtFunction = 0xF;
constexpr uint32_t kDwtStep = 16; // from one comparator's registers to the next one's

// What would make a comparator compare a data value or a cycle count, or send packets.
constexpr uint32_t kDwtCompares = (1u << 5) | (1u << 7) | (1u << 8);
constexpr uint32_t kDwtReadOnly = (1u << 9) | (1u << 24);

} // namespace

bool DwtState::TellsTheEtm() const {
    return function == DWT_FUNCTION_ETM_PC;
}

DwtState DecodeDwt(uint32_t address, uint32_t function) {
    return {address, function & kDwtFunction};
}

std::vector<RegisterWrite> EncodeDwt(uint32_t index, std::optional<uint32_t> address) {
    const uint32_t own = kDwtStep * index;
    if (!address) return {{DWT_FUNCTION + own, 0, kDwtFunction}};
    // It does nothing while its address is another one.
    return {{DWT_FUNCTION + own, 0, kDwtFunction | kDwtCompares | kDwtReadOnly},
            {DWT_COMP + own, *address},
            {DWT_MASK + own, 0, 0x1F},
            {DWT_FUNCTION + own, DWT_FUNCTION_ETM_PC, kDwtFunction | kDwtCompares}};
}

uint32_t DecodePortSize(uint32_t word) {
    const std::vector<uint32_t> sizes = PortSizes(word);
    return sizes.size() == 1 ? sizes[0] : 0;
}

RegisterWrite EncodePortSize(uint32_t bits) {
    return {TPIU_CURRENT, PortSizeMask(std::span(&bits, 1))};
}

uint32_t DecodeTriggerCount(uint32_t word) {
    return word + 1;
}

RegisterWrite EncodeTriggerCount(uint32_t count) {
    return {ETB_TRIGGER, count > 0 ? count - 1 : 0};
}

std::vector<RegisterWrite> EncodeCapture(bool stopsOnTrigger) {
    // Formatting on, without bypass, trigger marks or other reasons to flush and stop.
    constexpr uint32_t kFormatter =
        (1u << 0) | (1u << 1) | (0x7u << 4) | ETB_STOP_ON_FLUSH | ETB_STOP_ON_TRIGGER;
    return {
        {ETB_FORMATTER, ETB_FORMATTING | (stopsOnTrigger ? ETB_STOP_ON_TRIGGER : 0), kFormatter},
        {ETB_CONTROL, ETB_CAPTURE, ETB_CAPTURE}};
}

RegisterWrite EncodeNoCapture() {
    return {ETB_CONTROL, 0, ETB_CAPTURE};
}

BufferState DecodeBuffer(uint32_t control, uint32_t formatterStatus, uint32_t status,
                         uint32_t writePointer, uint32_t depth, bool isController) {
    BufferState state{};
    state.enabled = (control & ETB_CAPTURE) != 0;
    state.running = state.enabled && (formatterStatus & ETB_FORMATTER_STOPPED) == 0;
    state.triggered = (status & ETB_STATUS_TRIGGERED) != 0;
    // "Full" stays until the next capture begins.
    const bool full = (status & ETB_STATUS_FULL) != 0;
    state.captured = full ? depth : std::min(isController ? writePointer / 4 : writePointer, depth);
    return state;
}

} // namespace etmhost
