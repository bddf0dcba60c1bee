// The display's side: its entry, and the toolkit's functions as calls into the module.
//
// That nothing is missing here the linker says: the library has no undefined symbols.

#include <cstring>

#include "toolkit/library/display_library.h"
#include "toolkit/qt/QtApplication.h"

namespace {

const display_library::Toolkit* g_Toolkit = nullptr;

} // namespace

extern "C" __attribute__((visibility("default"))) display_library::Entry KVETMDisplay;

Display* KVETMDisplay(const char* identity, const display_library::Toolkit* toolkit) {
    if (std::strcmp(identity, display_library::kBuildIdentity) != 0) return nullptr;
    g_Toolkit = toolkit;
    qt::QtApplication::NoteForked(toolkit->forkedApplication());
    return MakeDisplay().release();
}

CWinApp* AfxGetApp() {
    return g_Toolkit->afxGetApp();
}

void CWinApp::CancelAll() {
    (this->*g_Toolkit->cancelAll)();
}

CWnd* CDialog::GetDlgItem(int id) const {
    return (this->*g_Toolkit->getDlgItem)(id);
}

std::vector<CButton*> CDialog::GetRadioGroup(const CWnd& control) const {
    return (this->*g_Toolkit->getRadioGroup)(control);
}

bool IsInSight(const CWnd& control) {
    return g_Toolkit->isInSight(control);
}

CWnd* NextHelp(const CDialog& dialog, CWnd* focused, const CWnd* shown) {
    return g_Toolkit->nextHelp(dialog, focused, shown);
}

std::string HelpText(const CWnd& control) {
    return g_Toolkit->helpText(control);
}

const CWnd* GroupAround(const CWnd& control) {
    return g_Toolkit->groupAround(control);
}

std::vector<Label> LabelsOf(const CDialog& dialog) {
    return g_Toolkit->labelsOf(dialog);
}

void ReportException(const char* what) noexcept {
    g_Toolkit->reportException(what);
}

namespace input {

void Click(CWnd& button) {
    g_Toolkit->click(button);
}

void Type(CWnd& edit, std::string_view text) {
    g_Toolkit->type(edit, text);
}

void Select(CWnd& list, int index) {
    g_Toolkit->select(list, index);
}

void Slide(CSliderCtrl& slider, int position) {
    g_Toolkit->slide(slider, position);
}

void Paint(CSliderCtrl& slider) {
    g_Toolkit->paint(slider);
}

void Release(CSliderCtrl& slider) {
    g_Toolkit->release(slider);
}

void Close(CDialog& dialog) {
    g_Toolkit->close(dialog);
}

void Tick(CWnd& window, unsigned id) {
    g_Toolkit->tick(window, id);
}

} // namespace input
