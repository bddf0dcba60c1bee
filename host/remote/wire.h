// What the protocols of all debug servers have in common.

#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace etmhost {

/// How long a call waits for a server, in total.
inline constexpr std::chrono::milliseconds kPatience{2000};

/// The longest answer that is taken from a server, in bytes.
inline constexpr size_t kAnswerLimit = size_t{1} << 20;

/// Words side by side.
struct AddressRun {
    uint32_t address;
    uint32_t count;
};

/// Returns `addresses`, in their order, as runs of at most `most` words.
std::vector<AddressRun> Runs(std::span<const uint32_t> addresses, uint32_t most);

/// Returns the beginning of `bytes` in quotes, as printable ASCII, with "..." for what is cut off.
std::string Excerpt(std::string_view bytes);

/// Returns the words of `addresses` as a text for people: the first one, and how many more.
std::string AddressText(std::span<const uint32_t> addresses);

} // namespace etmhost
