// The string table: the tool tips of the ETM Configuration dialog.

#include "toolkit/template.h"

namespace {

struct StringRow {
    unsigned id;
    const char* text;
};

constexpr StringRow stringTable[] = {
    {1, "Displays title and general commands from selected board initialization file. Trace "
        "related commands are not shown, even if present in the file.\n\n"
        "To create new board initialization file type here board title and all needed general "
        "commands and then save the commands by pressing on \"Create New Board File\" button. "
        "Trace related commands will be added automatically.\n"
        "The board title will appear in \"Board File\" combo box."},
    {2, "Shows title of selected board initialization file"},
    {3, "Allows selection of trace port width, in bits"},
    {4, "Allows selection of trace port operating mode"},
    {5, "Allows creating new board initialization file. The file will contain board title and "
        "commands typed in \"Board file commands\" edit box"},
    {6, "Allows restoring default settings"},
};

} // namespace

const char* FindString(unsigned id) {
    for (const StringRow& row : stringTable)
        if (row.id == id) return row.text;
    return nullptr;
}
