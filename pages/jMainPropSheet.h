// jMainPropSheet: the modal sheet "ETM Control".
//
// Open makes it, runs it with its pages, and takes it down. The sheet has no
// behaviour of its own: what the buttons do, the pages do.

#pragma once

#include "toolkit/CPropertySheet.h"

class jMainPropSheet : public CPropertySheet {
public:
    /// `parent` may be null. `firstTab` counts from 0.
    jMainPropSheet(const char* caption, CWnd* parent, int firstTab)
        : CPropertySheet(caption, parent, firstTab) {}
};
