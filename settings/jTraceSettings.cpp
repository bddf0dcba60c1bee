#include "settings/jTraceSettings.h"

#include <algorithm>

#include "frame/interfaces/IOrnXTraceClient.h"
#include "frame/slots.h"
#include "platform/paths.h"
#include "text/text_tools.h"

namespace {

constexpr uint8_t kSwitch = 1;
constexpr uint8_t kNumber = 2;
constexpr uint8_t kChoice = 3;

constexpr std::array<jTraceAttribute, 17> kAttributes = {{
    {TA_ENABLE, kSwitch, 0, 1, 1, 0},
    {TA_STOP_MODE, kNumber, 0, 2, 0, 0},
    {TA_TRIGGER_PIN, kSwitch, 0, 1, 0, 0},
    {TA_TRIGGER_ON_ADDRESS, kSwitch, 0, 1, 0, 0},
    {TA_TRIGGER_POSITION, kNumber, 0, 100, 50, 0},
    {TA_ACCUMULATE, kSwitch, 0, 1, 0, 0},
    {TA_RESERVED, kNumber, 0, 1, 0, 0},
    {TA_PORT_SIZE, kChoice, 0, 2, 1, 0x70}, // Max and Default: until the chip is known
    {TA_PORT_MODE, kChoice, 0, 4, 0, 0x32000},
    {TA_CPRT_MODE, kChoice, 0, 2, 0, 0x80002},
    {TA_CONTEXT_ID_SIZE, kChoice, 0, 3, 0, 0xC000},
    {TA_STALL_PROCESSOR, kSwitch, 0, 1, 0, 0x80},
    {TA_CYCLE_ACCURATE, kSwitch, 0, 1, 0, 0x1000},
    {TA_BRANCH_OUTPUT, kSwitch, 0, 1, 0, 0x100},
    {TA_PC_MODE, kNumber, 0, 6, 0, 0},
    {TA_DATA_MODE, kNumber, 0, 3, 3, 0},
    {TA_MANUAL_MODE, kSwitch, 0, 1, 0, 0},
}};

// What all readers of the directory have room for.
constexpr size_t kMaxDirectory = 260;

using Field = int32_t jTraceState::*;

constexpr struct {
    int32_t Id;
    Field Value;
} kFields[] = {
    {TA_ENABLE, &jTraceState::Enable},
    {TA_STOP_MODE, &jTraceState::StopMode},
    {TA_TRIGGER_PIN, &jTraceState::TriggerPin},
    {TA_TRIGGER_ON_ADDRESS, &jTraceState::TriggerOnAddress},
    {TA_TRIGGER_POSITION, &jTraceState::TriggerPosition},
    {TA_ACCUMULATE, &jTraceState::Accumulate},
    {TA_PORT_SIZE, &jTraceState::PortSizeIndex},
    {TA_PORT_MODE, &jTraceState::PortModeIndex},
    {TA_CPRT_MODE, &jTraceState::CprtModeIndex},
    {TA_CONTEXT_ID_SIZE, &jTraceState::ContextIdIndex},
    {TA_STALL_PROCESSOR, &jTraceState::StallProcessor},
    {TA_CYCLE_ACCURATE, &jTraceState::CycleAccurate},
    {TA_BRANCH_OUTPUT, &jTraceState::BranchOutput},
    {TA_PC_MODE, &jTraceState::PcMode},
    {TA_DATA_MODE, &jTraceState::DataMode},
    {TA_MANUAL_MODE, &jTraceState::ManualMode},
};

/// Returns the field behind an attribute; null if it has none.
Field FieldOf(int32_t id) {
    for (const auto& row : kFields)
        if (row.Id == id) return row.Value;
    return nullptr;
}

} // namespace

jTraceSettings::jTraceSettings() : Attributes(kAttributes) {
    Snapshot.BoardFile = ORN_BOARD_UNKNOWN;
    Working.BoardFile = ORN_BOARD_UNKNOWN;
}

bool jTraceSettings::GetAttributeInfo(int32_t id, jTraceAttribute& row) const {
    const auto found = std::find_if(Attributes.begin(), Attributes.end(),
                                    [id](const jTraceAttribute& each) { return each.Id == id; });
    if (found == Attributes.end()) return false;
    row = *found;
    return true;
}

int32_t jTraceSettings::GetAttribute(int32_t id) const {
    const Field field = FieldOf(id);
    return field != nullptr ? Working.*field : -1;
}

bool jTraceSettings::SetAttribute(int32_t id, int32_t value) {
    const Field field = FieldOf(id);
    if (field == nullptr) return false;
    Working.*field = value;
    return true;
}

bool jTraceSettings::GetTextAttribute(int32_t id, char* buffer, size_t size) {
    if (id == TA_BOARD_FILE) {
        CopyBounded(buffer, size, Working.BoardFile.c_str());
        return true;
    }
    if (id == TA_BOARD_DIRECTORY) {
        if (BoardDirectory.empty()) DeriveBoardDirectory();
        CopyBounded(buffer, size, BoardDirectory.c_str());
        return true;
    }
    return false;
}

bool jTraceSettings::SetTextAttribute(int32_t id, const char* text) {
    if (text == nullptr) text = "";
    if (id == TA_BOARD_FILE) {
        Working.BoardFile = text;
        return true;
    }
    if (id == TA_BOARD_DIRECTORY) {
        BoardDirectory = text;
        if (BoardDirectory.empty()) DeriveBoardDirectory();
        return true;
    }
    return false;
}

void jTraceSettings::DiscardChanges() {
    Working = Snapshot;
}

void jTraceSettings::DeriveBoardDirectory() {
    const char* const module = ModulePath();
    BoardDirectory = DirectoryOf(module != nullptr ? module : "").substr(0, kMaxDirectory);
}
