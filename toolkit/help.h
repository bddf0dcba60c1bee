// Help on a control, brought up by F1.

#pragma once

#include <string>

#include "toolkit/CDialog.h"

inline constexpr int kHelpTipWidth = 250; // pixels

/// The control whose help (CWnd::GetHelp) F1 shows next in the top-level dialog `dialog`: first
/// that with the keyboard, then one by one those that can't be used, which the keyboard never
/// comes to, and so on around. `focused` has the keyboard; `shown` is the one whose help is on the
/// screen. Both may be null. Returns null if there is nothing to show.
CWnd* NextHelp(const CDialog& dialog, CWnd* focused, const CWnd* shown);

/// What F1 shows of a control that has help: what it is called, and the help.
std::string HelpText(const CWnd& control);
