#include "host/drive/Interpreter.h"

#include <algorithm>
#include <stdexcept>
#include <utility>

#include "host/drive/describe.h"
#include "host/support/words.h"

namespace etmhost {

namespace {

constexpr size_t kNone = static_cast<size_t>(-1);

/// Whether a step is about boxes and save dialogs too; `expected`: the box in front was.
bool MindsNoBox(const Step& step, bool expected) {
    switch (step.verb) {
    case Step::Key:
        return expected;
    case Step::AnswerBox:
    case Step::Pause:
    case Step::Picture:
    case Step::Remark:
        return true;
    case Step::WaitUntil:
    case Step::Expect:
    case Step::Unless:
        return step.condition.what >= Condition::Window;
    default:
        return false;
    }
}

} // namespace

Interpreter::Interpreter(const Script& script, User& user, Told told)
    : m_Script(script), m_User(user), m_Told(std::move(told)), m_Seen(kNone) {
    SkipJumps();
}

bool Interpreter::Tick(uint64_t now) {
    ++m_Ticks;
    if (std::exchange(m_Seen, m_Next) != m_Next) m_Since = now;
    const int line = !m_Script.steps.empty()
                         ? m_Script.steps[std::min(m_Next, m_Script.steps.size() - 1)].line
                         : 1;
    try {
        const FrontWindow front = m_User.Front();
        if (const char* reason = m_GivenUp) Fail(line, reason);
        if (!m_Failure.empty()) return CloseOne(front, now);
        const bool arrived = m_Next == m_Script.steps.size();
        if (front.kind == FrontWindow::None) return WaitFor(line, "a window", "none there", now);
        if (front.kind == FrontWindow::Box &&
            (arrived || !MindsNoBox(m_Script.steps[m_Next], m_BoxExpected))) {
            Fail(line, "a box " + Quote(front.title) + " came up: " + front.text);
            return true;
        }
        if (arrived) return WaitFor(line, "the windows to close", Described(front) + " open", now);
        if (m_Wait && m_Wait()) {
            m_Since = now;
            return false;
        }
        return TryStep(m_Script.steps[m_Next], front, now);
    } catch (const std::exception& error) {
        Fail(line, error.what());
        return true;
    }
}

void Interpreter::End() {
    for (; m_Failure.empty() && m_Next < m_Script.steps.size(); SkipJumps()) {
        const Step& step = m_Script.steps[m_Next];
        if (step.verb != Step::Remark) return Fail(step.line, "the dialog has closed already");
        Make(step, step.text, [] {});
    }
}

// --- Steps -----------------------------------------------------------------------

bool Interpreter::TryStep(const Step& step, const FrontWindow& front, uint64_t now) {
    switch (step.verb) {
    case Step::Unless:
        m_Next = Look(step.condition, front).holds ? m_Next + 1 : step.target;
        SkipJumps();
        return true;
    case Step::Expect:
    case Step::WaitUntil:
        return Judge(step, front, now);
    case Step::Pause:
        if (now - m_Since < static_cast<uint64_t>(step.number)) return false;
        ++m_Next;
        SkipJumps();
        return true;
    case Step::Remark:
        Make(step, step.text, [] {});
        return true;
    case Step::Picture:
        if (m_TakesPictures) m_User.TakePicture(m_Pictures / step.text);
        m_Taken.insert(step.text);
        Make(step, "picture " + step.text, [] {});
        return true;
    default:
        return TryAct(step, front, now);
    }
}

bool Interpreter::TryAct(const Step& step, const FrontWindow& front, uint64_t now) {
    if (step.verb == Step::AnswerBox) {
        if (front.kind != FrontWindow::Box)
            return WaitFor(step.line, "a message box", Described(front), now);
        Make(step, std::string("answer ") + Described(step.answer),
             [&] { m_User.AnswerBox(step.answer); });
        return true;
    }
    if (step.verb == Step::Save) {
        if (front.kind != FrontWindow::Save)
            return WaitFor(step.line, "the save dialog", Described(front), now);
        Make(step, "save " + (step.text.empty() ? "cancel" : Quote(step.text)),
             [&] { m_User.SaveAs(step.text); });
        return true;
    }
    if (step.verb == Step::Key) {
        const bool one = step.text.empty();
        Make(step, "key " + (one ? Described(step.key) : Quote(step.text)),
             [&] { one ? m_User.Press(step.key) : m_User.Write(step.text); });
        return true;
    }
    if (front.kind != FrontWindow::Dialog)
        return WaitFor(step.line, "a dialog", Described(front), now);
    if (step.verb == Step::Close) {
        Make(step, "close", [&] { m_User.CloseFrame(); });
        return true;
    }
    return TryControl(step, front, now);
}

bool Interpreter::TryControl(const Step& step, const FrontWindow& front, uint64_t now) {
    const ControlName name = step.verb == Step::Tab ? ControlName{kTabControl, {}} : step.control;
    const int id = Resolve(name);
    if (id == 0) return WaitFor(step.line, Described(name) + " in front", Described(front), now);
    if (!m_User.Visible(id)) return WaitFor(step.line, Described(name) + " visible", "hidden", now);
    if (!m_User.Enabled(id))
        return WaitFor(step.line, Described(name) + " enabled", "disabled", now);
    const std::string place = front.sheet ? "" : " of " + front.title;
    const std::string number = " " + std::to_string(id);
    if (step.verb == Step::Click) {
        Make(
            step, "click " + CaptionOf(id) + place, [&] { m_User.Click(id); });
    } else if (step.verb == Step::Type) {
        Make(
            step, "type" + number + " " + Quote(step.text) + place,
            [&] { m_User.Type(id, step.text); });
    } else if (step.verb == Step::Drag) {
        Make(
            step, "drag" + number + " " + std::to_string(step.number) + place,
            [&] { m_User.Drag(id, step.number); });
    } else {
        const int index = IndexOf(id, step.entry);
        const std::vector<std::string> entries = m_User.Entries(id);
        if (index < 0 || index >= static_cast<int>(entries.size())) {
            std::string all;
            for (const std::string& entry : entries)
                all += (all.empty() ? "" : ", ") + Quote(entry);
            return WaitFor(step.line, Described(step.entry) + " in" + number,
                           all.empty() ? "empty" : all, now);
        }
        const std::string entry = " " + entries[static_cast<size_t>(index)];
        if (step.verb == Step::Tab)
            Make(step, "tab" + entry, [&] { m_User.Tab(index); });
        else
            Make(step, "choose" + number + entry + place, [&] { m_User.Select(id, index); });
    }
    return true;
}

bool Interpreter::Judge(const Step& step, const FrontWindow& front, uint64_t now) {
    const Finding finding = Look(step.condition, front);
    if (finding.holds) {
        m_BoxExpected = front.kind == FrontWindow::Box && step.condition.holds &&
                        step.condition.what >= Condition::Window;
        ++m_Next;
        SkipJumps();
    } else if (step.verb == Step::WaitUntil) {
        return WaitFor(step.line, Described(step.condition), finding.is, now);
    } else {
        Fail(step.line, "expected " + Described(step.condition) + ", is " + finding.is);
    }
    return true;
}

/// Goes on ahead of the act, which may not return before later steps are made.
void Interpreter::Make(const Step& step, const std::string& what,
                       const std::function<void()>& act) {
    if (step.verb != Step::Remark) m_BoxExpected = false;
    if (!step.quietly && m_Told) m_Told(Escape(what));
    ++m_Next;
    SkipJumps();
    try {
        act();
    } catch (const std::exception& error) {
        Fail(step.line, error.what());
    }
}

void Interpreter::SkipJumps() {
    while (m_Next < m_Script.steps.size() && m_Script.steps[m_Next].verb == Step::GoOn)
        m_Next = m_Script.steps[m_Next].target;
}

bool Interpreter::WaitFor(int line, const std::string& expected, const std::string& is,
                          uint64_t now) {
    if (now - m_Since <= kStepPatience) return false;
    Fail(line, "expected " + expected + ", is " + is);
    return true;
}

void Interpreter::Fail(int line, const std::string& reason) {
    if (!m_Failure.empty()) return;
    m_Failure = reason;
    m_FailureLine = line;
    m_Seen = kNone; // patience anew
}

bool Interpreter::CloseOne(const FrontWindow& front, uint64_t now) {
    if (now - m_Since > kStepPatience && m_Stuck) m_Stuck();
    if (front.kind == FrontWindow::None) return false;
    m_User.CloseFrame();
    return true;
}

// --- What is seen ----------------------------------------------------------------

int Interpreter::Resolve(const ControlName& name) {
    if (name.number != 0) return m_User.Has(name.number) ? name.number : 0;
    const std::vector<int> found = m_User.WithCaption(name.caption);
    if (found.size() > 1) {
        std::string numbers;
        for (const int id : found) numbers += " " + std::to_string(id);
        throw std::runtime_error(Quote(name.caption) + " is the caption of several:" + numbers);
    }
    return found.empty() ? 0 : found.front();
}

int Interpreter::IndexOf(int id, const EntryName& entry) {
    if (entry.number != 0) return entry.number - (entry.number > 0 ? 1 : 0);
    const std::vector<std::string> entries = m_User.Entries(id);
    const auto found = std::ranges::find(entries, entry.text);
    return found != entries.end() ? static_cast<int>(found - entries.begin()) : -2;
}

/// The caption without the points that announce a dialog; of what has none the number.
std::string Interpreter::CaptionOf(int id) {
    std::string caption = WithoutMarks(m_User.Text(id));
    if (std::ranges::count(m_User.WithCaption(caption), id) == 0) return std::to_string(id);
    while (!caption.empty() && (caption.back() == '.' || caption.back() == ' ')) caption.pop_back();
    return caption;
}

Interpreter::Finding Interpreter::Look(const Condition& condition, const FrontWindow& front) {
    if (condition.what < Condition::Window) {
        if (front.kind != FrontWindow::Dialog) return {false, Described(front)};
        return LookAtControl(condition);
    }
    bool seen = false;
    if (condition.what == Condition::Window) {
        seen = front.title == condition.title;
    } else if (condition.what == Condition::Picture) {
        seen = m_Taken.contains(condition.text);
    } else if (condition.what == Condition::Help) {
        const std::string help = m_User.Help();
        seen = help.find(condition.text) != std::string::npos;
        return {seen == condition.holds, help.empty() ? "no help" : Quote(help)};
    } else {
        seen = front.kind == FrontWindow::Box &&
               (condition.anyTitle || front.title == condition.title) &&
               (condition.anyText || front.text == condition.text);
    }
    return {seen == condition.holds, Described(front)};
}

/// A condition about a control that is not there does not hold, nor does its opposite.
Interpreter::Finding Interpreter::LookAtControl(const Condition& condition) {
    bool seen = false;
    std::string is;
    const auto index = [&](int list) {
        const int selection = m_User.Selection(list);
        seen = selection == IndexOf(list, condition.entry);
        is = selection < 0 ? "none" : std::to_string(selection + 1);
        const std::vector<std::string> entries = m_User.Entries(list);
        if (selection >= 0 && selection < static_cast<int>(entries.size()))
            is += " (" + entries[static_cast<size_t>(selection)] + ")";
    };
    const bool tab = condition.what == Condition::Tab;
    const int id = tab ? (m_User.Has(kTabControl) ? kTabControl : 0) : Resolve(condition.control);
    if (id == 0) return {false, "not there"};
    switch (condition.what) {
    case Condition::Enabled:
        seen = m_User.Enabled(id);
        is = seen ? "enabled" : "disabled";
        break;
    case Condition::Visible:
        seen = m_User.Visible(id);
        is = seen ? "visible" : "hidden";
        break;
    case Condition::Checked:
        seen = m_User.Checked(id);
        is = seen ? "checked" : "unchecked";
        break;
    case Condition::Text: {
        std::string text = m_User.Text(id);
        std::erase(text, '\r');
        seen = text == condition.text;
        is = Quote(text);
        break;
    }
    case Condition::Focus:
        seen = m_User.Focus() == id;
        is = "on " + std::to_string(m_User.Focus());
        break;
    default:
        index(id);
    }
    return {seen == condition.holds, is};
}

} // namespace etmhost
