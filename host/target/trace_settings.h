// What a target traces, as commands ask for it and as registers hold it.

#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace etmhost {

enum class PcTrace { None, All, StartStop, Range, Complex };
enum class DataTrace { None, Addresses, Values, All };

/// Returns the word that commands and settings lines use for `data`.
const char* DataTraceName(DataTrace data);

/// With addresses as a person typed them. One that is not in use is empty.
struct TraceSettings {
    PcTrace pc = PcTrace::All;
    std::string pcBegin, pcEnd; ///< start and stop, or from and to
    DataTrace data = DataTrace::None;
    std::string dataBegin, dataEnd;
    std::string trigger;
    uint32_t portSize = 0; ///< bits
    bool halfRate = false;
    bool pcPending = false;   ///< one end of a PC range waits for the other
    bool dataPending = false; ///< so for a range of data

    bool operator==(const TraceSettings&) const = default;
};

/// With addresses as numbers, or comparator indexes where the chip takes those.
struct EtmSettings {
    PcTrace pc = PcTrace::None;
    std::optional<uint32_t> pcBegin, pcEnd;
    DataTrace data = DataTrace::None;
    std::optional<uint32_t> dataBegin, dataEnd; ///< both, or none: all data
    bool dataForeign = false;                   ///< the area of data is one that no setting gives
    std::optional<uint32_t> trigger;
    uint32_t portSize = 0; ///< bits, of the ETM's own port; 0: no size that is known
    bool halfRate = false;

    bool operator==(const EtmSettings&) const = default;
};

} // namespace etmhost
