// jTPIUPage: "TPIU", a page that is built with the others but has no tab.
//
// Its controls are not bound to anything.

#pragma once

#include "toolkit/CPropertyPage.h"

class jTPIUPage : public CPropertyPage {
public:
    jTPIUPage();

protected:
    void DoDataExchange(CDataExchange& exchange) override;
};
