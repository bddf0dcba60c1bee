// What the stories of the pages share.

#pragma once

#include "frame/interfaces/IOrnKVETMSupp.h"
#include "tests/support/Session.h"

class PagesTest : public Session {
protected:
    PagesTest() { host.boardFile = "/none"; }
    ~PagesTest() override { EXPECT_EQ(display.UnansweredBoxes(), 0); }

    /// Opens the sheet on tab `tab`; host calls and log start with `script`.
    void Open(int tab, HeadlessDisplay::Script script) {
        EXPECT_TRUE(OpenAnd([&] {
            display.Tab(tab);
            host.TakeCalls();
            display.ClearLog();
            script();
        }));
    }

    bool CanApply() const { return display.Enabled(IDC_APPLY_NOW); }
    bool IsOpen() const { return !display.Front()->HasEnded(); }
    int FrontTab() const { return display.Selection(IDC_TAB_CONTROL); }
    /// The text of the note 1083; "" while it is hidden.
    std::string Note() const { return display.Visible(1083) ? display.Text(1083) : ""; }

    /// The visible controls of the page in front that can't be used, in tab order.
    std::string Unusable() const {
        std::string text;
        for (const auto& control : display.FrontPage()->GetControls())
            if (control->IsWindowVisible() && !control->IsWindowEnabled())
                text += (text.empty() ? "" : " ") + std::to_string(control->GetDlgCtrlID());
        return text;
    }
};
