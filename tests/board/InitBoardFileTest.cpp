// The support component: what becomes of the board selection.

#include "frame/interfaces/IOrnKVETMSupp.h"
#include "tests/board/BoardTest.h"

namespace {

class InitBoardFile : public BoardTest {
protected:
    /// Stores a selection in the host, from where Open reads it, and in the record.
    void SetSelection(const std::string& text) {
        host.boardFile = text;
        settings.SetTextAttribute(TA_BOARD_FILE, text.c_str());
    }

    /// Calls InitBoardFile and tells all that came of it in one line.
    std::string Call() {
        char value[260] = "unset", error[260];
        int32_t mode = 99;
        const bool result = supp->InitBoardFile(Path().c_str(), value, 260, &mode);
        supp->GetLastError(error, sizeof error);
        return (result ? "true " : "false ") + std::to_string(mode) + " [" + value + "] " + error;
    }

    IOrnKVETMSupp* supp = static_cast<IOrnKVETMSupp*>(control->GetInterface("IOrnKVETMSupp"));
};

} // namespace

TEST_F(InitBoardFile, SettlesTheSelectionOrAsks) {
    const std::string file = Write("plain.mac", "not even a board file");
    const std::string gone = PathOf("gone.mac");
    const struct {
        std::string selection, answer, outcome; // answer "-": no dialog comes
    } rows[] = {
        {"---", "", "false -1 [] Cancelled by user"},
        {"---", kGeneric, "true 0 [/none] "},
        {"---", "-", "false -1 [/none] "}, // the selection in force was lost
        {"---", "", "false -1 [/none] Cancelled by user"},
        {"", "-", "true 0 [/none] "},
        {"/StartUp", "-", "true 1 [/startup] "},
        {file, "-", "true 2 [" + file + "] "},
        {gone, "", "true 2 [" + gone + "] "},  // cancelled, and taken all the same
        {Path(), kGeneric, "true 0 [/none] "}, // no file
    };
    for (const auto& row : rows) {
        SetSelection(row.selection);
        display.ClearLog();
        if (row.answer != "-")
            display.OnNextDialog([&] {
                display.OnNextDialog([&] {
                    if (!row.answer.empty()) display.SelectText(1078, row.answer);
                    display.Click(row.answer.empty() ? IDCANCEL : IDOK);
                });
                display.Advance(600); // the tick that brings up the dialog over the sheet
            });
        EXPECT_EQ(Call(), row.outcome) << row.selection;
        EXPECT_EQ(display.Log().empty(), row.answer == "-") << row.selection;
    }
}

TEST_F(InitBoardFile, AFailedOpenLeavesItsTextAndTheQuestion) {
    const std::string gone = PathOf("gone.mac");
    host.values.erase(ORN_VALUE_CONTROL); // the target can't be read
    SetSelection(gone);
    EXPECT_EQ(Call(), "false 2 [" + gone + "] Cannot read ETM/Trace settings from target");
    SetSelection("---");
    EXPECT_EQ(Call(), "false -1 [" + gone + "] ");
    EXPECT_EQ(Call(), "false -1 [" + gone + "] Cancelled by user");
    EXPECT_EQ(g_BoardQueryPending, 1); // for the next sheet
}

TEST_F(InitBoardFile, BuffersAndDirectoryAreTheCallersChoice) {
    SetSelection("/startup");
    EXPECT_TRUE(supp->InitBoardFile(nullptr, nullptr, 0, nullptr));
    char value[5] = "keep";
    EXPECT_TRUE(supp->InitBoardFile("/boards", value, 0, nullptr));
    EXPECT_STREQ(value, "keep");
    EXPECT_EQ(settings.BoardDirectory, "/boards");
    EXPECT_TRUE(supp->InitBoardFile("", value, sizeof value, nullptr));
    EXPECT_STREQ(value, "/sta");
    supp->GetLastError(value, -1);
    EXPECT_NE(settings.BoardDirectory, "/boards"); // derived anew

    delete std::exchange(g_Settings, nullptr);
    EXPECT_EQ(Call(), "false -1 [/startup] Module is not initialized properly");
}
