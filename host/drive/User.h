// User: a person at the dialogs, whatever draws them. A guide for another kind of windows.
//
// A user acts on the window in front and sees it: for a sheet its page in front, then the sheet
// itself. Controls are known by their resource numbers. An act may bring up a modal window, whose
// loop then runs inside the act; or the act returns once the window stands there.
//
// What cannot be done throws std::runtime_error with a text for people.

#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "host/drive/Script.h"

namespace etmhost {

/// The tab control of every sheet.
inline constexpr int kTabControl = 0x3020;

struct FrontWindow {
    enum Kind { None, Dialog, Box, Save };
    Kind kind = None;
    std::string title;
    std::string text;   ///< of a box
    bool sheet = false; ///< a dialog with tabs
};

class User {
public:
    virtual ~User() = default;

    virtual FrontWindow Front() = 0;
    /// Whether the window in front has the control.
    virtual bool Has(int id) = 0;
    /// The visible buttons, check boxes and radio buttons with this caption.
    virtual std::vector<int> WithCaption(const std::string& caption) = 0;

    // REQUIRES, for the acts on a control: it is there, enabled and visible.
    virtual void Click(int id) = 0;
    virtual void Type(int id, const std::string& text) = 0; ///< replaces what stands there
    virtual void Select(int id, int index) = 0;             ///< the first entry is 0
    virtual void Tab(int index) = 0;                        ///< the first is 0
    virtual void Drag(int id, int position) = 0;            ///< and lets go
    virtual void Press(const KeyName& key) = 0;             ///< where the keyboard is
    virtual void Write(const std::string& text) = 0;        ///< there too, key by key
    /// Closes the window by its frame; a box is refused so.
    virtual void CloseFrame() = 0;
    /// Presses a button of the box in front; throws without that button.
    virtual void AnswerBox(Answer answer) = 0;
    /// Confirms `path` in the save dialog in front; empty: cancels it.
    virtual void SaveAs(const std::string& path) = 0;
    /// Writes a picture of the window in front. Throws where there are none.
    virtual void TakePicture(const std::filesystem::path& file) = 0;

    // REQUIRES, for what is seen of a control: it is there.
    /// The text; lines end with \n, after \r on some.
    virtual std::string Text(int id) = 0;
    virtual bool Enabled(int id) = 0;
    virtual bool Visible(int id) = 0;
    virtual bool Checked(int id) = 0;
    /// Of a list or of the tabs; the first is 0, none -1.
    virtual int Selection(int id) = 0;
    /// The entries of a list, or the titles of the tabs.
    virtual std::vector<std::string> Entries(int id) = 0;
    /// The help that F1 has brought up, on one line; empty: none is on the screen.
    virtual std::string Help() = 0;
    /// The control with the keyboard; 0: none.
    virtual int Focus() = 0;

    int TabInFront() { return Selection(kTabControl); }
};

/// Returns a caption without the marks of its key: "&File" becomes "File".
std::string WithoutMarks(const std::string& caption);

} // namespace etmhost
