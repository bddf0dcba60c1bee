// Dialog templates: dialogs as constant data.
//
// resources/ holds one table per dialog, and every display draws from it. All
// measures are dialog units: a quarter of the mean character width across, an
// eighth of the font's height down.

#pragma once

#include <cstdint>
#include <span>

enum class ControlKind : uint8_t {
    Static,
    PushButton,
    CheckBox,
    RadioButton,
    GroupBox,
    Edit,
    ComboBox, // a drop-down list; its height is that of the opened list
    Slider,
    Tab, // the tab control of a property sheet
};

/// Styles of a control, to be or-ed.
namespace style {
constexpr uint32_t None = 0;
constexpr uint32_t Group = 1u << 0;          // begins a group of radio buttons or arrows
constexpr uint32_t Hidden = 1u << 1;         // created invisible
constexpr uint32_t Disabled = 1u << 2;       // created disabled
constexpr uint32_t Default = 1u << 3;        // push button that Return presses
constexpr uint32_t MultiLine = 1u << 4;      // edit of several lines
constexpr uint32_t ReadOnly = 1u << 5;       // edit that only shows
constexpr uint32_t WantReturn = 1u << 6;     // Return in the edit makes a new line
constexpr uint32_t DigitsOnly = 1u << 7;     // edit that takes 0 to 9 alone
constexpr uint32_t Centered = 1u << 8;       // static text in the middle of its place
constexpr uint32_t TicksBothSides = 1u << 9; // slider with tick marks on both sides
} // namespace style

struct ControlTemplate {
    int id; // resource number; -1 for a static that nobody refers to
    ControlKind kind;
    const char* text;
    int x, y, width, height;
    uint32_t styles = style::None;
    // What a screen reader calls the control; null: its text, or that of the
    // static before it.
    const char* accessibleName = nullptr;
    // Entries that a combo box holds from the start.
    std::span<const char* const> entries = {};
};

struct DialogTemplate {
    int id; // the dialog number
    const char* caption;
    int width, height;
    std::span<const ControlTemplate> controls; // in tab order
    bool helpAsTips = false;                   // the pointer brings up what FindHelp says
};

/// Returns the template of dialog `id`, or null. Provided by resources/.
const DialogTemplate* FindDialogTemplate(int id);

/// Returns string `id` of the module's string table, or null. Provided by
/// resources/.
const char* FindString(unsigned id);

/// Returns one or two sentences on control `id` of dialog `dialog`, 0 for the frame of a sheet:
/// what it does, what it sends, and when it can be used; or null. Provided by resources/.
const char* FindHelp(int dialog, int id);

/// Checks on tables, for static_assert beside each of them.
namespace check {

/// True iff no two controls share a number; -1 may repeat.
constexpr bool IdsUnique(std::span<const ControlTemplate> controls) {
    for (size_t i = 0; i < controls.size(); ++i)
        for (size_t j = i + 1; j < controls.size(); ++j)
            if (controls[i].id != -1 && controls[i].id == controls[j].id) return false;
    return true;
}

/// True iff every visible control lies inside the dialog. The opened list of a
/// combo box may hang over; `beyond` names one control that is outside on purpose.
constexpr bool InsideDialog(const DialogTemplate& dialog, int beyond = 0) {
    for (const ControlTemplate& c : dialog.controls) {
        if (c.id == beyond && beyond != 0) continue;
        const int height = c.kind == ControlKind::ComboBox ? 12 : c.height;
        if (c.x < 0 || c.y < 0 || c.x + c.width > dialog.width || c.y + height > dialog.height)
            return false;
    }
    return true;
}

/// True iff each run of radio buttons begins with the group style and the control
/// behind the run has it too.
constexpr bool GroupsClosed(std::span<const ControlTemplate> controls) {
    for (size_t i = 0; i < controls.size(); ++i) {
        const bool radio = controls[i].kind == ControlKind::RadioButton;
        const bool radioBefore = i > 0 && controls[i - 1].kind == ControlKind::RadioButton;
        if (radio != radioBefore && (controls[i].styles & style::Group) == 0) return false;
    }
    return true;
}

} // namespace check
