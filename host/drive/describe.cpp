#include "host/drive/describe.h"

#include "host/support/words.h"

namespace etmhost {

namespace {

std::string WithoutNot(const Condition& condition) {
    const bool holds = condition.holds;
    const std::string control = Described(condition.control);
    switch (condition.what) {
    case Condition::Enabled:
        return control + (holds ? " enabled" : " disabled");
    case Condition::Visible:
        return control + (holds ? " visible" : " hidden");
    case Condition::Checked:
        return control + (holds ? " checked" : " unchecked");
    case Condition::Text:
        return "text " + Quote(condition.text) + " in " + control;
    case Condition::Selection:
        return "selection " + Described(condition.entry) + " in " + control;
    case Condition::Tab:
        return "tab " + Described(condition.entry);
    case Condition::Focus:
        return "focus on " + control;
    case Condition::Window:
        return "window " + Quote(condition.title);
    case Condition::Box:
        if (condition.anyTitle) return "a message box";
        return "box " + Quote(condition.title) +
               (condition.anyText ? "" : " " + Quote(condition.text));
    case Condition::Help:
        return "help " + Quote(condition.text);
    case Condition::Picture:
        break;
    }
    return "picture " + condition.text;
}

} // namespace

std::string Described(const ControlName& name) {
    switch (name.number) {
    case 1:
        return "ok";
    case 2:
        return "cancel";
    case kApplyButton:
        return "apply";
    default:
        break;
    }
    return name.number != 0 ? std::to_string(name.number) : Quote(name.caption);
}

std::string Described(const EntryName& name) {
    if (name.number < 0) return "none";
    return name.number != 0 ? std::to_string(name.number) : Quote(name.text);
}

std::string Described(const KeyName& key) {
    return std::string(key.control ? "Ctrl+" : "") + (key.shift ? "Shift+" : "") +
           (key.alt ? "Alt+" : "") + key.name;
}

std::string Described(const Condition& condition) {
    return (condition.holds || condition.what <= Condition::Checked ? "" : "not ") +
           WithoutNot(condition);
}

std::string Described(const FrontWindow& window) {
    switch (window.kind) {
    case FrontWindow::Dialog:
        return "window " + Quote(window.title);
    case FrontWindow::Box:
        return "box " + Quote(window.title) + " " + Quote(window.text);
    case FrontWindow::Save:
        return "save dialog " + Quote(window.title);
    case FrontWindow::None:
        break;
    }
    return "no window";
}

const char* Described(Answer answer) {
    constexpr const char* names[] = {"yes", "no", "ok", "cancel", "escape"};
    return names[static_cast<size_t>(answer)];
}

std::string WithoutMarks(const std::string& caption) {
    std::string text;
    for (size_t i = 0; i < caption.size(); ++i) {
        if (caption[i] == '&' && ++i == caption.size()) break; // "&&" stands for one
        text += caption[i];
    }
    return text;
}

} // namespace etmhost
