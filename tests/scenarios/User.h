// User: a person at the dialogs, whatever draws them.
//
// The same stories are told on the headless display and on real windows. Controls
// are known by their resource numbers, and belong to the dialog in front (for a
// sheet: to its page in front).

#pragma once

#include <functional>
#include <string>
#include <vector>

class User {
public:
    using Script = std::function<void(User&)>;
    virtual ~User() = default;

    // Said before the click that brings the window up.
    virtual void OnNextDialog(Script script) = 0;
    virtual void Answer(int result) = 0;           // to the next message box
    virtual void AnswerSave(const char* path) = 0; // in the save dialog; null: cancel

    virtual void Click(int id) = 0;
    virtual void Type(int id, const char* text) = 0; // replaces what stands there
    virtual void Select(int id, int index) = 0;
    virtual void Tab(int index) = 0;
    virtual void Drag(int id, int position) = 0; // and lets go
    virtual void CloseFrame() = 0;
    virtual void Wait(unsigned milliseconds) = 0;

    virtual std::string Text(int id) = 0;
    virtual bool Enabled(int id) = 0;
    virtual bool Visible(int id) = 0;
    virtual bool Checked(int id) = 0;
    virtual int Selection(int id) = 0;
    virtual int TabInFront() = 0;
    virtual int Focus() = 0; // the control with the keyboard

    /// The message boxes so far: "[title] text".
    virtual std::vector<std::string> Boxes() = 0;
};
