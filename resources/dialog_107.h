// Dialog 107: the page "General Control".

#pragma once

#include "toolkit/template.h"

namespace dialog_107 {

using enum ControlKind;

inline constexpr ControlTemplate controls[] = {
    {1000, CheckBox, "Enable ETM", 7, 9, 60, 10},
    {1029, PushButton, "Configure ETM ...", 123, 7, 80, 14},

    {1036, GroupBox, "Stop Trace Capture", 7, 26, 196, 70},
    {1061, RadioButton, "Only When Processor is Stopped", 14, 38, 128, 10, style::Group},
    {1034, RadioButton, "When Trace Buffer is Full", 14, 51, 102, 10},
    {1035, RadioButton, "After Detecting theTrigger", 14, 64, 104, 10},
    {1006, PushButton, "Trigger Now", 120, 77, 76, 14, style::Group},

    {1003, GroupBox, "Trigger Settings", 7, 101, 196, 65},
    {1032, Static, "Before (%)", 14, 117, 40, 8},
    {1007, Slider, "", 56, 112, 104, 18, style::TicksBothSides, "Trigger position in percent"},
    {1008, Edit, "", 164, 114, 32, 14, style::DigitsOnly, "Trigger position in percent"},
    {1005, CheckBox, "ETM Trigger on Address", 14, 135, 98, 10},
    {1077, Edit, "", 116, 133, 80, 14, style::None, "Trigger address"},
    {1004, CheckBox, "Observe External Trigger Pin", 14, 151, 116, 10},

    {1002, CheckBox, "Accumulate Trace between Processor RUNs", 7, 171, 168, 10},
    {1009, CheckBox, "Manual Start/Stop Mode", 7, 188, 100, 10},
    {1030, PushButton, "Start", 111, 186, 44, 14},
    {1031, PushButton, "Stop", 159, 186, 44, 14},

    {1083, Edit, "", 120, 50, 76, 24, style::MultiLine | style::ReadOnly, "Note on this target"},
};

inline constexpr DialogTemplate dialog = {107, "General Control", 210, 211, controls, true};

static_assert(check::IdsUnique(controls));
static_assert(check::InsideDialog(dialog));
static_assert(check::GroupsClosed(controls));

} // namespace dialog_107
