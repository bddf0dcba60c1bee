#include "host/serve/DebugPort.h"

#include "host/target/RegisterBus.h"

namespace etmhost {

namespace {

constexpr uint32_t kAnswerOk = 2; // of a fault too: a debugger asks for CTRL/STAT

// CTRL/STAT
constexpr uint32_t kOverrunDetect = 1u << 0;
constexpr uint32_t kStickyOverrun = 1u << 1;
constexpr uint32_t kStickyCompare = 1u << 4;
constexpr uint32_t kStickyError = 1u << 5;
constexpr uint32_t kSticky = kStickyOverrun | kStickyCompare | kStickyError;
constexpr uint32_t kDebugPowerRequest = 1u << 28;
constexpr uint32_t kSystemPowerRequest = 1u << 30;
constexpr uint32_t kRequests = kDebugPowerRequest | kSystemPowerRequest;

} // namespace

int DebugPort::Length(uint32_t instruction) {
    switch (instruction) {
    case kAbort:
    case kDpAccess:
    case kApAccess:
        return 35;
    case kIdCode:
        return 32;
    default:
        return 1;
    }
}

uint64_t DebugPort::Capture(uint32_t instruction) const {
    switch (instruction) {
    case kDpAccess:
    case kApAccess:
        return uint64_t(m_Result) << 3 | kAnswerOk;
    case kIdCode:
        return kIdentification;
    default:
        return 0;
    }
}

void DebugPort::Update(uint32_t instruction, uint64_t bits) {
    const bool read = (bits & 1) != 0;
    const uint32_t address = uint32_t(bits) << 1 & 0xC;
    const auto value = uint32_t(bits >> 3);
    if (instruction == kDpAccess)
        AccessDebugPort(address, read, value);
    else if (instruction == kApAccess)
        AccessAccessPort(address, read, value);
    // Nothing is ever under way that ABORT could end.
}

uint32_t DebugPort::Status() const {
    return m_Control | (m_Control & kRequests) << 1; // granted at once
}

void DebugPort::AccessDebugPort(uint32_t address, bool read, uint32_t value) {
    constexpr uint32_t kControlStatus = 0x4, kSelect = 0x8;
    if (read) {
        // RDBUFF is 0 by itself: it is read to fetch the answer to the access before.
        m_Result = address == kControlStatus ? Status() : address == kSelect ? m_Select : 0;
    } else if (address == kControlStatus) {
        constexpr uint32_t kTaken = kRequests | kOverrunDetect;
        m_Control = (m_Control & kSticky & ~value) | (value & kTaken);
    } else if (address == kSelect) {
        m_Select = value;
    }
}

void DebugPort::AccessAccessPort(uint32_t address, bool read, uint32_t value) {
    if ((m_Control & kSticky) != 0) return; // until the debugger has taken note
    if ((m_Control & kDebugPowerRequest) == 0) {
        m_Control |= kStickyError;
        return;
    }
    if (m_Select >> 24 != 0) { // nothing there: an identification of 0
        m_Result = 0;
        return;
    }
    const uint32_t reg = (m_Select & 0xF0) | address;
    try {
        if (read)
            m_Result = m_Port.Read(reg);
        else
            m_Port.Write(reg, value);
    } catch (const BusError&) {
        m_Control |= kStickyError;
    }
}

} // namespace etmhost
