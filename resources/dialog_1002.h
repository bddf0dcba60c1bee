// Dialog 1002: the page "DWT and ITM", which no sheet shows.

#pragma once

#include "toolkit/template.h"

namespace dialog_1002 {

using enum ControlKind;

inline constexpr const char* comparators[] = {"Comparator0", "Comparator1", "Comparator2",
                                              "Comparator3"};

inline constexpr ControlTemplate controls[] = {
    {1011, GroupBox, "Program Counter (PC) Tracing Mode", 7, 7, 196, 99},
    {1014, RadioButton, "No PC Trace (DWT and ITM Generated Trace Only)", 12, 19, 187, 10,
     style::Group},
    {1012, RadioButton, "Complete PC Trace (Ignore Events from DWT)", 12, 32, 187, 10},
    {1013, RadioButton, "Start PC Trace on Event from DWT", 12, 45, 187, 10},
    {1016, RadioButton, "Stop PC Trace on Event from DWT", 12, 58, 187, 10},
    {1015, RadioButton, "Start/Stop PC Tracing using Events from DWT", 12, 71, 187, 10},
    {1028, Static, "Begin:", 12, 89, 24, 8, style::Group},
    {1018, ComboBox, "", 38, 86, 66, 54, style::None, "Begin comparator", comparators},
    {1020, Static, "End:", 112, 89, 18, 8},
    {1019, ComboBox, "", 132, 86, 66, 54, style::None, "End comparator", comparators},
    {-1, Static, "Make sure DWT comparators are defined to generate events for ETM.", 7, 112, 196,
     16},
    {1021, ComboBox, "", 137, 134, 66, 54, style::None, "Trigger comparator", comparators},
    {1005, CheckBox, "ETM Trigger on Event from DWT", 7, 136, 126, 10},
};

inline constexpr DialogTemplate dialog = {1002, "DWT and ITM", 210, 179, controls};

static_assert(check::IdsUnique(controls));
static_assert(check::InsideDialog(dialog));
static_assert(check::GroupsClosed(controls));

} // namespace dialog_1002
