#include "toolkit/help.h"

#include <algorithm>

#include "toolkit/CPropertySheet.h"
#include "toolkit/focus.h"
#include "toolkit/labels.h"

namespace {

void AddGreyed(const CDialog& dialog, std::vector<CWnd*>& stops) {
    for (const auto& control : dialog.GetControls())
        if (control->GetHelp() != nullptr && control->GetKind() != ControlKind::Static &&
            !control->IsWindowEnabled() && control->IsWindowVisible() && IsInSight(*control))
            stops.push_back(control.get());
}

std::string NameOf(const CWnd& control) {
    std::string name =
        HasNoCaption(control)
            ? NameWithoutCaption(control,
                                 LabelsOf(static_cast<const CDialog&>(*control.GetParent())))
            : control.GetWindowText();
    std::erase(name, '&');
    return name.substr(0, name.find_last_not_of(" .:") + 1);
}

} // namespace

CWnd* NextHelp(const CDialog& dialog, CWnd* focused, const CWnd* shown) {
    std::vector<CWnd*> stops;
    if (focused != nullptr && focused->GetHelp() != nullptr) stops.push_back(focused);
    const CPropertySheet* const sheet = dialog.AsSheet();
    if (sheet != nullptr && sheet->GetActivePage() != nullptr)
        AddGreyed(*sheet->GetActivePage(), stops);
    AddGreyed(dialog, stops);
    if (stops.empty()) return nullptr;
    const auto here = std::ranges::find(stops, shown);
    return here == stops.end() || here + 1 == stops.end() ? stops.front() : *(here + 1);
}

std::string HelpText(const CWnd& control) {
    const std::string name = NameOf(control);
    return name.empty() ? control.GetHelp() : name + ": " + control.GetHelp();
}
