#include "toolkit/labels.h"

namespace {

constexpr int kClosedList = 14; // of a list the template has the opened height

int Bottom(const ControlTemplate& row) {
    return row.y + (row.kind == ControlKind::ComboBox ? kClosedList : row.height);
}

bool Contains(const ControlTemplate& group, const ControlTemplate& row) {
    return row.x >= group.x && row.x + row.width <= group.x + group.width && row.y >= group.y &&
           Bottom(row) <= group.y + group.height;
}

bool IsBeside(const ControlTemplate& text, const ControlTemplate& row) {
    return text.x < row.x && text.y < Bottom(row) && row.y < Bottom(text);
}

bool IsAbove(const ControlTemplate& text, const ControlTemplate& row) {
    return Bottom(text) <= row.y && text.x < row.x + row.width && row.x < text.x + text.width;
}

} // namespace

const CWnd* GroupAround(const CWnd& control) {
    const auto& dialog = static_cast<const CDialog&>(*control.GetParent());
    for (const auto& group : dialog.GetControls())
        if (group->GetKind() == ControlKind::GroupBox && group.get() != &control &&
            Contains(*group->GetTemplate(), *control.GetTemplate()))
            return group.get();
    return nullptr;
}

std::vector<Label> LabelsOf(const CDialog& dialog) {
    std::vector<Label> labels;
    const auto& controls = dialog.GetControls();
    const auto isFree = [&](const CWnd& text, const CWnd& control) {
        return text.GetKind() == ControlKind::Static && GroupAround(text) == GroupAround(control) &&
               std::ranges::find(labels, &text, &Label::first) == labels.end();
    };
    for (size_t i = 1; i < controls.size(); ++i) {
        const CWnd &text = *controls[i - 1], &control = *controls[i];
        const ControlTemplate &above = *text.GetTemplate(), &row = *control.GetTemplate();
        if (HasNoCaption(control) && isFree(text, control) &&
            (IsBeside(above, row) || IsAbove(above, row)))
            labels.emplace_back(&text, &control);
    }
    for (const auto& control : controls) {
        if (!HasNoCaption(*control) ||
            std::ranges::find(labels, control.get(), &Label::second) != labels.end())
            continue;
        const CWnd* nearest = nullptr;
        for (const auto& text : controls)
            if (isFree(*text, *control) &&
                IsBeside(*text->GetTemplate(), *control->GetTemplate()) &&
                (nearest == nullptr || text->GetTemplate()->x > nearest->GetTemplate()->x))
                nearest = text.get();
        if (nearest != nullptr) labels.emplace_back(nearest, control.get());
    }
    return labels;
}
