// The test access port of a chip: the state machine of JTAG over its four lines.

#pragma once

#include <cstdint>

namespace etmhost {

class DebugPort;

/// A TAP with instructions of 4 bits in front of a debug port.
class Tap {
public:
    /// `port` must outlive this object.
    explicit Tap(DebugPort& port) : m_Port(port) {}

    /// Puts levels on the inputs. TMS and TDI are looked at when TCK rises, and TDO changes when
    /// it falls.
    void Drive(bool tck, bool tms, bool tdi);

    /// The level of the output; high while nothing is scanned.
    bool Tdo() const { return m_Tdo; }

    /// What a low level of TRST does.
    void Reset();

private:
    void Rise(bool tms, bool tdi);

    DebugPort& m_Port;
    uint8_t m_State = 0;
    bool m_Tck = false, m_Tdo = true;
    uint32_t m_Instruction = 0xE; ///< IDCODE, as behind a reset
    uint64_t m_Shift = 0;
    int m_Length = 1; ///< of what is scanned, bits
};

} // namespace etmhost
