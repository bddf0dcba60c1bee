#include "host/serve/MemoryAccessPort.h"

#include "host/target/RegisterBus.h"

namespace etmhost {

namespace {

enum Register : uint32_t {
    kControl = 0x00,
    kAddress = 0x04,
    kData = 0x0C,
    kBanked = 0x10, // to 0x1C: four words around the address
    kRomTable = 0xF8,
    kIdr = 0xFC,
};

// CSW
constexpr uint32_t kSizeMask = 0x7, kWord = 2; // 1 << size bytes
constexpr uint32_t kIncrementMask = 0x30, kSingle = 0x10, kPacked = 0x20;
constexpr uint32_t kProtectionMask = 0x23000000;

} // namespace

// Calls `transfer`, with the size in bytes, for each piece of a word of data.
template <class Transfer> void MemoryAccessPort::TransferAndCount(Transfer transfer) {
    const uint32_t size = 1u << (m_Control & kSizeMask);
    const uint32_t increment = m_Control & kIncrementMask;
    // A packed access goes on to the end of the word that it began in.
    const uint32_t pieces = increment == kPacked ? (4 - (m_Address & 3 & ~(size - 1))) / size : 1;
    for (uint32_t piece = 0; piece < pieces; ++piece) {
        transfer(size);
        if (increment == kSingle || increment == kPacked)
            m_Address = (m_Address & ~0xFFFu) | ((m_Address + size) & 0xFFF);
    }
}

uint32_t MemoryAccessPort::Read(uint32_t reg) {
    switch (reg) {
    case kControl:
        return m_Control;
    case kAddress:
        return m_Address;
    case kData: {
        uint32_t word = 0; // each piece stands in it where its address says
        TransferAndCount([&](uint32_t size) {
            const uint32_t shift = 8 * (m_Address & 3 & ~(size - 1));
            const uint32_t mask = uint32_t(0xFFFFFFFFull >> (32 - 8 * size)) << shift;
            word |= m_Bus.Read(m_Address & ~3u) & mask;
        });
        return word;
    }
    case kRomTable:
        return m_RomTable | 3; // present, in the format of ADIv5
    case kIdr:
        return kIdentification;
    default:
        if ((reg & ~0xCu) == kBanked) return m_Bus.Read((m_Address & ~0xFu) | (reg & 0xC));
        return 0;
    }
}

void MemoryAccessPort::Write(uint32_t reg, uint32_t value) {
    switch (reg) {
    case kControl: {
        uint32_t taken = kIncrementMask | kProtectionMask;
        if ((value & kSizeMask) <= kWord) taken |= kSizeMask; // else the size stays
        m_Control = (m_Control & ~taken) | (value & taken);
        break;
    }
    case kAddress:
        m_Address = value;
        break;
    case kData:
        TransferAndCount([&](uint32_t size) { WritePart(size, value); });
        break;
    default:
        if ((reg & ~0xCu) == kBanked) m_Bus.Write((m_Address & ~0xFu) | (reg & 0xC), value);
    }
}

void MemoryAccessPort::WritePart(uint32_t size, uint32_t value) {
    const uint32_t shift = 8 * (m_Address & 3 & ~(size - 1));
    const uint32_t mask = uint32_t(0xFFFFFFFFull >> (32 - 8 * size)) << shift;
    const uint32_t word = m_Address & ~3u;
    // The bus knows words alone. Of memory, where parts are written, a read takes nothing away.
    const uint32_t kept = size == 4 ? 0 : m_Bus.Read(word) & ~mask;
    m_Bus.Write(word, kept | (value & mask));
}

} // namespace etmhost
