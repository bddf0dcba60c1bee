// jToolTip: tool tips whose texts stand in the string table.

#pragma once

#include "toolkit/CToolTipCtrl.h"

class jToolTip : public CToolTipCtrl {
public:
    /// Shows string `stringId` while the pointer rests on `control`. Returns what the
    /// tip control answers; false for a null control and for a string that is not there.
    bool AddWindowTool(CWnd* control, unsigned stringId);
};
