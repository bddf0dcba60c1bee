#include "host/target/chips.h"

#include <algorithm>
#include <nlohmann/json.hpp>

#include "host/support/host_error.h"
#include "host/support/words.h"
#include "host/target/etm_registers.h"

namespace etmhost {

namespace {

using Json = nlohmann::json;
using Kind = ChipComponent::Kind;

constexpr struct {
    const char* name;
    uint32_t number;
} kNames[] = {
    {"ETMCR", ETMCR},       {"ETMCCR", ETMCCR},     {"ETMTRIGGER", ETMTRIGGER},
    {"ETMSCR", ETMSCR},     {"ETMTECR1", ETMTECR1}, {"ETMTEEVR", ETMTEEVR},
    {"ETMVDEVR", ETMVDEVR}, {"ETMVDCR3", ETMVDCR3}, {"ETMIDR", ETMIDR},
    {"ETMCCER", ETMCCER},
};

uint32_t ToNumber(const Json& value) {
    uint64_t number = 0;
    if (value.is_string()) {
        const std::string text = value.get<std::string>();
        size_t used = 0;
        try {
            number = std::stoull(text, &used, 0);
        } catch (const std::exception&) {
            used = 0;
        }
        if (used == 0 || used != text.size() || text[0] == '-') number = UINT64_MAX;
    } else {
        number = value.is_number_unsigned() ? value.get<uint64_t>() : UINT64_MAX;
    }
    if (number > UINT32_MAX) throw HostError(value.dump() + " is no 32-bit number");
    return static_cast<uint32_t>(number);
}

uint32_t NumberOr(const Json& object, const char* key, uint32_t otherwise) {
    return object.contains(key) ? ToNumber(object.at(key)) : otherwise;
}

std::vector<uint32_t> ToPortSizes(const Json& list) {
    std::vector<uint32_t> sizes;
    for (const Json& size : list) {
        sizes.push_back(ToNumber(size));
        if (sizes.back() == 0 || sizes.back() > 32)
            throw HostError("a port of " + std::to_string(sizes.back()) + " bits");
    }
    std::ranges::sort(sizes);
    return sizes;
}

uint32_t RegisterOffset(const std::string& name) {
    for (const auto& entry : kNames)
        if (name == entry.name) return 4 * entry.number;
    const uint32_t offset = ToNumber(Json(name));
    if (offset >= 0x1000 || offset % 4 != 0) throw HostError("no register has the offset " + name);
    return offset;
}

ChipComponent ToComponent(const Json& json) {
    static const std::map<std::string, Kind> kKinds = {{"etm", Kind::Etm}, {"tpiu", Kind::Tpiu},
                                                       {"etb", Kind::Etb}, {"dwt", Kind::Dwt},
                                                       {"scs", Kind::Scs}, {"other", Kind::Other}};
    ChipComponent component;
    const auto kind = kKinds.find(json.at("kind").get<std::string>());
    if (kind == kKinds.end()) throw HostError("there is no kind " + json.at("kind").dump());
    component.kind = kind->second;
    component.address = NumberOr(json, "address", 0);
    if (component.address % 0x1000 != 0) throw HostError("an address inside a page of 4 KB");
    component.part = NumberOr(json, "part", 0);
    component.lock = json.value("lock", false);
    component.clock = json.value("clock", true);
    const Json registers = json.value("registers", Json::object());
    for (const auto& [name, value] : registers.items())
        component.registers[RegisterOffset(name)] = ToNumber(value);
    component.portSizes = ToPortSizes(json.value("portSizes", Json::array()));
    component.words = NumberOr(json, "words", 0);
    component.comparators = NumberOr(json, "comparators", 0);
    if (component.kind == Kind::Tpiu) {
        component.registers[TPIU_SUPPORTED] = PortSizeMask(component.portSizes);
        const uint32_t current = NumberOr(json, "current", component.portSizes.at(0));
        if (std::ranges::count(component.portSizes, current) == 0)
            throw HostError("a port that is set to a size it lacks");
        component.registers[TPIU_CURRENT] = PortSizeMask(std::span(&current, 1));
    }
    if (component.kind == Kind::Etb && (component.words == 0 || component.words > 1u << 24))
        throw HostError("a trace buffer of " + std::to_string(component.words) + " words");
    if (component.kind == Kind::Dwt) {
        if (component.comparators > 15) throw HostError("more than 15 DWT comparators");
        component.registers[DWT_CTRL] = component.comparators << 28;
    }
    return component;
}

Chip ToChip(const Json& json) {
    Chip chip;
    chip.name = json.at("name").get<std::string>();
    chip.description = json.at("description").get<std::string>();
    chip.info = json.at("info").get<std::string>();
    if (json.contains("romTable")) {
        chip.romTable = ToNumber(json.at("romTable").at("address"));
        chip.romTablePart = ToNumber(json.at("romTable").at("part"));
    }
    for (const Json& component : json.at("components"))
        chip.components.push_back(ToComponent(component));
    chip.portSizes = ToPortSizes(json.value("portSizes", Json::array()));
    const Json& sink = json.at("sink");
    const std::string kind = sink.at("kind").get<std::string>();
    chip.sink = kind == "emulator" ? SinkKind::Emulator
                : kind == "buffer" ? SinkKind::Buffer
                                   : SinkKind::Port;
    if (chip.sink == SinkKind::Port && kind != "port") throw HostError("there is no sink " + kind);
    if (chip.sink == SinkKind::Emulator) chip.emulatorWords = ToNumber(sink.at("words"));
    if (chip.Find(Kind::Etm) == nullptr) throw HostError("it has no ETM");
    if (chip.sink == SinkKind::Buffer && chip.Find(Kind::Etb) == nullptr)
        throw HostError("it has no on-chip buffer");
    if (chip.portSizes.empty() && chip.Find(Kind::Tpiu) == nullptr)
        throw HostError("it has no port sizes");
    return chip;
}

constexpr struct {
    const char *name, *text;
} kDescriptions[] = {
#include "chips.inc" // chips/*.json, by the build
};

std::vector<Chip> ReadAll() {
    std::vector<Chip> chips;
    for (const auto& description : kDescriptions)
        for (Chip& chip : ParseChips(description.text)) chips.push_back(std::move(chip));
    return chips;
}

} // namespace

const ChipComponent* Chip::Find(ChipComponent::Kind kind) const {
    for (const ChipComponent& component : components)
        if (component.kind == kind) return &component;
    return nullptr;
}

std::vector<Chip> ParseChips(std::string_view text) {
    std::vector<Chip> chips;
    try {
        const Json json = Json::parse(text);
        chips.push_back(ToChip(json));
        const Json options = json.value("options", Json::object());
        for (const auto& [option, changes] : options.items()) {
            Json changed = json;
            changed.merge_patch(changes);
            changed["name"] = chips.front().name + "-" + option;
            chips.push_back(ToChip(changed));
        }
    } catch (const std::exception& error) {
        throw HostError(std::string("the description of a chip is damaged: ") + error.what());
    }
    return chips;
}

std::span<const Chip> Chips() {
    static const std::vector<Chip> chips = ReadAll();
    return chips;
}

const Chip* FindChip(const std::string& name) {
    for (const Chip& chip : Chips())
        if (EqualNoCase(chip.name, name)) return &chip;
    return nullptr;
}

uint32_t PortSizeMask(std::span<const uint32_t> sizes) {
    uint32_t mask = 0;
    for (const uint32_t size : sizes) mask |= 1u << (size - 1);
    return mask;
}

std::vector<uint32_t> PortSizes(uint32_t mask) {
    std::vector<uint32_t> sizes;
    for (uint32_t bit = 0; bit < 32; ++bit)
        if ((mask >> bit & 1) != 0) sizes.push_back(bit + 1);
    return sizes;
}

} // namespace etmhost
