// Images of the settings as text: "Enable=1 PcBegin=main".

#pragma once

#include <sstream>
#include <stdexcept>

#include "settings/jTraceSettings.h"

template <class Visit> void ForEachMember(Visit visit) {
#define V(name) visit(#name, &jTraceState::name)
    V(ConfigCode), V(SystemConfig), V(EtmId), V(ProtocolVersion), V(ArchVersion);
    V(AddressComparatorPairs), V(DataComparators), V(MemoryMapDecoders), V(Counters);
    V(SequencerPresent), V(ExternalInputs), V(ExternalOutputs), V(FifoFullPresent);
    V(HalfRateSupported), V(FullRateSupported), V(NormalFormatSupported);
    V(MultiplexedFormatSupported), V(DemultiplexedFormatSupported), V(PortSizeMask), V(Enable);
    V(StopMode), V(TriggerPin), V(TriggerOnAddress), V(TriggerPosition), V(Accumulate);
    V(ManualMode), V(ControlSpareBits), V(PortSizeIndex), V(PortModeIndex), V(CprtModeIndex);
    V(ContextIdIndex), V(StallProcessor), V(CycleAccurate), V(BranchOutput), V(BoardFile);
    V(PcMode), V(DataMode), V(PcBegin), V(PcEnd), V(DataBegin), V(DataEnd), V(TriggerAddress);
#undef V
}

inline void Set(std::string& member, const std::string& value) {
    member = value;
}
template <class Number> void Set(Number& member, const std::string& value) {
    member = static_cast<Number>(std::stoll(value));
}

/// Returns the members of `to` that differ from `from`, in their order.
inline std::string Difference(const jTraceState& from, const jTraceState& to) {
    std::ostringstream text;
    ForEachMember([&](const char* name, auto member) {
        if (from.*member == to.*member) return;
        text << (text.tellp() == 0 ? "" : " ") << name << "=" << to.*member;
    });
    return text.str();
}

/// Sets members. Throws std::out_of_range for a name that does not exist.
inline void Edit(jTraceState& state, const std::string& members) {
    std::istringstream text(members);
    for (std::string edit; text >> edit;) {
        bool known = false;
        ForEachMember([&](const std::string& name, auto member) {
            if (!edit.starts_with(name + "=")) return;
            Set(state.*member, edit.substr(name.size() + 1));
            known = true;
        });
        if (!known) throw std::out_of_range(edit);
    }
}
