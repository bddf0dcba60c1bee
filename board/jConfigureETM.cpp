#include "board/jConfigureETM.h"

#include "frame/slots.h"
#include "settings/jTraceSettings.h"
#include "toolkit/data_exchange.h"

namespace {

constexpr char kStartupText[] = "Debugger startup macro will be called\r\n"
                                "at [traceenable] label to enable trace pins\r\n"
                                "and at [tracedisable] label to disable trace pins.";

/// The tool tips: string number and control.
constexpr struct {
    unsigned stringId;
    int control;
} kTips[] = {{1, 1080}, {2, 1078}, {3, 1065}, {4, 1068}, {5, 1082}, {6, 1056}};

constexpr int kTipWidth = 250; // pixels

} // namespace

// Each setting with its field and, for the choice lists, the combo box.
constexpr jConfigureETM::SettingRow jConfigureETM::s_Settings[7] = {
    {TA_PORT_SIZE, &jConfigureETM::m_PortSizeSel, &jConfigureETM::m_PortSizeCombo},
    {TA_PORT_MODE, &jConfigureETM::m_PortModeSel, &jConfigureETM::m_PortModeCombo},
    {TA_CPRT_MODE, &jConfigureETM::m_CprtSel, &jConfigureETM::m_CprtCombo},
    {TA_CONTEXT_ID_SIZE, &jConfigureETM::m_ContextIdSel, &jConfigureETM::m_ContextIdCombo},
    {TA_STALL_PROCESSOR, &jConfigureETM::m_StallCheck, nullptr},
    {TA_CYCLE_ACCURATE, &jConfigureETM::m_CycleAccurateCheck, nullptr},
    {TA_BRANCH_OUTPUT, &jConfigureETM::m_BranchOutputCheck, nullptr},
};

void jConfigureETM::OnNotify(Notification& notification) {
    static constexpr MessageRow<jConfigureETM> rows[] = {
        {1078, Event::SelectionChanged, &jConfigureETM::OnSelchangeBoardFile}, // Board File
        {1082, Event::Clicked, &jConfigureETM::OnCreateBoardFile}, // Create New Board File
        {1056, Event::Clicked, &jConfigureETM::OnRestoreDefaults}, // Restore Defaults
    };
    Dispatch(*this, rows, notification);
}

jConfigureETM::jConfigureETM(CWnd* parent) : CDialog(1001, parent) {
    g_ConfigAccepted = 0;
}

jConfigureETM::~jConfigureETM() = default;

void jConfigureETM::DoDataExchange(CDataExchange& exchange) {
    DDX_Control(exchange, 1065, m_PortSizeCombo);
    DDX_CBIndex(exchange, 1065, m_PortSizeSel); // Trace Port Size
    DDX_Control(exchange, 1068, m_PortModeCombo);
    DDX_CBIndex(exchange, 1068, m_PortModeSel); // Trace Port Mode
    DDX_Control(exchange, 1078, m_BoardCombo);
    DDX_CBIndex(exchange, 1078, m_BoardSel); // Board File
    DDX_Control(exchange, 1080, m_CommandsEdit);
    DDX_Text(exchange, 1080, m_Commands); // Board File Commands
    DDX_Control(exchange, 1070, m_CprtCombo);
    DDX_CBIndex(exchange, 1070, m_CprtSel); // CPRT mode, hidden
    DDX_Control(exchange, 1072, m_ContextIdCombo);
    DDX_CBIndex(exchange, 1072, m_ContextIdSel);     // Context ID size, hidden
    DDX_Check(exchange, 1066, m_BranchOutputCheck);  // Output All Branch Addresses, hidden
    DDX_Check(exchange, 1055, m_CycleAccurateCheck); // Cycle Accurate Tracing, hidden
    DDX_Check(exchange, 1060, m_StallCheck);         // Stall Processor, hidden
}

bool jConfigureETM::OnInitDialog() {
    CDialog::OnInitDialog();
    CreateToolTips();
    FillChoiceLists();
    for (const SettingRow& row : s_Settings)
        this->*row.field = g_Settings->GetAttribute(row.attribute);
    ScanBoardFiles();
    FillBoardList();
    m_BoardSel = SelectionFromBoardFile();
    m_Commands.clear();
    UpdateData(false);
    ShowSelectedBoard();
    return true;
}

void jConfigureETM::CreateToolTips() {
    if (m_ToolTips.IsCreated()) return;
    m_ToolTips.Create(this);
    m_ToolTips.SetMaxTipWidth(kTipWidth);
    m_ToolTips.Activate(true);
    for (const auto& tip : kTips) m_ToolTips.AddWindowTool(GetDlgItem(tip.control), tip.stringId);
    m_ToolTips.SetTopMost();
}

void jConfigureETM::FillChoiceLists() {
    for (const SettingRow& row : s_Settings) {
        if (row.combo == nullptr) continue;
        CComboBox* combo = this->*row.combo;
        combo->ResetContent();
        const int32_t count = g_Settings->GetChoiceCount(row.attribute);
        for (int32_t index = 0; index < count; ++index) {
            char text[256];
            uint32_t value;
            if (g_Settings->GetChoice(row.attribute, index, text, sizeof text, value))
                combo->AddString(text);
        }
        const bool offered = row.attribute == TA_PORT_SIZE || row.attribute == TA_PORT_MODE;
        if (offered && count < 2) combo->EnableWindow(false);
    }
}

void jConfigureETM::ShowSelectedBoard() {
    UpdateData(true);
    const bool startup = m_FixedEntryCount > 1 && m_BoardSel == 1;
    m_Commands.clear();
    m_CommandsAreCut = false;
    if (startup)
        m_Commands = kStartupText;
    else if (const jBoardEntry* entry = BoardEntryAt(m_BoardSel))
        LoadBoardCommands(entry->Path.c_str());
    GetDlgItem(1082)->EnableWindow(!startup && !m_CommandsAreCut);
    GetDlgItem(1080)->EnableWindow(!startup);
    m_CommandsEdit->SetReadOnly(m_CommandsAreCut);
    UpdateData(false);
}

void jConfigureETM::OnRestoreDefaults(Notification&) {
    for (const SettingRow& row : s_Settings) {
        jTraceAttribute attribute;
        if (g_Settings->GetAttributeInfo(row.attribute, attribute))
            this->*row.field = attribute.Default;
    }
    m_BoardSel = m_FixedEntryCount - 1;
    m_Commands.clear();
    UpdateData(false);
    ShowSelectedBoard();
}

void jConfigureETM::StoreSettings() const {
    for (const SettingRow& row : s_Settings)
        g_Settings->SetAttribute(row.attribute, this->*row.field);
}

void jConfigureETM::OnOK() {
    UpdateData(true);
    StoreSettings();
    g_Settings->SetTextAttribute(TA_BOARD_FILE, BoardFileFromSelection(m_BoardSel));
    g_ConfigAccepted = 1;
    CDialog::OnOK();
}
