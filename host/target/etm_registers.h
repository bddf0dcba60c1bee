// Registers of an ETM of the architectures 1 to 3.5, by number. One that is mapped to memory stands
// at the ETM's base plus four times its number.

#pragma once

#include <cstdint>

namespace etmhost {

constexpr uint32_t ETMCR = 0x00;
constexpr uint32_t ETMCCR = 0x01;
constexpr uint32_t ETMTRIGGER = 0x02;
constexpr uint32_t ETMSR = 0x04;
constexpr uint32_t ETMSCR = 0x05;
constexpr uint32_t ETMTSSCR = 0x06;
constexpr uint32_t ETMTECR2 = 0x07;
constexpr uint32_t ETMTEEVR = 0x08;
constexpr uint32_t ETMTECR1 = 0x09;
constexpr uint32_t ETMVDEVR = 0x0C;
constexpr uint32_t ETMVDCR1 = 0x0D;
constexpr uint32_t ETMVDCR2 = 0x0E;
constexpr uint32_t ETMVDCR3 = 0x0F;
constexpr uint32_t ETMACVR = 0x10; ///< the first of 16
constexpr uint32_t ETMACTR = 0x20; ///< the first of 16
constexpr uint32_t ETMCNTENR = 0x54;
constexpr uint32_t ETMCNTRLDEVR = 0x58;
constexpr uint32_t ETMSQEVR = 0x60; ///< the first of 6
constexpr uint32_t ETMEXTOUTEVR = 0x68;
constexpr uint32_t ETMIDR = 0x79;
constexpr uint32_t ETMCCER = 0x7A;
constexpr uint32_t ETMTESSEICR = 0x7C;
constexpr uint32_t ETMTRACEIDR = 0x80;
constexpr uint32_t ETMPDSR = 0xC5;

/// Bits of ETMCR.
constexpr uint32_t ETMCR_POWER_DOWN = 1u << 0;
constexpr uint32_t ETMCR_DATA_VALUES = 1u << 2;
constexpr uint32_t ETMCR_DATA_ADDRESSES = 1u << 3;
constexpr uint32_t ETMCR_DATA = ETMCR_DATA_VALUES | ETMCR_DATA_ADDRESSES;
constexpr uint32_t ETMCR_PROGRAMMING = 1u << 10;
constexpr uint32_t ETMCR_ENABLE = 1u << 11; ///< trace comes out
constexpr uint32_t ETMCR_HALF_RATE = 1u << 13;

/// Bits of ETMSR.
constexpr uint32_t ETMSR_PROGRAMMING = 1u << 1;

/// Of ETMPDSR.
constexpr uint32_t ETMPDSR_OS_LOCKED = 1u << 5;

/// Bits of ETMTECR1.
constexpr uint32_t ETMTECR1_EXCLUDE = 1u << 24;
constexpr uint32_t ETMTECR1_START_STOP = 1u << 25;

/// Of ETMVDCR3: what is not excluded is in.
constexpr uint32_t ETMVDCR3_EXCLUDE_ONLY = 1u << 16;

/// Events: one resource, or its opposite.
constexpr uint32_t ETM_EVENT_MASK = 0x1FFFF;
constexpr uint32_t ETM_EVENT_ALWAYS = 0x6F;
constexpr uint32_t ETM_EVENT_NEVER = 0x406F;
/// Resource of the first EmbeddedICE input, which on a Cortex-M is DWT comparator 0.
constexpr uint32_t ETM_RESOURCE_INPUT = 0x20;

/// Registers that all CoreSight components have, by offset.
constexpr uint32_t CS_PAGE = 0x1000; // the bytes of a component
constexpr uint32_t CS_LAR = 0xFB0;
constexpr uint32_t CS_LSR = 0xFB4;
constexpr uint32_t CS_DEVARCH = 0xFBC;
constexpr uint32_t CS_DEVID = 0xFC8;
constexpr uint32_t CS_DEVTYPE = 0xFCC;
constexpr uint32_t CS_PIDR4 = 0xFD0;
constexpr uint32_t CS_PIDR0 = 0xFE0;
constexpr uint32_t CS_CIDR0 = 0xFF0;
constexpr uint32_t CS_UNLOCK = 0xC5ACCE55;
constexpr uint32_t CS_LSR_IMPLEMENTED = 1;
constexpr uint32_t CS_LSR_LOCKED = 2;

/// Trace port interface unit, by offset.
constexpr uint32_t TPIU_SUPPORTED = 0x000; ///< bit n - 1: a port of n bits
constexpr uint32_t TPIU_CURRENT = 0x004;
constexpr uint32_t TPIU_PRESCALER = 0x010;
constexpr uint32_t TPIU_PROTOCOL = 0x0F0; ///< 0 parallel; 1, 2 serial
constexpr uint32_t TPIU_FORMATTER = 0x304;

/// Embedded trace buffer, by offset.
constexpr uint32_t ETB_DEPTH = 0x004; ///< in words
constexpr uint32_t ETB_STATUS = 0x00C;
constexpr uint32_t ETB_READ_DATA = 0x010;
constexpr uint32_t ETB_READ_POINTER = 0x014;
constexpr uint32_t ETB_WRITE_POINTER = 0x018;
constexpr uint32_t ETB_TRIGGER = 0x01C; ///< this and one more words are stored behind the trigger
constexpr uint32_t ETB_CONTROL = 0x020;
constexpr uint32_t ETB_MODE = 0x028; ///< of a trace memory controller; 0: a circular buffer
constexpr uint32_t ETB_FORMATTER_STATUS = 0x300;
constexpr uint32_t ETB_FORMATTER = 0x304;
constexpr uint32_t ETB_STATUS_FULL = 1;
constexpr uint32_t ETB_STATUS_TRIGGERED = 2;
constexpr uint32_t ETB_STATUS_COMPLETE = 4;
constexpr uint32_t ETB_CAPTURE = 1;
constexpr uint32_t ETB_FORMATTER_STOPPED = 2;
constexpr uint32_t ETB_FORMATTING = 1u << 0;
constexpr uint32_t ETB_FLUSH = 1u << 6; ///< falls when the flush is done
constexpr uint32_t ETB_STOP_ON_FLUSH = 1u << 12;
constexpr uint32_t ETB_STOP_ON_TRIGGER = 1u << 13;

/// Data watchpoint and trace unit, by offset.
constexpr uint32_t DWT_CTRL = 0x000; ///< 31:28 number of comparators
constexpr uint32_t DWT_COMP = 0x020; ///< of comparator 0; the next one 16 behind it
constexpr uint32_t DWT_MASK = 0x024;
constexpr uint32_t DWT_FUNCTION = 0x028;
constexpr uint32_t DWT_FUNCTION_ETM_PC = 8; ///< tells the ETM when the core is at the address

/// The core's debug exception and monitor control register, and the bit that powers trace.
constexpr uint32_t DEMCR = 0xE000EDFC;
constexpr uint32_t DEMCR_TRCENA = 1u << 24;

} // namespace etmhost
