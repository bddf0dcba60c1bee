#include <QDir>
#include <QFile>
#include <QFileDialog>
#include <QFileInfo>
#include <QHeaderView>
#include <QListView>
#include <QTreeView>
#include <algorithm>
#include <cstring>

#include "toolkit/constants.h"
#include "toolkit/qt/boxes.h"
#include "toolkit/qt/on_screen.h"
#include "toolkit/qt/qt_text.h"
#include "toolkit/qt/readable.h"

namespace qt {

namespace {

constexpr uint32_t kSizeWithFlagsEx = 88;

/// One filter as Qt wants it: the description with the patterns in parentheses.
QString Filter(const QString& description, QString patterns) {
    patterns.replace(u';', u' ');
    const QString inside = '(' + patterns + ')';
    if (description.endsWith(inside, Qt::CaseInsensitive)) return description;
    return description + ' ' + inside;
}

/// The filters of a record: pairs of texts, each with its NUL.
QStringList Filters(const char* pairs) {
    QStringList filters;
    const char* text = pairs;
    while (text != nullptr && *text != '\0') {
        const QString description = FromModel(text);
        text += std::strlen(text) + 1;
        filters << Filter(description, FromModel(text));
        if (*text != '\0') text += std::strlen(text) + 1;
    }
    return filters;
}

/// Copies `text` if it fits with its NUL.
bool CopyIfItFits(char* buffer, uint32_t size, const QByteArray& text) {
    if (buffer == nullptr || static_cast<size_t>(text.size()) >= size) return false;
    std::memcpy(buffer, text.constData(), static_cast<size_t>(text.size()) + 1);
    return true;
}

void SetUp(QFileDialog& dialog, const SaveFileRecord& record, const QStringList& filters) {
    dialog.setOption(QFileDialog::DontUseNativeDialog);
    dialog.setOption(QFileDialog::DontConfirmOverwrite, (record.flags & OFN_OVERWRITEPROMPT) == 0);
    dialog.setAcceptMode(QFileDialog::AcceptSave);
    dialog.setFileMode(QFileDialog::AnyFile);
    if (record.title != nullptr) dialog.setWindowTitle(FromModel(record.title));
    // With the suffix the dialog asks about the right file.
    const char* const extension =
        record.defaultExtension != nullptr ? record.defaultExtension : record.extensionToCome;
    if (extension != nullptr) dialog.setDefaultSuffix(FromModel(extension));
    if (!filters.isEmpty()) {
        dialog.setNameFilters(filters);
        dialog.selectNameFilter(
            filters.value(static_cast<qsizetype>(record.filterIndex) - 1, filters.first()));
    }
    const QString directory =
        record.initialDirectory != nullptr ? QFile::decodeName(record.initialDirectory) : QString();
    if (!directory.isEmpty() && QFileInfo(directory).isDir()) dialog.setDirectory(directory);
    if (record.file != nullptr && record.maxFile > 0 && *record.file != '\0')
        dialog.selectFile(QFile::decodeName(record.file));
    const bool placesBar =
        record.structSize < kSizeWithFlagsEx || (record.flagsEx & OFN_EX_NOPLACESBAR) == 0;
    if (auto* places = dialog.findChild<QListView*>("sidebar")) places->setVisible(placesBar);
}

/// While one lives, the columns of a dialog's list are as wide as what stands in them. Qt keeps
/// what it finds at the end for all programs of the person's.
class ColumnsFitted {
public:
    explicit ColumnsFitted(const QFileDialog& dialog) {
        if (const auto* list = dialog.findChild<QTreeView*>("treeView")) m_Header = list->header();
        if (m_Header == nullptr) return;
        m_Before = m_Header->saveState();
        m_Header->setStretchLastSection(false);
        m_Header->setSectionResizeMode(QHeaderView::ResizeToContents);
    }
    ~ColumnsFitted() {
        if (m_Header != nullptr) m_Header->restoreState(m_Before);
    }
    ColumnsFitted(const ColumnsFitted&) = delete;
    ColumnsFitted& operator=(const ColumnsFitted&) = delete;

private:
    QHeaderView* m_Header = nullptr;
    QByteArray m_Before;
};

/// As large as all columns of usual files need, if the screen has that room.
void FitScreen(QFileDialog& dialog) {
    auto* places = dialog.findChild<QListView*>("sidebar");
    FitFont(dialog, [&] {
        if (places != nullptr)
            places->setMinimumWidth(
                std::min(places->sizeHintForColumn(0) + 2 * places->frameWidth(),
                         RoomFor(dialog).width() / 4));
        return dialog.minimumSizeHint();
    });
    const QFontMetrics metrics = dialog.fontMetrics();
    const QSize wanted(metrics.averageCharWidth() * 130, metrics.height() * 28);
    dialog.resize(wanted.expandedTo(dialog.sizeHint()).boundedTo(RoomFor(dialog)));
}

} // namespace

bool ShowSaveDialog(ModalStack& stack, QWidget* owner, SaveFileRecord& record) {
    const QStringList filters = Filters(record.filter);
    QFileDialog dialog(owner);
    SetUp(dialog, record, filters);
    const ColumnsFitted columns(dialog);
    FitScreen(dialog);
    MakeReadable(dialog);
    const ModalRun run(stack, dialog);
    if (dialog.exec() != QDialog::Accepted) return false;

    const QString path = dialog.selectedFiles().value(0);
    if (path.isEmpty()) return false;
    if (!CopyIfItFits(record.file, record.maxFile, QFile::encodeName(path))) {
        ShowMessageBox(stack, owner, "The path is too long:\n" + path, dialog.windowTitle(),
                       MB_OK | MB_ICONHAND);
        return false;
    }
    CopyIfItFits(record.fileTitle, record.maxFileTitle,
                 QFile::encodeName(QFileInfo(path).fileName()));
    const qsizetype chosen = filters.indexOf(dialog.selectedNameFilter());
    if (chosen >= 0) record.filterIndex = static_cast<uint32_t>(chosen) + 1;
    return true;
}

} // namespace qt
