// Dialog 108: the page "ETM Trace Settings".

#pragma once

#include "toolkit/template.h"

namespace dialog_108 {

using enum ControlKind;

inline constexpr ControlTemplate controls[] = {
    {1011, GroupBox, "Program Counter (PC) Tracing Mode", 7, 18, 196, 126},
    {1030, RadioButton, "Disable PC Trace", 14, 30, 128, 10, style::Group},
    {1012, RadioButton, "Capture Complete PC Trace", 14, 43, 128, 10},
    {1013, RadioButton, "Start PC Capture at Address", 14, 56, 128, 10},
    {1015, RadioButton, "Start/Stop Tracing on Addresses", 14, 69, 128, 10},
    {1017, RadioButton, "Capture PC in Address Range", 14, 82, 128, 10},
    {1022, RadioButton, "Use Advanced settings  -->", 146, 56, 50, 10, style::Hidden},
    {1024, RadioButton, "Do not capture PC Trace", 146, 69, 50, 10,
     style::Hidden | style::Disabled},

    // The data range, in the group at the bottom.
    {1014, Edit, "", 40, 186, 64, 14, style::Group, "Data range begin"},
    {1016, Edit, "", 132, 186, 64, 14, style::None, "Data range end"},

    {1028, Static, "Begin:", 14, 99, 24, 8},
    {1018, Edit, "", 40, 96, 64, 14, style::None, "PC begin"},
    {1020, Static, "End:", 110, 99, 20, 8},
    {1019, Edit, "", 132, 96, 64, 14, style::None, "PC end"},
    {1023, PushButton, "Advanced ...", 146, 80, 50, 14, style::Hidden},

    {1025, GroupBox, "Data Tracing Mode", 7, 148, 196, 56},
    {1026, CheckBox, "Capture Data Values", 14, 160, 84, 10},
    {1027, CheckBox, "Capture Data Addresses", 100, 160, 98, 10},
    {1075, CheckBox, "Limit Data Tracing to Data Address Range", 14, 173, 162, 10},
    {1029, Static, "Begin:", 14, 189, 24, 8},
    {1021, Static, "End:", 110, 189, 20, 8},

    {-1, Static, "Features not present on the chip are disabled.", 7, 6, 196, 8, style::Centered},
    {1083, Edit, "", 14, 114, 182, 25, style::MultiLine | style::ReadOnly, "Note on this target"},
};

inline constexpr DialogTemplate dialog = {108, "ETM Trace Settings", 210, 211, controls, true};

static_assert(check::IdsUnique(controls));
static_assert(check::InsideDialog(dialog));
static_assert(check::GroupsClosed(controls));

} // namespace dialog_108
