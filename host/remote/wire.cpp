#include "host/remote/wire.h"

#include <algorithm>
#include <cstdio>

#include "host/support/words.h"

namespace etmhost {

std::vector<AddressRun> Runs(std::span<const uint32_t> addresses, uint32_t most) {
    std::vector<AddressRun> runs;
    for (const uint32_t address : addresses) {
        if (!runs.empty()) {
            AddressRun& last = runs.back();
            const uint64_t next = uint64_t{last.address} + 4 * uint64_t{last.count};
            if (last.count < most && address == next) { // never from the last address to the first
                ++last.count;
                continue;
            }
        }
        runs.push_back({address, 1});
    }
    return runs;
}

std::string Excerpt(std::string_view bytes) {
    constexpr size_t kMost = 60;
    std::string text;
    for (const char c : Escape(bytes.substr(0, kMost), "\"\\")) {
        if (static_cast<unsigned char>(c) < 0x80) {
            text += c;
        } else {
            char code[8];
            std::snprintf(code, sizeof code, "\\x%02X", static_cast<unsigned char>(c));
            text += code;
        }
    }
    return "\"" + text + "\"" + (bytes.size() > kMost ? "..." : "");
}

std::string AddressText(std::span<const uint32_t> addresses) {
    if (addresses.empty()) return "nothing";
    const std::string more =
        addresses.size() > 1 ? " and " + std::to_string(addresses.size() - 1) + " more" : "";
    return Hex(addresses.front()) + more;
}

} // namespace etmhost
