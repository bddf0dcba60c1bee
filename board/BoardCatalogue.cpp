// The catalogue of the dialog: which board files there are, and which is selected.

#include <new>
#include <utility>

#include "board/BoardFile.h"
#include "board/jConfigureETM.h"
#include "frame/interfaces/IOrnXTraceClient.h"
#include "frame/slots.h"
#include "platform/compare.h"
#include "platform/directory.h"
#include "platform/paths.h"
#include "settings/BoardSelection.h"
#include "settings/jTraceSettings.h"

namespace {

constexpr char kGenericBoard[] = "Generic board - no trace init file";
constexpr char kStartupMacro[] = "Call debugger startup macro functions";

bool HostHasStartupMacro() {
    return g_XTraceClient != nullptr &&
           g_XTraceClient->GetInterfaceVersion() >= ORN_VERSION_WITH_HAS_COMMAND &&
           g_XTraceClient->HasCommand("ExecuteCmd") != 0;
}

} // namespace

std::string jConfigureETM::BoardDirectory() {
    char start[2]; // asked for so that an empty one is derived
    g_Settings->GetTextAttribute(TA_BOARD_DIRECTORY, start, sizeof start);
    return g_Settings->BoardDirectory;
}

void jConfigureETM::ScanBoardFiles() {
    const std::string directory = BoardDirectory();
    Directory files(directory);
    DirectoryEntry file;
    std::string title, path = JoinPath(directory, "");
    const size_t begin = path.size(); // of the name in it
    while (files.Next(file)) {
        if (!file.IsFile || !CanBeBoardFile(directory, file.Name)) continue;
        InputFile opened(files, file.Name);
        if (!ReadBoardTitle(opened, title)) continue;
        path.replace(begin, std::string::npos, file.Name);
        AddBoardEntry(path.c_str(), title.c_str());
    }
}

bool jConfigureETM::AddBoardEntry(const char* path, const char* title) {
    try {
        m_BoardEntries.push_back({path, title});
    } catch (const std::bad_alloc&) {
        return false;
    }
    ++m_BoardEntryCount;
    return true;
}

void jConfigureETM::FillBoardList() {
    m_BoardCombo->ResetContent();
    m_BoardCombo->AddString(kGenericBoard);
    m_FixedEntryCount = 1;
    if (HostHasStartupMacro()) {
        m_BoardCombo->AddString(kStartupMacro);
        m_FixedEntryCount = 2;
    }
    for (const jBoardEntry& entry : m_BoardEntries) m_BoardCombo->AddString(entry.Title);
}

int32_t jConfigureETM::SelectionFromBoardFile() const {
    const int32_t byDefault = m_FixedEntryCount - 1;
    const char* const boardFile = g_Settings->Working.BoardFile.c_str();
    for (int32_t i = 0; i < m_BoardEntryCount; ++i)
        if (CompareNoCase(m_BoardEntries[i].Path.c_str(), boardFile) == 0)
            return m_FixedEntryCount + i;
    const BoardSelection kind = KindOfBoard(boardFile);
    if (kind == BoardSelection::None) return 0;
    if (kind == BoardSelection::Startup && m_FixedEntryCount > 1) return 1;
    return byDefault;
}

const jBoardEntry* jConfigureETM::BoardEntryAt(int32_t index) const {
    const int32_t entry = index - m_FixedEntryCount;
    return entry >= 0 && entry < m_BoardEntryCount ? &m_BoardEntries[entry] : nullptr;
}

const char* jConfigureETM::BoardFileFromSelection(int32_t index) const {
    if (const jBoardEntry* entry = BoardEntryAt(index)) return entry->Path.c_str();
    return index != 0 ? ORN_BOARD_STARTUP : ORN_BOARD_NONE;
}

bool jConfigureETM::LoadBoardCommands(const char* path) {
    InputFile file(path);
    BoardCommands commands = ReadBoardCommands(file);
    m_Commands = std::move(commands.Text);
    m_CommandsAreCut = commands.IsCut;
    return file.IsOpen();
}
