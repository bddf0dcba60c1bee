// jStatusPage: the tab "Status", what the trace hardware is.
//
// It shows a line about the emulator or ETB and the capability report, both as the
// host words them, asked for once when the tab first comes to the front.

#pragma once

#include <string>

#include "toolkit/CPropertyPage.h"

class jStatusPage : public CPropertyPage {
public:
    jStatusPage();

protected:
    void DoDataExchange(CDataExchange& exchange) override;
    bool OnInitDialog() override;

private:
    std::string ReadResources() const;

    std::string m_InfoText;
    std::string m_ResourcesText;
    int32_t m_HiddenCheck = 0; // bound, and read by nobody
};
