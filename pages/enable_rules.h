// Enable rules: which controls of a page can be used, as a table.
//
// A page gathers the facts into a small struct and lets the table answer. The
// rules are evaluated from scratch each time, so that no page has to remember
// what it disabled.

#pragma once

#include "toolkit/CDialog.h"

/// A control and the condition under which it can be used.
template <class Facts> struct EnableRule {
    int id;
    bool (*condition)(const Facts&);
};

/// The condition of what can always be used.
inline constexpr auto Always = [](const auto&) { return true; };

/// Enables or disables control `id`, if the dialog has it.
inline void EnableControl(const CDialog& dialog, int id, bool enable) {
    if (CWnd* control = dialog.GetDlgItem(id)) control->EnableWindow(enable);
}

/// Brings every control of the table into the state that `facts` call for.
template <class Facts, size_t N>
void ApplyRules(const CDialog& dialog, const EnableRule<Facts> (&rules)[N], const Facts& facts) {
    for (const EnableRule<Facts>& rule : rules)
        EnableControl(dialog, rule.id, rule.condition(facts));
}

/// Disables every control of the table.
template <class Facts, size_t N>
void DisableAll(const CDialog& dialog, const EnableRule<Facts> (&rules)[N]) {
    for (const EnableRule<Facts>& rule : rules) EnableControl(dialog, rule.id, false);
}

/// Shows control `id`, which the dialog has, with `text`, or hides it if `text` is null.
inline void ShowNote(const CDialog& dialog, int id, const char* text) {
    CWnd& note = *dialog.GetDlgItem(id);
    if (text != nullptr) note.SetWindowText(text);
    note.ShowWindow(text != nullptr ? SW_SHOW : SW_HIDE);
}
