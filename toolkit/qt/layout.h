// Layout: windows and controls at their sizes and places, in a font that fits the screen.

#pragma once

class CDialog;

namespace qt {

/// Puts the window of a dialog, sheet or page and its controls to their sizes and places. A
/// window of its own gets the largest font in which it fits on its screen.
void LayOut(CDialog& dialog);

} // namespace qt
