// CToolTipCtrl: the tool tips of a dialog.

#pragma once

#include "toolkit/CWnd.h"

/// One tool: the control that shows a tip, and the tip.
struct ToolInfo {
    unsigned size = 48;    // of the record in its classic form
    unsigned flags = 0;    // TTF_IDISHWND | TTF_SUBCLASS
    CWnd* owner = nullptr; // the control's parent
    CWnd* tool = nullptr;  // the control itself
    const char* text = nullptr;
};

class CToolTipCtrl {
public:
    CToolTipCtrl() = default;
    CToolTipCtrl(const CToolTipCtrl&) = delete;
    CToolTipCtrl& operator=(const CToolTipCtrl&) = delete;

    /// Makes the tip window of `parent`.
    bool Create(CWnd* parent);
    bool IsCreated() const { return m_Parent != nullptr; }
    /// TTM_SETMAXTIPWIDTH, in pixels; holds for tools added from then on.
    void SetMaxTipWidth(int pixels) { m_MaxTipWidth = pixels; }
    /// TTM_ACTIVATE. Tools added while the tips are off show none.
    void Activate(bool active) { m_Active = active; }
    /// Keeps the tip above all other windows; displays do that anyway.
    void SetTopMost() {}
    /// TTM_ADDTOOL. Copies the text. Returns false for a tool without a control
    /// or a text, and before Create.
    bool AddTool(const ToolInfo& info);

private:
    CWnd* m_Parent = nullptr;
    int m_MaxTipWidth = -1;
    bool m_Active = false;
};
