// Where the keyboard goes when its control can't be used any more.

#pragma once

#include "toolkit/CDialog.h"

/// False for a control whose place lies outside its dialog: nobody can see it, so the
/// keyboard and screen readers must not reach it either.
bool IsInSight(const CWnd& control);

/// The control of the same dialog that takes the keyboard over from `control`: the next
/// usable one in tab order, else the nearest one before it; never one that closes the
/// dialog, if there is another. Of a group of radio buttons it is the checked one, or
/// the first. For a page without any it is the tabs; otherwise null.
CWnd* NextUsable(const CWnd& control);

/// While one lives, the controls of a window may be disabled and hidden and come back,
/// and the keyboard stays where it was. At the end it leaves a control that can't be
/// used any more. Within another one for the same window it does nothing.
class FocusKept {
public:
    /// `window` is a control, page or dialog of the window.
    explicit FocusKept(const CWnd& window);
    ~FocusKept();
    FocusKept(const FocusKept&) = delete;
    FocusKept& operator=(const FocusKept&) = delete;

private:
    void Look(const CDialog& dialog);

    const CDialog* m_Top; // null while an outer one does the work
    CWnd* m_Focus = nullptr;
    FocusKept* m_Outer;
};
