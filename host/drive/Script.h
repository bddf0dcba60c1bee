// Script: what a person does at the dialogs, as a text. docs/driving.md describes the form.

#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace etmhost {

/// A control of the window in front: by its resource number, or by the caption of a button.
struct ControlName {
    int number = 0;      ///< 0: by the caption
    std::string caption; ///< without ampersands
};

/// An entry of a list, or a tab: by its number, of which the first is 1, or by its text.
struct EntryName {
    int number = 0; ///< 0: by the text; -1: none
    std::string text;
};

/// A key with what is held down beside it.
struct KeyName {
    std::string name; ///< one of KeyNames(), a capital letter or a digit
    bool control = false, shift = false, alt = false;
};

/// Something that can be seen.
struct Condition {
    enum What {
        Enabled,
        Visible,
        Checked,
        Text,
        Selection,
        Tab,
        Focus,
        Window,
        Box,
        Picture,
        Help
    };
    What what = Enabled;
    bool holds = true; ///< false: its opposite
    ControlName control;
    EntryName entry;
    std::string title; ///< of a window or box
    std::string text;  ///< of a control, box or help; the name of a picture
    bool anyTitle = false, anyText = false;
};

/// How a message box is answered.
enum class Answer { Yes, No, Ok, Cancel, Escape };

struct Step {
    enum Verb {
        Click,
        Type,
        Choose,
        Tab,
        Drag,
        Key,
        Close,
        AnswerBox,
        Save,
        Pause,
        WaitUntil,
        Expect,
        Picture,
        Remark,
        Unless, ///< goes on at `target` if the condition does not hold
        GoOn,   ///< goes on at `target`
    };
    Verb verb = Remark;
    int line = 0;         ///< of the text
    bool quietly = false; ///< not told
    ControlName control;
    EntryName entry;
    KeyName key;
    Condition condition;
    Answer answer = Answer::Ok;
    std::string text;  ///< typed, the name of a file, a remark; of Save: empty to cancel; of Key:
                       ///< keys in place of the one
    int number = 0;    ///< a position, or milliseconds
    size_t target = 0; ///< the index of a step, or the number of steps
};

/// What is wrong with a line.
struct ScriptError {
    int line;
    std::string text;
};

struct Script {
    std::string name; ///< of the file, for messages
    std::vector<Step> steps;
    std::vector<ScriptError> errors; ///< in order; a script with errors is not carried out
};

/// The button of every sheet.
inline constexpr int kApplyButton = 0x3021;

/// The longest text that is a script, in bytes.
inline constexpr size_t kLongestScript = 1 << 20;

/// The names of keys that are neither letters nor digits.
const std::vector<std::string>& KeyNames();

/// Reads a script. Of a long list of errors the first 20 are told.
Script ParseScript(std::string name, std::string_view text);

/// Returns `error` as people and editors read it: "FILE:LINE: TEXT".
std::string Located(const Script& script, int line, const std::string& text);

} // namespace etmhost
