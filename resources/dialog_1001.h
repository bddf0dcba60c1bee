// Dialog 1001: "ETM Configuration".

#pragma once

#include "toolkit/template.h"

namespace dialog_1001 {

using enum ControlKind;

// Settings that the dialog carries without showing them.
inline constexpr uint32_t unseen = style::Hidden | style::Disabled;

inline constexpr ControlTemplate controls[] = {
    {1050, Static, "Trace Port Size", 7, 18, 52, 12},
    {1065, ComboBox, "", 69, 18, 49, 51},
    {1067, Static, "Trace Port Mode", 7, 32, 61, 12},
    {1068, ComboBox, "", 69, 32, 132, 63},
    {1079, Static, "Board File", 7, 5, 31, 8},
    {1078, ComboBox, "", 42, 3, 159, 72},
    {1081, Static, "Board File Commands :", 7, 50, 72, 8},
    {1080, Edit, "", 7, 61, 194, 55, style::MultiLine | style::WantReturn},
    {1082, PushButton, "Create New Board File", 7, 120, 80, 12},
    {1069, Static, "CPRT mode :", 161, 51, 31, 8, unseen},
    {1070, ComboBox, "", 136, 47, 23, 56, unseen},
    {1071, Static, "Context ID size :", 82, 57, 16, 8, unseen},
    {1072, ComboBox, "", 93, 57, 28, 56, unseen},
    {1060, CheckBox, "Stall Processor to prevent overflow", 157, 54, 33, 10, unseen},
    {1055, CheckBox, "Cycle Accurate Tracing", 130, 56, 17, 10, unseen},
    {1066, CheckBox, "Output All Branch Addresses", 98, 50, 32, 10, unseen},
    {1056, PushButton, "Restore Defaults", 139, 120, 62, 12},
    {1, PushButton, "OK", 26, 140, 50, 14, style::Default},
    {2, PushButton, "Cancel", 132, 140, 50, 14},
};

inline constexpr DialogTemplate dialog = {1001, "ETM Configuration", 208, 161, controls};

static_assert(check::IdsUnique(controls));
static_assert(check::InsideDialog(dialog));
static_assert(check::GroupsClosed(controls));

} // namespace dialog_1001
