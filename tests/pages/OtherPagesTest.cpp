// The two pages without a tab, and the tool tips.

#include "pages/jDWTPage.h"
#include "pages/jToolTip.h"
#include "tests/pages/PagesTest.h"

using ::testing::ElementsAre;

namespace {

class OtherPages : public PagesTest {};

TEST_F(OtherPages, TheDwtPageOffersTheComparatorsOfItsModeAndRefusesToBeLeft) {
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
    EXPECT_THAT(display.Boxes(), ElementsAre("[Error] Simulation of error in DWT triggers"));
}

TEST_F(OtherPages, AToolTipNeedsAControlAndAText) {
    Open(
        0,
        [&] {
            CWnd& edit = display.Control(1077);
            CEdit orphan;
            jToolTip tips;
            EXPECT_FALSE(tips.AddWindowTool(&edit, 3)) << "not created yet";
            tips.Create(display.Front());
            tips.Activate(true);
            EXPECT_TRUE(tips.AddWindowTool(&edit, 3));
            EXPECT_TRUE(tips.AddWindowTool(&orphan, 6));
            EXPECT_FALSE(tips.AddWindowTool(&edit, 7));
            EXPECT_FALSE(tips.AddWindowTool(nullptr, 1));
        });
}

} // namespace
