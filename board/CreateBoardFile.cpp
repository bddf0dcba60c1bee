// The button "Create New Board File": a new board file from what was typed.

#include <algorithm>
#include <filesystem>
#include <memory>
#include <optional>
#include <utility>

#include "board/BoardFile.h"
#include "board/jConfigureETM.h"
#include "board/jSaveFileDialog.h"
#include "frame/slots.h"
#include "platform/compare.h"
#include "platform/paths.h"
#include "platform/replace_file.h"
#include "settings/jTraceSettings.h"
#include "text/file_names.h"

namespace {

constexpr char kNoTitle[] = "Please declare title of the board initialization file.\n"
                            "The title must begin with \"Title=\" keyword.";
constexpr char kEmptyTitle[] = "Please declare non-empty title\n"
                               "of the board initialization file.";
constexpr char kTitleInUse[] = "Declared title of board initialization file\n"
                               "is already in use.\n\n"
                               "Please declare unique title\n"
                               "of the board initialization file.";
constexpr char kWrongExtension[] =
    "Board initialization files must have file extensions \".mac\".\n\n"
    "Otherwise they will not be recognized.";

std::string WrongDirectory(const std::string& directory) {
    return "Board initialization files must be saved in directory\n\"" + directory +
           "\".\n\nOtherwise they will not be recognized.";
}

std::string CannotCreate(const std::string& path) {
    return "Error creating board initialization file\n\"" + path + "\".";
}

/// Lets the user choose a file; nothing if the user does not confirm.
std::optional<std::string> AskFileName(CWnd& owner, const std::string& directory) {
    static constexpr const char* filters[] = {"Board init files (*.MAC)", "*.mac", nullptr};
    const auto dialog = std::make_unique<jSaveFileDialog>(&owner, filters, directory.c_str());
    if (dialog->Accepted == 0) return std::nullopt;
    return WithDefaultExt(dialog->FileName, "mac");
}

/// The form in which two paths are compared.
std::string WithOneSeparator(std::string path) {
    std::replace_if(path.begin(), path.end(), IsSeparator, kSeparator);
    return path;
}

/// Whether `chosen` is the board directory, however the two are spelt. A board directory
/// that ends in a separator is none that a file could be chosen in.
bool IsBoardDirectory(std::string chosen, std::string directory) {
    chosen = WithOneSeparator(std::move(chosen));
    directory = WithOneSeparator(std::move(directory));
    if (chosen == directory) return true;
    if (directory.ends_with(kSeparator)) return false;
    try {
        std::error_code unknown;
        const bool same = std::filesystem::equivalent(chosen, directory, unknown);
        if (!unknown) return same;
    } catch (const std::exception&) { // a name that can't be asked about
    }
    return CompareNoCase(chosen.c_str(), directory.c_str()) == 0;
}

} // namespace

void jConfigureETM::CreateBoardFile() {
    const auto refuse = [this](const std::string& text) {
        MessageBox(text.c_str(), nullptr, MB_OK | MB_ICONHAND);
    };
    UpdateData(true);
    StoreSettings();

    std::string title;
    if (!FindTitle(m_Commands.c_str(), title)) return refuse(kNoTitle);
    if (title.empty()) return refuse(kEmptyTitle);
    for (const jBoardEntry& entry : m_BoardEntries)
        if (CompareNoCase(entry.Title.c_str(), title.c_str()) == 0) return refuse(kTitleInUse);

    const std::string directory = BoardDirectory();
    const std::optional<std::string> chosen = AskFileName(*this, directory);
    if (!chosen) return;

    const PathParts parts = SplitPath(*chosen);
    const std::string name = parts.Name + parts.Extension;
    if (!IsBoardDirectory(DirectoryOf(*chosen), directory))
        return refuse(WrongDirectory(directory));
    if (CompareNoCase(parts.Extension.c_str(), ".mac") != 0) return refuse(kWrongExtension);

    // Put together from the board directory itself: whatever the chosen path means to the
    // platform, nothing outside is written.
    const std::string path = JoinPath(directory, name);
    const std::string bytes =
        ComposeBoardFile(title, m_Commands.c_str(), m_PortSizeSel, m_PortModeSel);
    if (!CanBeBoardFile(directory, name) || !ReplaceFileContent(path, bytes))
        return refuse(CannotCreate(path));

    if (!AddBoardEntry(path.c_str(), title.c_str())) return;
    m_BoardSel = m_FixedEntryCount + m_BoardEntryCount - 1;
    m_BoardCombo->AddString(title);
    g_Settings->SetTextAttribute(TA_BOARD_FILE, path.c_str());
    UpdateData(false);
}
