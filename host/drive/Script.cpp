#include "host/drive/Script.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <optional>
#include <utility>

#include "host/support/words.h"

namespace etmhost {

namespace {

constexpr size_t kMostErrors = 20;
constexpr int kLongestPause = 60'000; // in ms

/// What a line cannot be read for.
struct Wrong {
    std::string text;
};

/// A word of a line, or what stands in its quotes.
struct Token {
    std::string text;
    bool quoted = false;
};

std::string Shown(const Token& token) {
    return token.quoted ? Quote(token.text.c_str()) : Escape(token.text);
}

std::string TakeQuoted(std::string_view& rest) {
    std::string text;
    for (size_t i = 1; i < rest.size(); ++i) {
        if (rest[i] == '"') {
            rest.remove_prefix(i + 1);
            if (!rest.empty() && !IsBlank(rest[0]))
                throw Wrong{"a blank is missing behind a quote"};
            return text;
        }
        if (rest[i] != '\\') {
            text += rest[i];
            continue;
        }
        const char escape = ++i < rest.size() ? rest[i] : ' ';
        switch (escape) {
        case 'n':
            text += '\n';
            break;
        case 't':
            text += '\t';
            break;
        case '"':
        case '\\':
            text += escape;
            break;
        default:
            throw Wrong{"a backslash stands ahead of n, t, \" or \\"};
        }
    }
    throw Wrong{"a quote is not closed"};
}

std::vector<Token> Split(std::string_view line) {
    for (const char c : line)
        if ((static_cast<unsigned char>(c) < 32 && c != '\t') || c == 127)
            throw Wrong{"a control character"};
    std::vector<Token> tokens;
    for (line = SkipBlanks(line); !line.empty() && line[0] != '#'; line = SkipBlanks(line)) {
        if (line[0] == '"') {
            tokens.push_back({TakeQuoted(line), true});
        } else {
            tokens.push_back({std::string(TakeWord(line)), false});
            if (tokens.back().text.find('"') != std::string::npos)
                throw Wrong{"a blank is missing ahead of a quote"};
        }
    }
    return tokens;
}

/// The words of one line, taken one after the other.
class Words {
public:
    explicit Words(std::vector<Token> tokens) : m_Tokens(std::move(tokens)) {}

    bool empty() const { return m_Next == m_Tokens.size(); }
    bool NextIsQuoted() const { return !empty() && m_Tokens[m_Next].quoted; }

    /// Takes the next word if it is `word`.
    bool Took(const char* word) {
        if (empty() || m_Tokens[m_Next].quoted || m_Tokens[m_Next].text != word) return false;
        ++m_Next;
        return true;
    }

    const Token& Take(const char* what) {
        if (empty()) throw Wrong{std::string(what) + " is missing"};
        return m_Tokens[m_Next++];
    }

    std::string TakeWord(const char* what) {
        const Token& token = Take(what);
        if (token.quoted) throw Wrong{std::string(what) + " stands without quotes"};
        return token.text;
    }

    std::string TakeText(const char* what) {
        const Token& token = Take(what);
        if (!token.quoted) throw Wrong{std::string(what) + " stands in quotes"};
        return token.text;
    }

    int TakeNumber(const char* what, int from, int to) {
        const Token& token = Take(what);
        const std::optional<int> number = token.quoted ? std::nullopt : Number(token.text);
        if (!number || *number < from || *number > to)
            throw Wrong{std::string(what) + " is a number from " + std::to_string(from) + " to " +
                        std::to_string(to) + ", not " + Shown(token)};
        return *number;
    }

    ControlName TakeControl() {
        for (const auto& [word, number] :
             {std::pair("ok", 1), {"cancel", 2}, {"apply", kApplyButton}})
            if (Took(word)) return {number, {}};
        if (NextIsQuoted()) return {0, TakeFilled("a caption")};
        return {TakeNumber("a control", 1, 0xFFFF), {}};
    }

    EntryName TakeEntry(const char* what) {
        if (NextIsQuoted()) return {0, Take(what).text};
        return {TakeNumber(what, 1, 0xFFFF), {}};
    }

    std::string TakeFilled(const char* what) {
        std::string text = TakeText(what);
        if (text.empty()) throw Wrong{std::string(what) + " is empty"};
        return text;
    }

    /// A file name may stand without quotes.
    std::string TakePicture() {
        const Token& token = Take("a file name");
        if (!token.text.ends_with(".png") || token.text.size() == 4)
            throw Wrong{"the name of a picture ends with .png"};
        return token.text;
    }

private:
    static std::optional<int> Number(std::string_view text) {
        int base = 10, number = 0;
        if (text.starts_with("0x")) {
            base = 16;
            text.remove_prefix(2);
        }
        const auto [end, error] =
            std::from_chars(text.data(), text.data() + text.size(), number, base);
        const bool whole = error == std::errc() && end == text.data() + text.size();
        return whole && IsDigitOf(text[0], base) ? std::optional(number) : std::nullopt;
    }
    static bool IsDigitOf(char c, int base) { return IsDigit(c) || (base == 16 && IsLetter(c)); }

