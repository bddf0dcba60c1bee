#include "toolkit/help.h"

#include <algorithm>
#include <string_view>

#include "toolkit/CPropertySheet.h"
#include "toolkit/focus.h"

namespace {

void AddGreyed(const CDialog& dialog, std::vector<CWnd*>& stops) {
    for (const auto& control : dialog.GetControls())
        if (control->GetHelp() != nullptr && control->GetKind() != ControlKind::Static &&
            !control->IsWindowEnabled() && control->IsWindowVisible() && IsInSight(*control))
            stops.push_back(control.get());
}

/// The name of a control that has no text of its own: its template's, or that of its label.
std::string NameOfSilent(const CWnd& control) {
    if (control.GetTemplate()->accessibleName != nullptr)
        return control.GetTemplate()->accessibleName;
    const auto& all = static_cast<const CDialog&>(*control.GetParent()).GetControls();
    const auto here = std::ranges::find(all, &control, &std::unique_ptr<CWnd>::get);
    const bool labelled =
        here != all.begin() && here != all.end() && here[-1]->GetKind() == ControlKind::Static;
    return labelled ? here[-1]->GetWindowText() : std::string();
}

std::string NameOf(const CWnd& control) {
    const ControlKind kind = control.GetKind();
    const bool silent =
        kind == ControlKind::Edit || kind == ControlKind::ComboBox || kind == ControlKind::Slider;
    std::string name = silent ? NameOfSilent(control) : control.GetWindowText();
    std::erase(name, '&');
    while (!name.empty() && std::string_view(" .:").find(name.back()) != std::string_view::npos)
        name.pop_back();
    return name;
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
