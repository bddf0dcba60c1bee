// The two pages without a tab, and the tool tips.

#include <array>

#include "pages/jDWTPage.h"
#include "pages/jToolTip.h"
#include "tests/pages/PagesTest.h"

TEST_F(PagesTest, TheDwtPageOffersTheComparatorsOfItsModeAndRefusesToBeLeft) {
    jDWTPage page;
    CPropertySheet sheet("alone", nullptr, 0);
    sheet.AddPage(&page);
    display.OnNextDialog([&] {
        for (const int radio : {1012, 1015, 1016, 1014, 1013}) {
            display.Click(radio);
            EXPECT_EQ(display.Enabled(1018), radio == 1013 || radio == 1015) << radio;
            EXPECT_EQ(display.Enabled(1019), radio == 1016 || radio == 1015) << radio;
        }
        display.Answer(IDOK);
        display.Click(IDOK);
        EXPECT_TRUE(IsOpen());
    });
    sheet.DoModal();
    EXPECT_THAT(display.Boxes(),
                testing::ElementsAre("[Error] Simulation of error in DWT triggers"));
}

TEST_F(PagesTest, AToolTipNeedsAControlAndAText) {
    CEdit edit;
    jToolTip tips;
    EXPECT_FALSE(tips.AddWindowTool(&edit, 3)) << "not created yet";
    Open(0, [&] {
        tips.Create(display.Front());
        EXPECT_TRUE(tips.AddWindowTool(&edit, 6));
        EXPECT_FALSE(tips.AddWindowTool(&edit, 7) || tips.AddWindowTool(nullptr, 1));
    });
}

TEST_F(PagesTest, HelpIsTheTipOfEveryControlThatCanBeSeen) {
    for (const int tab : {0, 1, 2})
        Open(
            tab,
            [&] {
                int told = 0;
                for (const auto& control : display.FrontPage()->GetControls()) {
                    if (control->GetDlgCtrlID() == -1) continue;
                    const char* help = control->GetHelp() != nullptr ? control->GetHelp() : "";
                    EXPECT_EQ(display.ToolTip(control->GetDlgCtrlID()), help);
                    if (*help != 0) ++told;
                }
                EXPECT_EQ(told, (std::array{19, 19, 4}[static_cast<size_t>(tab)]));
            });
}
