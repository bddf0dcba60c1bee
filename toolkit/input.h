// What the person does, as a display reports it.
//
// Each function changes the model first and then lets the dialog react. None
// throws: what a handler throws becomes a message box. Input for a control that
// is disabled or hidden is ignored, and the display is refreshed instead.

#pragma once

#include <string_view>

#include "toolkit/CPropertySheet.h"

namespace input {

/// A button was pressed, or a check box or radio button clicked. A check box
/// changes over, a radio button becomes the one of its group. A push button does nothing
/// while its dialog waits for another window.
void Click(CWnd& button);

/// The text of an edit is now `text`.
void Type(CWnd& edit, std::string_view text);

/// Entry `index` of a combo box, or tab `index` of a sheet, was chosen.
void Select(CWnd& list, int index);

/// The thumb of a slider was moved; the repaint that follows is reported apart.
void Slide(CSliderCtrl& slider, int position);
/// The slider is about to be repainted: NM_CUSTOMDRAW with CDDS_PREPAINT.
void Paint(CSliderCtrl& slider);
/// The slider has let go of the mouse: NM_RELEASEDCAPTURE.
void Release(CSliderCtrl& slider);

/// The dialog's frame was closed, or Escape was pressed.
void Close(CDialog& dialog);

/// Timer `id` of `window` is due.
void Tick(CWnd& window, unsigned id);

} // namespace input
