// jTraceSettings: all that is known of the target's trace hardware, and all that
// was chosen for it.
//
// The record holds two images of the same state. Snapshot is what the target is
// known to hold: reading the target fills it, a successful apply overwrites it.
// Working is what the pages edit. An apply sends only what differs; a cancel
// copies Snapshot over Working. Pages never talk to the target about settings.
//
// Who owns it: the control component, which makes one; reached by g_Settings.
// Which thread: the one that runs the dialogs. No lock.
// Where: jTraceSettings.cpp; ReadFromTarget.cpp, ApplyToTarget.cpp and ChoiceLists.cpp hold
// the operations of those names.

#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>

class TxtScan;

/// Ids of attributes; the last two are texts.
enum AttributeId : int32_t {
    TA_ENABLE = 1,
    TA_STOP_MODE = 2,
    TA_TRIGGER_PIN = 3,
    TA_TRIGGER_ON_ADDRESS = 4,
    TA_TRIGGER_POSITION = 5,
    TA_ACCUMULATE = 6,
    TA_RESERVED = 7, // has a row in the table, but no value
    TA_PORT_SIZE = 8,
    TA_PORT_MODE = 9,
    TA_CPRT_MODE = 10,
    TA_CONTEXT_ID_SIZE = 11,
    TA_STALL_PROCESSOR = 12,
    TA_CYCLE_ACCURATE = 13,
    TA_BRANCH_OUTPUT = 14,
    TA_PC_MODE = 15,
    TA_DATA_MODE = 16,
    TA_MANUAL_MODE = 17,
    TA_BOARD_FILE = 21,
    TA_BOARD_DIRECTORY = 22,
};

/// When capture stops. As the radio buttons stand on the page.
enum StopModeValue : int32_t {
    STOP_WITH_PROCESSOR = 0,
    STOP_WHEN_FULL = 1,
    STOP_AFTER_TRIGGER = 2,
};

/// What PC trace does. As the radio buttons stand on the page.
enum PcModeValue : int32_t {
    PC_NONE = 0,
    PC_ALL = 1,
    PC_START = 2,      // from PcBegin on
    PC_START_STOP = 3, // from PcBegin to PcEnd, in the order of execution
    PC_RANGE = 4,      // between the addresses PcBegin and PcEnd
    PC_COMPLEX = 5,    // the target was set up by other means
    PC_UNTOUCHED = 6,  // the same for an apply
};

/// Bits of DataMode.
enum DataModeBits : int32_t {
    DATA_ADDRESSES = 1,
    DATA_VALUES = 2,
    DATA_IN_RANGE = 4, // of DataBegin and DataEnd
    DATA_KINDS = DATA_ADDRESSES | DATA_VALUES,
};

/// One row of the attribute table.
struct jTraceAttribute {
    uint8_t Id;
    uint8_t Kind; // 1 switch, 2 number, 3 index of a choice list
    int32_t Min;  // the range describes the value; SetAttribute does not enforce it
    int32_t Max;
    int32_t Default; // of "Restore Defaults"
    uint32_t Mask;   // the bits of the ETM main control register it stands for
};

/// One image of the state. Flags hold 0 or 1.
struct jTraceState {
    // What the chip is and offers; see ReadCapabilities.h.
    uint32_t ConfigCode = 0;   // ETMCCR
    uint32_t SystemConfig = 0; // ETMSCR
    uint32_t EtmId = 0;        // ETMIDR; 0: the chip has none
    int32_t ProtocolVersion = 0;
    int32_t ArchVersion = 0; // major * 10 + minor
    int32_t AddressComparatorPairs = 0;
    int32_t DataComparators = 0;
    int32_t MemoryMapDecoders = 0;
    int32_t Counters = 0;
    int32_t SequencerPresent = 0;
    int32_t ExternalInputs = 0;
    int32_t ExternalOutputs = 0;
    int32_t FifoFullPresent = 0;
    int32_t HalfRateSupported = 0;
    int32_t FullRateSupported = 0;
    int32_t NormalFormatSupported = 0;
    int32_t MultiplexedFormatSupported = 0;
    int32_t DemultiplexedFormatSupported = 0;
    uint32_t PortSizeMask = 0; // bit n: a port of n + 1 bits is on offer

