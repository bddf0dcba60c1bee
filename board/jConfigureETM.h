// jConfigureETM: the modal dialog "ETM Configuration".
//
// Here the user chooses the board file, and the width and mode of the trace port.
// The dialog works on copies and stores them in the settings record when it ends
// with OK; only "Create New Board File" stores at once. Five further settings pass
// through controls that are never shown.
//
// The board files of the board directory are found anew in each run. They stand in
// the combo box behind the fixed entries, so index i of it is a fixed entry below
// m_FixedEntryCount, and m_BoardEntries[i - m_FixedEntryCount] from there on.
//
// REQUIRES: g_Settings. The host's interfaces may be missing.
//
// Where: jConfigureETM.cpp; the catalogue in BoardCatalogue.cpp, "Create New Board File" in
// CreateBoardFile.cpp.

#pragma once

#include <string>
#include <vector>

#include "pages/jToolTip.h"
#include "toolkit/CDialog.h"

/// A board file: its full path and its title.
struct jBoardEntry {
    std::string Path;
    std::string Title;
};

class jConfigureETM : public CDialog {
public:
    /// `parent` may be null. Clears g_ConfigAccepted.
    explicit jConfigureETM(CWnd* parent);
    ~jConfigureETM() override;

    // --- The catalogue ------------------------------------------------------------

    /// Fills m_BoardEntries from the board directory, in the order in which the
    /// platform lists it. What is not a board file is passed over.
    void ScanBoardFiles();
    /// Adds an entry behind the others. Returns false if memory is short; nothing
    /// changes then.
    bool AddBoardEntry(const char* path, const char* title);
    /// Puts the fixed entries and the titles into the combo box and sets
    /// m_FixedEntryCount.
    void FillBoardList();
    /// The combo box index for the board selection of the settings record; the last
    /// fixed entry if there is none, or if it is not in the list.
    int32_t SelectionFromBoardFile() const;
    /// The board selection for a combo box index: a path, "/startup" or "/none".
    const char* BoardFileFromSelection(int32_t index) const;
    /// Sets m_Commands to what is shown of the file, and m_CommandsAreCut. Returns false,
    /// with the text empty, if it can't be opened.
    bool LoadBoardCommands(const char* path);

protected:
    void DoDataExchange(CDataExchange& exchange) override;
    bool OnInitDialog() override;
    void OnOK() override;
    void OnNotify(Notification& notification) override;

private:
    struct SettingRow {
        int32_t attribute;
        int32_t jConfigureETM::*field;
        CComboBox* jConfigureETM::*combo; // null: a check box
    };
    static const SettingRow s_Settings[7];

    void OnSelchangeBoardFile(Notification&) { ShowSelectedBoard(); }
    void OnCreateBoardFile(Notification&) { CreateBoardFile(); }
    void OnRestoreDefaults(Notification&);

    /// The board directory of the settings record, whole.
    static std::string BoardDirectory();
    void CreateToolTips();
    void FillChoiceLists();
    void StoreSettings() const;
    void ShowSelectedBoard();
    void CreateBoardFile();
    /// The entry behind a combo box index; null for a fixed one.
    const jBoardEntry* BoardEntryAt(int32_t index) const;

    CComboBox* m_PortSizeCombo = nullptr;
    int32_t m_PortSizeSel = 0;
    CComboBox* m_PortModeCombo = nullptr;
    int32_t m_PortModeSel = 0;
    CComboBox* m_BoardCombo = nullptr;
    int32_t m_BoardSel = 0;
    CEdit* m_CommandsEdit = nullptr;
    std::string m_Commands;
    bool m_CommandsAreCut = false; // too long a file: nothing can be made from what is shown
    CComboBox* m_CprtCombo = nullptr;
    int32_t m_CprtSel = 0;
    CComboBox* m_ContextIdCombo = nullptr;
    int32_t m_ContextIdSel = 0;
    int32_t m_BranchOutputCheck = 0;
    int32_t m_CycleAccurateCheck = 0;
    int32_t m_StallCheck = 0;
    std::vector<jBoardEntry> m_BoardEntries;
    int32_t m_BoardEntryCount = 0;
    jToolTip m_ToolTips;
    int32_t m_FixedEntryCount = 0;
};
