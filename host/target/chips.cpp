#include "host/target/chips.h"

#include <algorithm>
#include <fstream>
#include <nlohmann/json.hpp>

#include "host/support/host_error.h"
#include "host/support/system.h"
#include "host/support/words.h"
#include "host/target/etm_registers.h"

namespace etmhost {

namespace {

using Json = nlohmann::json;
using Kind = ChipComponent::Kind;

constexpr uint32_t kWidestPort = 32;
constexpr uint32_t kLargestPart = 0xFFF;
constexpr uint32_t kMostComparators = 15;
constexpr uint32_t kDeepestBuffer = 1 << 24; // in words
constexpr size_t kMostComponents = 64;
constexpr size_t kMostOptions = 16;
constexpr size_t kLongestName = 64, kLongestText = 4096;
constexpr int kDeepestDescription = 16;
constexpr size_t kMostTold = 300; // bytes of what is wrong

constexpr struct {
    const char* name;
    uint32_t number;
} kNames[] = {
    {"ETMCR", ETMCR},       {"ETMCCR", ETMCCR},     {"ETMTRIGGER", ETMTRIGGER},
    {"ETMSCR", ETMSCR},     {"ETMTECR1", ETMTECR1}, {"ETMTEEVR", ETMTEEVR},
    {"ETMVDEVR", ETMVDEVR}, {"ETMVDCR3", ETMVDCR3}, {"ETMIDR", ETMIDR},
    {"ETMCCER", ETMCCER},
};

// A value of a description, and where it stands: "components[1].registers.ETMCR".
class Node {
public:
    Node(const Json& json, std::string place) : m_Json(json), m_Place(std::move(place)) {}

    [[noreturn]] void Refuse(const std::string& reason) const {
        throw HostError((m_Place.empty() ? "" : Escape(m_Place.substr(0, kMostTold)) + ": ") +
                        reason);
    }

    const std::string& place() const { return m_Place; }

    std::optional<Node> Find(const char* key) const {
        if (!m_Json.is_object()) Refuse("it is no object");
        const auto found = m_Json.find(key);
        if (found == m_Json.end()) return std::nullopt;
        return Node(*found, Inside(key));
    }
    Node At(const char* key) const {
        if (std::optional<Node> found = Find(key)) return *found;
        Refuse(std::string("its \"") + key + "\" is missing");
    }

    std::vector<Node> List(size_t longest) const {
        if (!m_Json.is_array()) Refuse("it is no array");
        if (m_Json.size() > longest) Refuse("more than " + std::to_string(longest) + " entries");
        std::vector<Node> nodes;
        for (const Json& value : m_Json)
            nodes.emplace_back(value, m_Place + "[" + std::to_string(nodes.size()) + "]");
        return nodes;
    }
    std::vector<std::pair<std::string, Node>> Members(size_t most) const {
        if (!m_Json.is_object()) Refuse("it is no object");
        if (m_Json.size() > most) Refuse("more than " + std::to_string(most) + " entries");
        std::vector<std::pair<std::string, Node>> members;
        for (const auto& [key, value] : m_Json.items())
            members.emplace_back(key, Node(value, Inside(key)));
        return members;
    }

    uint32_t Number(uint32_t most = UINT32_MAX) const {
        std::optional<uint64_t> number;
        if (m_Json.is_number_unsigned()) number = m_Json.get<uint64_t>();
        if (m_Json.is_string()) number = ParseNumber(m_Json.get<std::string>());
        if (!number) Refuse("it is no number");
        if (*number > most) Refuse("it is more than " + Hex(most));
        return static_cast<uint32_t>(*number);
    }
    bool Flag() const {
        if (!m_Json.is_boolean()) Refuse("it is neither true nor false");
        return m_Json.get<bool>();
    }
    std::string Text(size_t longest) const {
        if (!m_Json.is_string()) Refuse("it is no text");
        const auto text = m_Json.get<std::string>();
        if (text.size() > longest) Refuse("more than " + std::to_string(longest) + " bytes");
        return text;
    }
    /// A text on one line.
    std::string Line(size_t longest) const {
        const std::string text = Text(longest);
        if (text != Escape(text)) Refuse("there is a control character in it");
        return text;
    }

private:
    std::string Inside(const std::string& key) const {
        return m_Place + (m_Place.empty() ? "" : ".") + key;
    }

