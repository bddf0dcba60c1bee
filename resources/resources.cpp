// Finds dialogs by number.

#include "resources/dialog_1001.h"
#include "resources/dialog_1002.h"
#include "resources/dialog_1003.h"
#include "resources/dialog_106.h"
#include "resources/dialog_107.h"
#include "resources/dialog_108.h"
#include "toolkit/template.h"

namespace {

constexpr const DialogTemplate* dialogs[] = {
    &dialog_106::dialog,  &dialog_107::dialog,  &dialog_108::dialog,
    &dialog_1001::dialog, &dialog_1002::dialog, &dialog_1003::dialog,
};

} // namespace

const DialogTemplate* FindDialogTemplate(int id) {
    for (const DialogTemplate* dialog : dialogs)
        if (dialog->id == id) return dialog;
    return nullptr;
}
