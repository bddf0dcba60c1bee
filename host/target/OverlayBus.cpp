#include "host/target/OverlayBus.h"

#include "host/target/etm_registers.h"

namespace etmhost {

namespace {

// `word` with `bits` set or cleared.
uint32_t With(uint32_t word, uint32_t bits, bool set) {
    return set ? word | bits : word & ~bits;
}

} // namespace

std::vector<uint32_t> OverlayBus::Read(std::span<const uint32_t> addresses) {
    std::vector<uint32_t> asked;
    for (const uint32_t address : addresses)
        if (!Written(address)) asked.push_back(address);
    std::vector<uint32_t> answers;
    if (!asked.empty()) answers = m_Chip->Read(asked);
    std::vector<uint32_t> words;
    auto answer = answers.begin();
    for (const uint32_t address : addresses) {
        const std::optional<uint32_t> written = Written(address);
        words.push_back(written ? *written : Following(address, *answer++));
    }
    return words;
}

void OverlayBus::Write(uint32_t address, uint32_t value) {
    if (address % CS_PAGE == CS_LAR) {
        if (value == CS_UNLOCK) m_Open.insert(address - CS_LAR);
        return;
    }
    // A flush ends at once.
    if (m_Hardware && m_Hardware->etbBase && address == *m_Hardware->etbBase + ETB_FORMATTER)
        value &= ~ETB_FLUSH;
    m_Written[address] = value;
}

std::optional<uint32_t> OverlayBus::Written(uint32_t address) const {
    const auto written = m_Written.find(address);
    return written != m_Written.end() ? std::optional(written->second) : std::nullopt;
}

// What a register reads that was not written, and reads `word` on the chip.
uint32_t OverlayBus::Following(uint32_t address, uint32_t word) const {
    if (address % CS_PAGE == CS_LSR && m_Open.contains(address - CS_LSR))
        return With(word, CS_LSR_LOCKED, false);
    if (!m_Hardware) return word;
    if (address == m_Hardware->Etm(ETMSR)) {
        if (const auto control = Written(m_Hardware->Etm(ETMCR)))
            return With(word, ETMSR_PROGRAMMING, (*control & ETMCR_PROGRAMMING) != 0);
    }
    const uint32_t buffer = m_Hardware->etbBase.value_or(0);
    const auto control = m_Hardware->etbBase ? Written(buffer + ETB_CONTROL) : std::nullopt;
    if (!control) return word;
    const bool captures = (*control & ETB_CAPTURE) != 0;
    if (address == buffer + ETB_FORMATTER_STATUS)
        return With(word, ETB_FORMATTER_STOPPED, !captures);
    if (address == buffer + ETB_STATUS)
        return captures ? With(word, ETB_STATUS_FULL | ETB_STATUS_TRIGGERED, false)
                        : With(word, ETB_STATUS_COMPLETE, true);
    return word;
}

} // namespace etmhost
