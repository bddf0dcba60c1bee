#include "host/serve/Tap.h"

#include "host/serve/DebugPort.h"

namespace etmhost {

namespace {

enum State : uint8_t {
    kReset,
    kIdle,
    kSelectDr,
    kCaptureDr,
    kShiftDr,
    kExit1Dr,
    kPauseDr,
    kExit2Dr,
    kUpdateDr,
    kSelectIr,
    kCaptureIr,
    kShiftIr,
    kExit1Ir,
    kPauseIr,
    kExit2Ir,
    kUpdateIr,
};

// By state, for TMS 0 and 1.
constexpr State kNext[16][2] = {
    {kIdle, kReset},         // Reset
    {kIdle, kSelectDr},      // Idle
    {kCaptureDr, kSelectIr}, // SelectDr
    {kShiftDr, kExit1Dr},    // CaptureDr
    {kShiftDr, kExit1Dr},    // ShiftDr
    {kPauseDr, kUpdateDr},   // Exit1Dr
    {kPauseDr, kExit2Dr},    // PauseDr
    {kShiftDr, kUpdateDr},   // Exit2Dr
    {kIdle, kSelectDr},      // UpdateDr
    {kCaptureIr, kReset},    // SelectIr
    {kShiftIr, kExit1Ir},    // CaptureIr
    {kShiftIr, kExit1Ir},    // ShiftIr
    {kPauseIr, kUpdateIr},   // Exit1Ir
    {kPauseIr, kExit2Ir},    // PauseIr
    {kShiftIr, kUpdateIr},   // Exit2Ir
    {kIdle, kSelectDr},      // UpdateIr
};

constexpr int kInstructionLength = 4;
constexpr uint64_t kInstructionCapture = 1; // the two low bits are so by JTAG's rule

} // namespace

void Tap::Reset() {
    m_State = kReset;
    m_Instruction = DebugPort::kIdCode;
    m_Tdo = true;
}

void Tap::Drive(bool tck, bool tms, bool tdi) {
    if (tck && !m_Tck) Rise(tms, tdi);
    if (!tck && m_Tck) m_Tdo = (m_State != kShiftDr && m_State != kShiftIr) || (m_Shift & 1) != 0;
    m_Tck = tck;
}

void Tap::Rise(bool tms, bool tdi) {
    switch (m_State) {
    case kCaptureDr:
        m_Shift = m_Port.Capture(m_Instruction);
        m_Length = DebugPort::Length(m_Instruction);
        break;
    case kCaptureIr:
        m_Shift = kInstructionCapture;
        m_Length = kInstructionLength;
        break;
    case kShiftDr:
    case kShiftIr:
        m_Shift = m_Shift >> 1 | uint64_t(tdi) << (m_Length - 1);
        break;
    default:
        break;
    }
    m_State = kNext[m_State][tms ? 1 : 0];
    if (m_State == kReset)
        Reset();
    else if (m_State == kUpdateIr)
        m_Instruction = uint32_t(m_Shift);
    else if (m_State == kUpdateDr)
        m_Port.Update(m_Instruction, m_Shift);
}

} // namespace etmhost
