// Which group a control belongs to, and which text names it: what a person sees at a glance
// and a screen reader has to be told.

#pragma once

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
