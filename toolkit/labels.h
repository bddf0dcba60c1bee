// Which group a control belongs to, and which text names it: what a person sees at a glance
// and a screen reader has to be told.

#pragma once

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

#include "toolkit/CDialog.h"

/// The group box of its dialog that a control stands in, or null.
const CWnd* GroupAround(const CWnd& control);

/// A static text, and the edit, list or slider that it names.
using Label = std::pair<const CWnd*, const CWnd*>;

/// The labels of a dialog. A text names one control, which is in the same group: that right
/// behind it in the template, beside or below it; otherwise the next one on its right.
std::vector<Label> LabelsOf(const CDialog& dialog);

/// Whether a control shows what a person enters, so that it can't show what it is.
inline bool HasNoCaption(const CWnd& control) {
    const ControlKind kind = control.GetKind();
    return kind == ControlKind::Edit || kind == ControlKind::ComboBox ||
           kind == ControlKind::Slider;
}

/// The name of a control without a caption: its template's, or that of its label in `labels`,
/// without the colon. Empty if it has none: the title of the group around it says what it is.
inline std::string NameWithoutCaption(const CWnd& control, const std::vector<Label>& labels) {
    if (control.GetTemplate()->accessibleName != nullptr)
        return control.GetTemplate()->accessibleName;
    const auto label = std::ranges::find(labels, &control, &Label::second);
    if (label == labels.end()) return {};
    const std::string text = label->first->GetWindowText();
    return text.substr(0, text.find_last_not_of(" :") + 1);
}