    const std::vector<Token> m_Tokens;
    size_t m_Next = 0;
};

KeyName TakeKey(Words& words) {
    KeyName key;
    std::string name = words.TakeWord("a key");
    const auto held = [&name](std::string_view prefix) {
        if (!name.starts_with(prefix)) return false;
        name.erase(0, prefix.size());
        return true;
    };
    for (bool more = true; more;) {
        more = false;
        if (!key.control && held("Ctrl+")) more = key.control = true;
        if (!key.shift && held("Shift+")) more = key.shift = true;
        if (!key.alt && held("Alt+")) more = key.alt = true;
    }
    const bool plain = name.size() == 1 && (IsDigit(name[0]) || (name[0] >= 'A' && name[0] <= 'Z'));
    if (!plain && std::ranges::count(KeyNames(), name) == 0)
        throw Wrong{"there is no key " + Escape(name)};
    key.name = name;
    return key;
}

Condition TakeCondition(Words& words) {
    Condition condition;
    condition.holds = !words.Took("not");
    const std::string word = words.TakeWord("a condition");
    constexpr struct {
        const char* word;
        Condition::What what;
        bool holds;
    } states[] = {
        {"enabled", Condition::Enabled, true}, {"disabled", Condition::Enabled, false},
        {"visible", Condition::Visible, true}, {"hidden", Condition::Visible, false},
        {"checked", Condition::Checked, true}, {"unchecked", Condition::Checked, false},
        {"text", Condition::Text, true},       {"selection", Condition::Selection, true},
        {"focus", Condition::Focus, true},     {"tab", Condition::Tab, true},
        {"window", Condition::Window, true},   {"box", Condition::Box, true},
        {"picture", Condition::Picture, true}, {"help", Condition::Help, true},
    };
    const auto* state =
        std::ranges::find_if(states, [&](const auto& one) { return one.word == word; });
    if (state == std::end(states)) throw Wrong{"there is no condition " + Escape(word)};
    condition.what = state->what;
    if (!state->holds) condition.holds = !condition.holds;
    switch (condition.what) {
    case Condition::Tab:
        condition.entry = words.TakeEntry("a tab");
        break;
    case Condition::Window:
        condition.title = words.TakeText("a title");
        break;
    case Condition::Box:
        condition.anyTitle = words.empty();
        if (!condition.anyTitle) condition.title = words.TakeText("a title");
        condition.anyText = words.empty();
        if (!condition.anyText) condition.text = words.TakeText("a text");
        break;
    case Condition::Picture:
        condition.text = words.TakePicture();
        break;
    case Condition::Help:
        condition.text = words.TakeText("a text");
        break;
    default:
        condition.control = words.TakeControl();
        if (condition.what == Condition::Text) condition.text = words.TakeText("a text");
        if (condition.what == Condition::Selection)
            condition.entry = words.Took("none") ? EntryName{-1, {}} : words.TakeEntry("an entry");
    }
    return condition;
}

Answer TakeAnswer(Words& words) {
    constexpr std::array names = {"yes", "no", "ok", "cancel", "escape"};
    const std::string word = words.TakeWord("an answer");
    const auto found = std::ranges::find(names, word);
    if (found == names.end()) throw Wrong{"an answer is yes, no, ok, cancel or escape"};
    return static_cast<Answer>(found - names.begin());
}

/// Reads the words behind `verb` into `step`. Returns false if there is no such verb.
bool TakeArguments(const std::string& verb, Words& words, Step& step) {
    if (verb == "ok" || verb == "cancel" || verb == "apply") {
        step.verb = Step::Click;
        step.control = Words({{verb, false}}).TakeControl();
    } else if (verb == "click") {
        step.verb = Step::Click;
        step.control = words.TakeControl();
    } else if (verb == "type") {
        step.verb = Step::Type;
        step.control = words.TakeControl();
        step.text = words.TakeText("a text");
    } else if (verb == "choose") {
        step.verb = Step::Choose;
        step.control = words.TakeControl();
        step.entry = words.TakeEntry("an entry");
    } else if (verb == "tab") {
        step.verb = Step::Tab;
        step.entry = words.TakeEntry("a tab");
    } else if (verb == "drag") {
        step.verb = Step::Drag;
        step.control = words.TakeControl();
        step.number = words.TakeNumber("a position", 0, 0xFFFF);
    } else if (verb == "key") {
        step.verb = Step::Key;
        if (words.NextIsQuoted())
            step.text = words.TakeFilled("a text");
        else
            step.key = TakeKey(words);
    } else if (verb == "close") {
        step.verb = Step::Close;
    } else if (verb == "answer") {
        step.verb = Step::AnswerBox;
        step.answer = TakeAnswer(words);
    } else if (verb == "save") {
        step.verb = Step::Save;
        if (!words.Took("cancel")) step.text = words.TakeFilled("a path");
    } else if (verb == "wait" && words.Took("until")) {
        step.verb = Step::WaitUntil;
        step.condition = TakeCondition(words);
    } else if (verb == "wait") {
        step.verb = Step::Pause;
        step.number = words.TakeNumber("a time in ms", 1, kLongestPause);
    } else if (verb == "expect") {
        step.verb = Step::Expect;
        step.condition = TakeCondition(words);
    } else if (verb == "picture") {
        step.verb = Step::Picture;
        step.text = words.TakePicture();
    } else if (verb == "step") {
        step.verb = Step::Remark;
        step.text = words.TakeText("a remark");
    } else {
        return false;
    }
    return true;
}

class ScriptParser {
public:
    explicit ScriptParser(Script& script) : m_Script(script) {}

