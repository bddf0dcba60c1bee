// The order in which a sheet calls its pages.

#include "toolkit/CPropertySheet.h"

#include "tests/support/Session.h"

using ::testing::ElementsAre;
using ::testing::IsEmpty;

namespace {

/// A page that notes what it is asked, and refuses what it is told to.
struct NotingPage : CPropertyPage {
    NotingPage(int number, std::vector<std::string>& to) : CPropertyPage(number), notes(to) {}

    bool OnInitDialog() override { return Note("init"); }
    bool OnSetActive() override { return Note("set-active"); }
    bool OnKillActive() override { return Note("kill-active") && !refuseToLeave; }
    bool OnApply() override { return Note("apply") && !refuseToApply; }
    void OnCancel() override { Note("cancel"); }
    void OnDestroy() override { Note("destroy"); }
    bool Note(const char* what) {
        notes.push_back(std::to_string(GetDlgCtrlID()) + " " + what);
        return true;
    }

    std::vector<std::string>& notes;
    bool refuseToLeave = false, refuseToApply = false;
};

class PropertySheet : public Session {
protected:
    /// Runs a sheet of three pages; returns its result.
    int Run(HeadlessDisplay::Script script) {
        CPropertySheet sheet("Sheet", nullptr, 0);
        for (NotingPage* page : {&first, &second, &third}) sheet.AddPage(page);
        display.OnNextDialog(std::move(script));
        return sheet.DoModal();
    }
    std::vector<std::string> TakeNotes() { return std::exchange(notes, {}); }

    std::vector<std::string> notes;
    NotingPage first{107, notes}, second{108, notes}, third{106, notes};
};

TEST_F(PropertySheet, MakesAPageAtItsFirstTimeOnlyAndEndsAllOfThem) {
    for (const bool ok : {true, false}) {
        const int result = Run([&] {
            EXPECT_THAT(TakeNotes(), ElementsAre("107 init", "107 set-active"));
            display.Tab(2);
            EXPECT_THAT(TakeNotes(), ElementsAre("107 kill-active", "106 init", "106 set-active"));
            display.Tab(0);
            EXPECT_THAT(TakeNotes(), ElementsAre("106 kill-active", "107 set-active"));
            display.Tab(2);
            EXPECT_THAT(TakeNotes(), ElementsAre("107 kill-active", "106 set-active"));
            display.Tab(2);
            EXPECT_THAT(TakeNotes(), IsEmpty());
            ok ? display.Click(IDOK) : display.CloseFrame();
        });
        EXPECT_EQ(result, ok ? IDOK : IDCANCEL);
        std::vector<std::string> ends = {"107 cancel", "106 cancel"};
        if (ok) ends = {"106 kill-active", "107 apply", "106 apply"};
        ends.insert(ends.end(), {"107 destroy", "106 destroy"});
        EXPECT_EQ(TakeNotes(), ends);
    }
}

TEST_F(PropertySheet, ApplyCallsThePagesThatExistOnceAnyPageIsMarked) {
    Run([&] {
        display.Tab(1);
        first.SetModified(true);
        second.SetModified(true);
        first.SetModified(false);
        EXPECT_TRUE(display.Enabled(IDC_APPLY_NOW));
        second.SetModified(false);
        EXPECT_FALSE(display.Enabled(IDC_APPLY_NOW));
        second.SetModified(true);
        TakeNotes();
        display.Click(IDC_APPLY_NOW);
        EXPECT_THAT(TakeNotes(),
                    ElementsAre("108 kill-active", "107 apply", "108 apply", "108 set-active"));
        EXPECT_FALSE(display.Front()->HasEnded());
    });
}

TEST_F(PropertySheet, ARefusalKeepsTheTabAndTheSheet) {
    const int result = Run([&] {
        first.refuseToLeave = true;
        TakeNotes();
        display.Tab(1);
        EXPECT_EQ(display.Selection(IDC_TAB_CONTROL), 0);
        EXPECT_EQ(display.FrontPage(), &first);
        display.Click(IDOK);
        EXPECT_THAT(TakeNotes(), ElementsAre("107 kill-active", "107 kill-active"));

        first.refuseToLeave = false;
        display.Tab(1);
        first.refuseToApply = true;
        second.SetModified(true);
        TakeNotes();
        for (const int button : {IDOK, IDC_APPLY_NOW}) {
            display.Click(button); // no page behind the refusing one is called
            EXPECT_THAT(TakeNotes(), ElementsAre("108 kill-active", "107 apply", "108 set-active"));
        }
        EXPECT_FALSE(display.Front()->HasEnded());
        display.Click(IDCANCEL);
        EXPECT_THAT(TakeNotes(), ElementsAre("107 cancel", "108 cancel"));
        display.Click(IDOK); // the sheet has ended
        EXPECT_THAT(TakeNotes(), IsEmpty());
    });
    EXPECT_EQ(result, IDCANCEL);
}

} // namespace
