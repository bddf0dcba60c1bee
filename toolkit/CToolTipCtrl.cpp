#include "toolkit/CToolTipCtrl.h"

#include "toolkit/CWinApp.h"

bool CToolTipCtrl::Create(CWnd* parent) {
    m_Parent = parent;
    return parent != nullptr;
}

bool CToolTipCtrl::AddTool(const ToolInfo& info) {
    if (m_Parent == nullptr || info.tool == nullptr || info.text == nullptr) return false;
    if (m_Active) AfxGetApp()->GetDisplay().SetToolTip(*info.tool, info.text, m_MaxTipWidth);
    return true;
}
