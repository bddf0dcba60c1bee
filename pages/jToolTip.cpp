#include "pages/jToolTip.h"

bool jToolTip::AddWindowTool(CWnd* control, unsigned stringId) {
    ToolInfo info;
    info.flags = TTF_IDISHWND | TTF_SUBCLASS; // the tip watches the mouse by itself
    info.owner = control != nullptr ? control->GetParent() : nullptr;
    info.tool = control;
    info.text = FindString(stringId);
    return AddTool(info);
}
