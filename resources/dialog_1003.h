// Dialog 1003: the page "TPIU", which no sheet shows.

#pragma once

#include "toolkit/template.h"

namespace dialog_1003 {

using enum ControlKind;

inline constexpr const char* portSizes[] = {"1 bit", "2 bit", "4 bit"};
inline constexpr const char* traceCtl[] = {"Not Present", "Use", "Do not use"};
inline constexpr const char* multipliers[] = {"1", "2", "4", "16", "256", "64K"};

inline constexpr ControlTemplate controls[] = {
    {1086, ComboBox, "", 115, 23, 88, 46, style::None, "TPIU Port Size", portSizes},
    {-1, Static, "TPIU Port Size:", 7, 26, 104, 8},
    {1087, ComboBox, "", 115, 41, 88, 46, style::None, "TRACECTL Pin", traceCtl},
    {-1, Static, "TRACECTL Pin:", 7, 44, 104, 8},
    {-1, Static, "Features not present on the chip are disabled.", 7, 7, 196, 8, style::Centered},
    {-1, Static, "Trigger Delay (1 .. 255):", 7, 62, 104, 8},
    {1088, ComboBox, "", 115, 77, 88, 70, style::None, "Trigger delay multiplier", multipliers},
    {-1, Static, "Multiplier:", 7, 80, 104, 8},
    {1089, Edit, "", 115, 59, 88, 14, style::DigitsOnly, "Trigger delay"},
    {-1, Static, "Sync Pkt Counter (1 .. 4096):", 7, 98, 104, 8},
    {1090, Edit, "", 115, 95, 88, 14, style::DigitsOnly, "Sync packet counter"},
    {1091, PushButton, "Set Defaults", 115, 131, 88, 14},
    {1092, CheckBox, "Stop TPIU on Trigger", 7, 115, 90, 10},
};

inline constexpr DialogTemplate dialog = {1003, "TPIU", 210, 179, controls};

static_assert(check::IdsUnique(controls));
static_assert(check::InsideDialog(dialog));
static_assert(check::GroupsClosed(controls));

} // namespace dialog_1003
