#include "board/jSaveFileDialog.h"

#include <cstring>
#include <string>

#include "toolkit/constants.h"
#include "toolkit/save_dialog.h"

namespace {

/// True for the platforms that know the longer record and the newer flags.
bool HasNewRecord() {
    const uint32_t version = GetPlatformVersion();
    const bool ntFamily = (version & 0x80000000u) == 0;
    return ntFamily && (version & 0xFF) >= 5;
}

} // namespace

jSaveFileDialog::jSaveFileDialog(CWnd* owner, const char* const* filters,
                                 const char* initialDirectory) {
    SaveFileRecord record;
    // Whoever asks adds the extension of the only filter.
    const char* const pattern = filters[0] != nullptr && filters[2] == nullptr ? filters[1] : "";
    if (std::strncmp(pattern, "*.", 2) == 0) record.extensionToCome = pattern + 2;

    std::string filterText; // its own terminator is the second NUL at the end
    for (; *filters != nullptr; ++filters) filterText.append(*filters).push_back('\0');
    record.structSize = 76;
    record.owner = owner;
    record.filter = filterText.c_str();
    record.filterIndex = static_cast<uint32_t>(FilterIndex);
    record.file = FileName;
    record.maxFile = sizeof FileName;
    record.maxFileTitle = 200;
    record.initialDirectory = initialDirectory;
    record.flags = OFN_OVERWRITEPROMPT | OFN_HIDEREADONLY;
    if (HasNewRecord()) {
        record.structSize = 88;
        record.flags |= OFN_ENABLESIZING | OFN_DONTADDTORECENT;
        record.flagsEx = OFN_EX_NOPLACESBAR;
    }
    if (!GetSaveFileName(record)) return;
    Accepted = 1;
    FilterIndex = static_cast<int32_t>(record.filterIndex);
}