    const Json& m_Json;
    std::string m_Place;
};

uint32_t NumberOr(const Node& object, const char* key, uint32_t otherwise,
                  uint32_t most = UINT32_MAX) {
    const std::optional<Node> number = object.Find(key);
    return number ? number->Number(most) : otherwise;
}

bool FlagOr(const Node& object, const char* key, bool otherwise) {
    const std::optional<Node> flag = object.Find(key);
    return flag ? flag->Flag() : otherwise;
}

std::vector<uint32_t> PortSizesOf(const Node& object) {
    std::vector<uint32_t> sizes;
    const std::optional<Node> list = object.Find("portSizes");
    if (!list) return sizes;
    for (const Node& size : list->List(kWidestPort)) {
        sizes.push_back(size.Number(kWidestPort));
        if (sizes.back() == 0) size.Refuse("a port of 0 bits");
    }
    std::ranges::sort(sizes);
    return sizes;
}

uint32_t PageOf(const Node& address) {
    const uint32_t page = address.Number();
    if (page % CS_PAGE != 0) address.Refuse("it is inside a page of 4 KB");
    return page;
}

uint32_t RegisterOffset(const std::string& name, const Node& node) {
    for (const auto& entry : kNames)
        if (name == entry.name) return 4 * entry.number;
    const std::optional<uint64_t> offset = ParseNumber(name);
    if (!offset || *offset >= CS_PAGE || *offset % 4 != 0)
        node.Refuse("there is no register of that name or offset");
    return static_cast<uint32_t>(*offset);
}

Kind KindOf(const Node& node) {
    static const std::map<std::string, Kind> kKinds = {{"etm", Kind::Etm}, {"tpiu", Kind::Tpiu},
                                                       {"etb", Kind::Etb}, {"dwt", Kind::Dwt},
                                                       {"scs", Kind::Scs}, {"other", Kind::Other}};
    const auto kind = kKinds.find(node.Text(kLongestText));
    if (kind == kKinds.end()) node.Refuse("there is no such kind: etm, tpiu, etb, dwt, scs, other");
    return kind->second;
}

ChipComponent ToComponent(const Node& node) {
    ChipComponent component;
    component.kind = KindOf(node.At("kind"));
    if (const std::optional<Node> address = node.Find("address"))
        component.address = PageOf(*address);
    component.part = NumberOr(node, "part", 0, kLargestPart);
    component.lock = FlagOr(node, "lock", false);
    component.clock = FlagOr(node, "clock", true);
    if (const std::optional<Node> registers = node.Find("registers"))
        for (const auto& [name, value] : registers->Members(CS_PAGE / 4))
            component.registers[RegisterOffset(name, value)] = value.Number();
    component.portSizes = PortSizesOf(node);
    component.words = NumberOr(node, "words", 0, kDeepestBuffer);
    component.comparators = NumberOr(node, "comparators", 0, kMostComparators);
    if (component.kind == Kind::Tpiu) {
        if (component.portSizes.empty()) node.Refuse("a tpiu needs \"portSizes\"");
        component.registers[TPIU_SUPPORTED] = PortSizeMask(component.portSizes);
        const uint32_t current = NumberOr(node, "current", component.portSizes.front());
        if (std::ranges::count(component.portSizes, current) == 0)
            node.At("current").Refuse("a size that is not among its \"portSizes\"");
        component.registers[TPIU_CURRENT] = PortSizeMask(std::span(&current, 1));
    }
    if (component.kind == Kind::Etb && component.words == 0)
        node.Refuse("an etb needs \"words\", more than 0");
    if (component.kind == Kind::Dwt) component.registers[DWT_CTRL] = component.comparators << 28;
    return component;
}

SinkKind SinkOf(const Node& node) {
    const std::string kind = node.Text(kLongestText);
    if (kind == "emulator") return SinkKind::Emulator;
    if (kind == "buffer") return SinkKind::Buffer;
    if (kind != "port") node.Refuse("there is no such kind: emulator, buffer, port");
    return SinkKind::Port;
}

// Each register has to be one component's.
void CheckAddresses(const Chip& chip, const std::vector<Node>& nodes) {
    for (size_t index = 0; index < nodes.size(); ++index) {
        const uint32_t address = chip.components[index].address;
        for (size_t other = 0; other < index; ++other)
            if (chip.components[other].address == address)
                nodes[index].Refuse("it is at " + Hex(address) + ", as " + nodes[other].place());
        if (chip.romTable == address) nodes[index].Refuse("it is where the ROM table is");
    }
}

Chip ToChip(const Node& node) {
    Chip chip;
    chip.name = node.At("name").Line(kLongestName);
    if (chip.name.empty()) node.At("name").Refuse("it is empty");
    chip.description = node.At("description").Line(kLongestText);
    chip.info = node.At("info").Text(kLongestText);
    if (chip.info.find('\0') != std::string::npos) node.At("info").Refuse("there is a NUL in it");
    if (const std::optional<Node> table = node.Find("romTable")) {
        chip.romTable = PageOf(table->At("address"));
        chip.romTablePart = table->At("part").Number(kLargestPart);
    }
    const std::vector<Node> components = node.At("components").List(kMostComponents);
    for (const Node& component : components) chip.components.push_back(ToComponent(component));
    CheckAddresses(chip, components);
    chip.portSizes = PortSizesOf(node);
    const Node sink = node.At("sink");
    chip.sink = SinkOf(sink.At("kind"));
    if (chip.sink == SinkKind::Emulator) {
        chip.emulatorWords = sink.At("words").Number();
        if (chip.emulatorWords == 0) sink.At("words").Refuse("it is 0");
    }
    if (chip.Find(Kind::Etm) == nullptr) node.At("components").Refuse("there is no etm");
    if (chip.sink == SinkKind::Buffer && chip.Find(Kind::Etb) == nullptr)
        sink.Refuse("a buffer needs an etb among the components");
    if (chip.portSizes.empty() && chip.Find(Kind::Tpiu) == nullptr)
        node.Refuse("its \"portSizes\" are missing, and there is no tpiu");
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

Json ParseJson(std::string_view text) {
    try {
        return Json::parse(
            text,
            [](int depth, Json::parse_event_t, const Json&) {
                if (depth > kDeepestDescription) throw HostError("it is nested too deep");
                return true;
            });
    } catch (const Json::exception& error) {
        const std::string reason = error.what(); // with a code in brackets ahead
        throw HostError(Escape(reason.substr(reason.find("] ") + 2, kMostTold)));
    }
}

} // namespace

const ChipComponent* Chip::Find(ChipComponent::Kind kind) const {
    for (const ChipComponent& component : components)
        if (component.kind == kind) return &component;
    return nullptr;
}

std::vector<Chip> ParseChips(std::string_view text) {
    std::vector<Chip> chips;
    const Json json = ParseJson(text);
    const Node node(json, "");
    chips.push_back(ToChip(node));
    const std::optional<Node> options = node.Find("options");
    if (!options) return chips;
    for (const auto& [option, changes] : options->Members(kMostOptions)) {
        if (option.empty() || option != Escape(option))
            changes.Refuse("it is no name of an option");
        changes.Find("name"); // that is, an object
        Json changed = json;
        changed.merge_patch(json["options"][option]);
        changed["name"] = chips.front().name + "-" + option;
        try {
            chips.push_back(ToChip(Node(changed, "")));
        } catch (const HostError& error) {
            changes.Refuse(error.what());
        }
    }
    return chips;
}

std::vector<Chip> ReadChips(const std::filesystem::path& file) {
    const std::string name = Escape(PathText(file));
    std::ifstream in(file, std::ios::binary);
    std::string text(kLargestChipFile + 1, '\0');
    in.read(text.data(), static_cast<std::streamsize>(text.size()));
    if (!in.eof() && in.gcount() == 0) throw HostError("cannot read chip file \"" + name + "\"");
    text.resize(static_cast<size_t>(in.gcount()));
    try {
        if (text.size() > kLargestChipFile) throw HostError("it has more than 1 MB");
        return ParseChips(text);
    } catch (const HostError& error) {
        throw HostError("chip file \"" + name + "\": " + error.what());
    }
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
