// Any text as a number or a yes of the capability report, and as the report itself.

#include <string>

#include "frame/slots.h"
#include "fuzz/target.h"
#include "settings/ReadCapabilities.h"
#include "settings/jTraceSettings.h"
#include "testkit/SilentTrace.h"

namespace {

/// The one pass over the report finds what a search for each label finds.
void CheckReport(const char* report) {
    const std::pair<const char*, int32_t jTraceState::*> numbers[] = {
        {"ETM protocol version", &jTraceState::ProtocolVersion},
        {"Number of address comparator pairs", &jTraceState::AddressComparatorPairs},
        {"Number of data comparators", &jTraceState::DataComparators},
        {"Number of memory map decoders", &jTraceState::MemoryMapDecoders},
        {"Number of counters", &jTraceState::Counters},
        {"Number of external inputs", &jTraceState::ExternalInputs},
        {"Number of external outputs", &jTraceState::ExternalOutputs},
    };
    const std::pair<const char*, int32_t jTraceState::*> flags[] = {
        {"Sequencer present", &jTraceState::SequencerPresent},
        {"FIFOFULL logic present", &jTraceState::FifoFullPresent},
        {"Half-rate clocking supported", &jTraceState::HalfRateSupported},
        {"Full-rate clocking supported", &jTraceState::FullRateSupported},
        {"Normal format supported", &jTraceState::NormalFormatSupported},
        {"Multiplexed  format  supported", &jTraceState::MultiplexedFormatSupported},
        {"Demultiplexed format supported", &jTraceState::DemultiplexedFormatSupported},
    };
    SilentTrace trace;
    trace.report = report;
    g_VETMTrace = &trace;
    jTraceState state;
    ReadCapabilities(state);
    g_VETMTrace = nullptr;
    const auto check = [&](const auto& rows, auto scan) {
        for (const auto& [label, field] : rows) {
            int32_t wanted = 0;
            scan(report, label, &wanted);
            Require(state.*field == wanted);
        }
    };
    check(numbers, ScanNumber);
    check(flags, ScanYesNo);
}

} // namespace

static void CapabilityReport(const uint8_t* data, size_t size) {
    const std::string value(reinterpret_cast<const char*>(data), size);
    for (const std::string& report : {value, "label" + value, "label:" + value}) {
        int32_t field = 4711;
        Require(ScanNumber(report.c_str(), "label", &field) || field == 4711);
        field = 4711;
        const bool read = ScanYesNo(report.c_str(), "label", &field);
        Require(read ? field == 0 || field == 1 : field == 4711);
    }
    CheckReport(value.c_str());
}

static const FuzzTarget kCapabilityReport("fuzz_capability_report", CapabilityReport);
