// Dialog 106: the page "Status".

#pragma once

#include "toolkit/template.h"

namespace dialog_106 {

using enum ControlKind;

inline constexpr ControlTemplate controls[] = {
    // Bound by the page and read by nobody: it lies far outside the page.
    {1064, CheckBox, "", 1000, 7, 10, 10, style::None, "Not used"},
    {1037, Static, "Emulator/ETB Info", 9, 7, 192, 8},
    {1038, Edit, "", 9, 17, 192, 13, style::MultiLine | style::ReadOnly},
    {1062, Static, "ETM Resources", 9, 33, 192, 8},
    {1063, Edit, "", 9, 44, 191, 160, style::MultiLine | style::ReadOnly},
};

inline constexpr DialogTemplate dialog = {106, "Status", 210, 211, controls, true};

static_assert(check::IdsUnique(controls));
static_assert(check::InsideDialog(dialog, 1064));
static_assert(check::GroupsClosed(controls));

} // namespace dialog_106
