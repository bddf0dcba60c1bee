#include "host/commandline/choose_chip.h"

#include "host/support/host_error.h"
#include "host/support/system.h"
#include "host/support/words.h"

namespace etmhost {

std::vector<std::string> NamesOf(std::span<const Chip> chips) {
    std::vector<std::string> names;
    for (const Chip& chip : chips) names.push_back(chip.name);
    return names;
}

Chip ChooseChip(const std::string& name, const std::string& file, const std::string& variant) {
    if (file.empty()) {
        if (const Chip* chip = FindChip(name)) return *chip;
        throw HostError(
            "there is no chip \"" + Escape(name) + "\"" +
            DidYouMean(name, NamesOf(Chips()), "\"etmhost chips\" lists those there are"));
    }
    const std::vector<Chip> chips = ReadChips(ToPath(file));
    if (variant.empty()) return chips.front();
    std::vector<std::string> variants;
    for (const Chip& chip : std::span(chips).subspan(1)) {
        variants.push_back(chip.name.substr(chips.front().name.size() + 1));
        if (EqualNoCase(variants.back(), variant)) return chip;
    }
    throw HostError("chip file \"" + Escape(file) + "\": there is no option \"" + Escape(variant) +
                    "\"" + DidYouMean(variant, variants));
}

} // namespace etmhost
