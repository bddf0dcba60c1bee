// CWnd: a window as a model.
//
// A CWnd holds what a window shows and can do: number, kind, text, enabled,
// visible. Its subclasses add what their kind needs: a check mark, entries and a
// selection, a position. Nothing here draws. While a window exists on the screen
// (IsCreated), each change of the model is passed on to the display, which keeps
// a real window in step; what the person does comes back through input.h.
//
// Who owns it: a dialog owns the models of its controls, made from its template.
// Which thread: the one thread that runs the dialogs.

#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "toolkit/constants.h"
#include "toolkit/template.h"

class CDialog;
class CPropertyPage;
class CPropertySheet;

/// What a display keeps for one window; the window owns it.
class DisplayPeer {
public:
    virtual ~DisplayPeer() = default;
};

/// What changed in a model, for Display::Refresh.
enum class Change : uint8_t {
    Text,
    ReadOnly, // of an edit
    Enabled,
    Visible,
    Checked,   // of a check box or radio button
    Entries,   // of a combo box or tab control; the selection with them
    Selection, // of a combo box or tab control
    Range,     // of a slider: range, page size, line size, ticks
    Position,  // of a slider
};

class CWnd {
public:
    CWnd() = default;
    virtual ~CWnd();
    CWnd(const CWnd&) = delete;
    CWnd& operator=(const CWnd&) = delete;

    /// The resource number of a control, or the dialog number of a dialog.
    int GetDlgCtrlID() const { return m_Id; }
    /// The template's kind; dialogs, pages and sheets have none that matters.
    ControlKind GetKind() const { return m_Kind; }
    uint32_t GetStyle() const { return m_Style; }
    /// The template's row, or null for a dialog.
    const ControlTemplate* GetTemplate() const { return m_Template; }
    /// What F1 shows about a control, and screen readers read; null: nothing.
    const char* GetHelp() const { return m_Help; }
    /// The dialog of a control, the sheet of a page, the owner of a dialog; may be null.
    CWnd* GetParent() const { return m_Parent; }

    // This window as a page or a sheet; null if it is none. For displays: they may lie in
    // another library, without the type information that a dynamic_cast needs.
    virtual const CPropertyPage* AsPage() const { return nullptr; }
    virtual const CPropertySheet* AsSheet() const { return nullptr; }

    /// True from the creation of the window on the display to its destruction.
    bool IsCreated() const { return m_Created; }

    const std::string& GetWindowText() const { return m_Text; }
    /// A single-line edit reports EN_CHANGE to its dialog if the text is new.
    void SetWindowText(std::string_view text);
    /// The text that a person typed, which the display shows already.
    void AcceptTypedText(std::string_view text) { m_Text = text; }

    bool IsWindowEnabled() const { return m_Enabled; }
    void EnableWindow(bool enable);

    /// The window's own state, whatever its parents show.
    bool IsWindowVisible() const { return m_Visible; }
    /// `command` is SW_SHOW or SW_HIDE.
    void ShowWindow(int command);

    /// Modal box owned by this window; returns IDOK, IDYES, IDNO or IDCANCEL.
    /// A null `title` gives the toolkit's default, "Error".
    int MessageBox(const char* text, const char* title, unsigned flags);

    /// Width in pixels of a text with tabs on default stops, in this window's font. False
    /// if there is nothing to measure with.
    bool MeasureTabbedText(std::string_view text, int& width) const;

    /// An audible warning; `flags` is one of the MB_ICON values.
    static void MessageBeep(unsigned flags);

    /// A periodic tick of `milliseconds`, delivered to OnTimer with `id`.
    void SetTimer(unsigned id, unsigned milliseconds);
    void KillTimer(unsigned id);
    /// Default processing: nothing.
    virtual void OnTimer(unsigned id);

    /// The display's own; see display.h.
    DisplayPeer* GetPeer() const { return m_Peer.get(); }
    void SetPeer(std::unique_ptr<DisplayPeer> peer) { m_Peer = std::move(peer); }

protected:
    /// Passes a change on to the display, if the window is on the screen.
    void Changed(Change what);

    int m_Id = 0;
    ControlKind m_Kind = ControlKind::Static;
    uint32_t m_Style = style::None;
    const ControlTemplate* m_Template = nullptr;
    const char* m_Help = nullptr;
    CWnd* m_Parent = nullptr;
    std::string m_Text;
    bool m_Enabled = true;
    bool m_Visible = true;
    bool m_Created = false;

private:
    friend class CDialog;
    std::unique_ptr<DisplayPeer> m_Peer;
};

/// Modal box under the application's title, without an owner.
int AfxMessageBox(const char* text, unsigned flags);

/// Modal box without an owner: it lies over what is in front. A null `title` gives
/// the toolkit's default.
int MessageBoxWithoutOwner(const char* text, const char* title, unsigned flags);
