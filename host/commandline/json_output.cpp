// What chips and show print for programs. The keys stand in docs/etmhost.md.

#include <nlohmann/json.hpp>
#include <ostream>

#include "host/commandline/actions.h"
#include "host/target/etm_registers.h"

namespace etmhost {

namespace {

// Keys in the order in which they are named here.
using OrderedJson = nlohmann::ordered_json;

void Print(std::ostream& out, const OrderedJson& json) {
    out << json.dump(2, ' ', false, OrderedJson::error_handler_t::replace) << '\n';
}

const char* SinkName(SinkKind sink) {
    return sink == SinkKind::Emulator ? "emulator" : sink == SinkKind::Buffer ? "buffer" : "port";
}

OrderedJson OrNull(const std::string& text) {
    return text.empty() ? OrderedJson() : OrderedJson(text);
}

OrderedJson FromResources(const EtmResources& etm) {
    return {{"protocolVersion", etm.protocolVersion},
            {"architecture", std::to_string(etm.archMajor) + "." + std::to_string(etm.archMinor)},
            {"addressPairs", etm.addressPairs},
            {"dataComparators", etm.dataComparators},
            {"memoryMapDecoders", etm.memoryMapDecoders},
            {"counters", etm.counters},
            {"sequencer", etm.sequencer},
            {"externalInputs", etm.externalInputs},
            {"externalOutputs", etm.externalOutputs},
            {"fifoFull", etm.fifoFull},
            {"startStop", etm.startStop},
            {"dwtIndexes", etm.TakesIndexes()},
            {"halfRate", etm.halfRate},
            {"fullRate", etm.fullRate},
            {"normalFormat", etm.normalFormat},
            {"multiplexedFormat", etm.multiplexedFormat},
            {"demultiplexedFormat", etm.demultiplexedFormat}};
}

OrderedJson FromHardware(const TraceHardware& hardware) {
    return {{"name", hardware.name},           {"description", hardware.description},
            {"info", hardware.info},           {"portSizes", PortSizes(hardware.portSizes)},
            {"sink", SinkName(hardware.sink)}, {"capacity", hardware.capacity}};
}

OrderedJson FromSettings(const TraceSettings& trace) {
    constexpr const char* kModes[] = {"none", "all", "startStop", "range", "complex"};
    return {{"pc", kModes[static_cast<int>(trace.pc)]},
            {"pcBegin", OrNull(trace.pcBegin)},
            {"pcEnd", OrNull(trace.pcEnd)},
            {"pcPending", trace.pcPending},
            {"data", DataTraceName(trace.data)},
            {"dataBegin", OrNull(trace.dataBegin)},
            {"dataEnd", OrNull(trace.dataEnd)},
            {"dataPending", trace.dataPending},
            {"trigger", OrNull(trace.trigger)},
            {"portSize", trace.portSize},
            {"halfRate", trace.halfRate}};
}

OrderedJson FromDwt(const std::vector<DwtComparator>& comparators) {
    OrderedJson list = OrderedJson::array();
    for (const DwtComparator& comparator : comparators) {
        const char* use = comparator.function == 0                     ? "off"
                          : comparator.function == DWT_FUNCTION_ETM_PC ? "etm"
                                                                       : "other";
        list.push_back({{"use", use}, {"address", comparator.address}, {"lost", comparator.lost}});
    }
    return list;
}

} // namespace

Status ShowChipsJson(std::span<const Chip> chips, std::ostream& out) {
    OrderedJson list = OrderedJson::array();
    for (const Chip& chip : chips) list.push_back(FromHardware(Target(chip).hardware()));
    Print(out, list);
    return kDone;
}

Status ShowTargetJson(SimulatedHost& host, std::ostream& out) {
    Target& target = host.target;
    target.Look();
    const TargetState& state = target.state;
    const Capture& capture = state.capture;
    OrderedJson settings = OrderedJson::object();
    for (const auto& [section, keys] : host.settings)
        for (const auto& [key, value] : keys) settings[section][key] = value;
    Print(out, {{"target", FromHardware(target.hardware())},
                {"simulated", target.IsSimulated()},
                {"etm", FromResources(target.etm())},
                {"trace", FromSettings(target.Settings())},
                {"dwt", FromDwt(target.DwtComparators())},
                {"enabled", (target.Control() & 1) != 0},
                {"controlWord", target.Control()},
                {"capture",
                 {{"running", capture.running},
                  {"triggered", capture.triggered},
                  {"captured", capture.captured},
                  {"triggerCount", target.TriggerCount()},
                  {"stateWord", target.StateWord()}}},
                {"board", {{"pinsReady", state.pinsReady}, {"macro", OrNull(state.macro)}}},
                {"settings", settings}});
    return kDone;
}

} // namespace etmhost
