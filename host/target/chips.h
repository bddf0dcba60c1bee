// The chips that this host can pretend to be. Each is a description in JSON, in chips/, compiled
// into the program.

#pragma once

#include <cstdint>
#include <filesystem>
#include <map>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace etmhost {

/// A part of a chip with registers at addresses of its own.
struct ChipComponent {
    enum class Kind {
        Etm,
        Tpiu,
        Etb,
        Dwt,
        Scs,  ///< system control space, of which the chip itself has the trace power bit
        Other ///< nothing but its identification
    };

    Kind kind = Kind::Other;
    uint32_t address = 0;
    uint32_t part = 0;                      ///< part number, of its identification registers
    bool lock = false;                      ///< locked at first, also for a debugger
    bool clock = true;                      ///< without one it has nothing but its identification
    std::map<uint32_t, uint32_t> registers; ///< by offset: values after reset other than 0
    std::vector<uint32_t> portSizes;        ///< of a TPIU, in bits
    uint32_t words = 0;                     ///< depth of a trace buffer
    uint32_t comparators = 0;               ///< of a DWT
};

/// A simulated program is looked at in steps: so many fill a buffer, and this one raises the
/// trigger.
inline constexpr uint32_t kStepsToFill = 8;
inline constexpr uint32_t kTriggerStep = 4;

/// What takes the trace of a chip.
enum class SinkKind {
    Emulator, ///< the simulated emulator's buffer
    Buffer,   ///< an on-chip buffer
    Port,     ///< somebody outside
};

struct Chip {
    std::string name;        ///< what --chip takes
    std::string description; ///< one line for people
    std::string info;        ///< what the emulator or ETB says of itself
    std::vector<ChipComponent> components;
    /// Where the ROM table stands. Without one the components can only be reached by a scan chain,
    /// and their addresses are this program's own.
    std::optional<uint32_t> romTable;
    uint32_t romTablePart = 0;
    std::vector<uint32_t> portSizes; ///< of the ETM's own port, in bits, ascending
    SinkKind sink = SinkKind::Emulator;
    uint32_t emulatorWords = 0; ///< the buffer of an emulator, in words of 32 bits

    /// Returns the first component of `kind`, or null.
    const ChipComponent* Find(ChipComponent::Kind kind) const;
};

/// The largest file with a description that is read, in bytes.
inline constexpr size_t kLargestChipFile = 1 << 20;

/// Reads a description, and returns the chip and those that its options make of it. Throws
/// HostError with what is wrong and where: "components[1].registers.ETMCR: it is no number".
///
///     {"name": "x", "description": "one line", "info": "text of the Status page",
///      "portSizes": [4, 8],              of the ETM's own port, where there is no TPIU
///      "romTable": {"address": "0xE00FF000", "part": "0x4C4"},      or none
///      "components": [
///        {"kind": "etm" | "tpiu" | "etb" | "dwt" | "scs" | "other",
///         "address": "0xE0041000", "part": "0x925", "lock": true, "clock": true,
///         "registers": {"ETMCCR": "0x8C802000", "0x1E4": "0x4114F250"},   after reset
///         "portSizes": [1, 2, 4], "current": 1,      of a TPIU
///         "words": 1024,                             of an ETB
///         "comparators": 4}],                        of a DWT
///      "sink": {"kind": "emulator", "words": 65536} | {"kind": "buffer"} | {"kind": "port"},
///      "options": {"etb": {...}}}        a chip "x-etb": what stands there in place of the above
///
/// Registers go by the names of ETM registers or by offset; numbers may be texts such as "0x10".
std::vector<Chip> ParseChips(std::string_view json);

/// Reads the description in `file`. Throws HostError that names the file.
std::vector<Chip> ReadChips(const std::filesystem::path& file);

/// Returns all chips of the program, the default one first.
std::span<const Chip> Chips();

/// Returns the chip `name`, letters in any case, or null.
const Chip* FindChip(const std::string& name);

/// Returns a mask of port sizes: bit k for a port of k + 1 bits.
uint32_t PortSizeMask(std::span<const uint32_t> sizes);

/// Returns the port sizes of `mask`, in bits, ascending.
std::vector<uint32_t> PortSizes(uint32_t mask);

} // namespace etmhost