    // What is set.
    int32_t Enable = 0;
    int32_t StopMode = 0; // StopModeValue
    int32_t TriggerPin = 0;
    int32_t TriggerOnAddress = 0;
    int32_t TriggerPosition = 0; // percent of the buffer before the trigger
    int32_t Accumulate = 0;
    int32_t ManualMode = 0;
    int32_t ControlSpareBits = 0; // bits 4 and 5 of the control word, in place
    int32_t PortSizeIndex = 0;    // of the port size list; not a width
    int32_t PortModeIndex = 0;
    int32_t CprtModeIndex = 0;
    int32_t ContextIdIndex = 0;
    int32_t StallProcessor = 0;
    int32_t CycleAccurate = 0;
    int32_t BranchOutput = 0;
    std::string BoardFile; // a path, "/none", "/startup", or "---": not known
    int32_t PcMode = 0;    // PcModeValue
    int32_t DataMode = 0;  // DataModeBits

    // Addresses, as they were typed or reported; never evaluated here.
    std::string PcBegin;
    std::string PcEnd;
    std::string DataBegin;
    std::string DataEnd;
    std::string TriggerAddress;

    bool operator==(const jTraceState&) const = default;
};

class jTraceSettings {
public:
    /// All zero and empty, the board files "---". The defaults of the table are not
    /// copied into the images.
    jTraceSettings();

    /// Copies the row of `id` to `row`. Returns false, leaving `row` alone, without one.
    bool GetAttributeInfo(int32_t id, jTraceAttribute& row) const;

    /// Returns the value of `id` in Working; -1 for an id without a value.
    int32_t GetAttribute(int32_t id) const;
    /// Stores any value in Working. Returns false for an id without a value.
    bool SetAttribute(int32_t id, int32_t value);

    /// Copies TA_BOARD_FILE of Working or TA_BOARD_DIRECTORY into the `size` bytes at
    /// `buffer`, cut and always terminated. A board directory that is still empty is
    /// first derived from the path of the module's file. False for any other id.
    bool GetTextAttribute(int32_t id, char* buffer, size_t size);
    /// Stores a text; null counts as empty. An empty board directory becomes the
    /// derived one. False for any other id.
    bool SetTextAttribute(int32_t id, const char* text);

    /// Makes Working equal to Snapshot.
    void DiscardChanges();

    /// True iff one of the four groups below differs between Working and Snapshot.
    bool IsModified() const;
    bool ControlChanged() const;
    bool TriggerPositionChanged() const;
    bool PortChanged() const;
    bool TraceChanged() const;

    /// Reads the target into Snapshot, then copies that over Working, edits that were
    /// not applied included. Returns false, leaving Working alone, if a value that
    /// counts could not be read.
    bool ReadFromTarget();

    /// Read the rest of a settings line behind "PC" or "DATA" into Snapshot. Return true
    /// iff the line has one of the forms of IOrnVETMTrace::GetSettingsLine.
    bool ParsePcLine(TxtScan& scanner);
    bool ParseDataLine(TxtScan& scanner);

    /// Sends what differs, in a fixed order, and then copies Working over Snapshot.
    /// Returns false, leaving Snapshot alone, if the target refused a step that counts.
    /// A refused "enable" is shown in a message box.
    bool ApplyToTarget();

    /// Returns the number of entries that Snapshot's chip offers in the list of `id`,
    /// TA_PORT_SIZE to TA_CONTEXT_ID_SIZE; -1 for any other id. For TA_PORT_SIZE the widest
    /// port on offer becomes the default.
    int32_t GetChoiceCount(int32_t id);
    /// Copies the text of entry `index` into the `size` bytes at `buffer` and stores its
    /// value: a width in bits, or bits of ETMCR. Returns false, leaving both alone,
    /// if there is no such entry.
    bool GetChoice(int32_t id, int32_t index, char* buffer, size_t size, uint32_t& value);

    jTraceState Snapshot;
    jTraceState Working;
    uint32_t BufferSize = 0; // in the units of the trigger count; 0: not known
    std::array<jTraceAttribute, 17> Attributes;
    std::string BoardDirectory; // without a separator at its end

private:
    // ReadFromTarget.cpp
    void ReadIdentification();
    bool ReadSettingsLines();
    void ParseSettingsLine(TxtScan& scanner);
    void ParsePortSizeLine(TxtScan& scanner);
    void ParseHalfRateLine(TxtScan& scanner);
    void DecodeTriggerCount(uint32_t count);
    void ReadBoardFile();

    // ApplyToTarget.cpp
    bool SwitchTrace(bool wasEnabled);
    uint32_t EncodeTriggerCount() const;
    bool ApplyPort();
    bool ApplyTrace();

    void DeriveBoardDirectory();
};

/// Returns the number of bits that are set.
int32_t CountBits(uint32_t mask);

/// Returns the width of entry `index` of the port sizes in `mask`; 0 if there is none.
int32_t PortSizeFromIndex(int32_t index, uint32_t mask);

/// Returns the index of the port of `size` bits among those in `mask`; 0, too, for a
/// size that is not on offer.
int32_t PortIndexFromSize(int32_t size, uint32_t mask);