    void Line(int line, std::string_view text) {
        Step step;
        step.line = line;
        try {
            Words words(Split(text));
            if (words.empty()) return;
            step.quietly = words.Took("quietly");
            const std::string verb = words.TakeWord("a step");
            if (!step.quietly && (verb == "if" || verb == "else" || verb == "end"))
                Branch(verb, words, std::move(step));
            else if (TakeArguments(verb, words, step))
                Steps().push_back(std::move(step));
            else
                throw Wrong{"there is no step " + Escape(verb)};
            if (!words.empty()) throw Wrong{Shown(words.Take("")) + " is too much here"};
        } catch (const Wrong& wrong) {
            Complain(line, wrong.text);
        }
    }

    void End() {
        for (const Block& block : m_Open) Complain(block.line, "this if has no end");
        std::ranges::stable_sort(m_Script.errors, {}, &ScriptError::line);
    }

    void Complain(int line, std::string text) {
        if (m_Script.errors.size() < kMostErrors)
            m_Script.errors.push_back({line, std::move(text)});
    }

private:
    struct Block {
        int line;
        size_t jump; // the step that jumps over what stands in the block now
        bool inElse = false;
    };

    std::vector<Step>& Steps() { return m_Script.steps; }

    void Branch(const std::string& verb, Words& words, Step step) {
        if (verb == "if") {
            m_Open.push_back({step.line, Steps().size()});
            step.verb = Step::Unless;
            Steps().push_back(step);
            Steps()[m_Open.back().jump].condition = TakeCondition(words);
            return;
        }
        if (m_Open.empty()) throw Wrong{"there is no if to this " + verb};
        Block& block = m_Open.back();
        if (verb == "end") {
            Steps()[block.jump].target = Steps().size();
            m_Open.pop_back();
            return;
        }
        if (std::exchange(block.inElse, true)) throw Wrong{"this if has an else already"};
        step.verb = Step::GoOn;
        Steps().push_back(std::move(step));
        Steps()[block.jump].target = Steps().size();
        block.jump = Steps().size() - 1;
    }

    Script& m_Script;
    std::vector<Block> m_Open;
};

} // namespace

const std::vector<std::string>& KeyNames() {
    static const std::vector<std::string> names = {
        "Escape", "Return", "Tab",      "Space",  "Up",        "Down",   "Left", "Right", "Home",
        "End",    "PageUp", "PageDown", "Delete", "Backspace", "Insert", "F1",   "F2",    "F3",
        "F4",     "F5",     "F6",       "F7",     "F8",        "F9",     "F10",  "F11",   "F12"};
    return names;
}

Script ParseScript(std::string name, std::string_view text) {
    Script script;
    script.name = std::move(name);
    ScriptParser parser(script);
    if (text.size() > kLongestScript) {
        parser.Complain(1,
                        "the script is longer than " + std::to_string(kLongestScript) + " bytes");
        return script;
    }
    if (text.starts_with("\xEF\xBB\xBF")) text.remove_prefix(3);
    for (int line = 1; !text.empty(); ++line) {
        const size_t end = std::min(text.find('\n'), text.size());
        std::string_view one = text.substr(0, end);
        if (one.ends_with('\r')) one.remove_suffix(1);
        parser.Line(line, one);
        text.remove_prefix(std::min(end + 1, text.size()));
    }
    parser.End();
    return script;
}

std::string Located(const Script& script, int line, const std::string& text) {
    return script.name + ":" + std::to_string(line) + ": " + text;
}

} // namespace etmhost
