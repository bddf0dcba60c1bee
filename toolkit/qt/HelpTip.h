// HelpTip: the help on a control, brought up by F1 in a dialog.

#pragma once

#include <QKeyEvent>
#include <QString>

#include "toolkit/CDialog.h"

namespace qt {

/// `text` as a tool tip of at most `maxWidth` pixels; -1: no limit.
QString TipText(const char* text, int maxWidth);

class HelpTip {
public:
    explicit HelpTip(const CDialog& dialog) : m_Dialog(dialog) {}

    /// F1 shows the next help; Escape puts away what is shown. Returns false for any other key.
    bool TakesKey(const QKeyEvent& key);

private:
    bool IsShown() const;
    void ShowNext();

    const CDialog& m_Dialog;
    const CWnd* m_Control = nullptr; // whose help was shown last; perhaps gone, so only compared
    QString m_Text;
};

} // namespace qt
