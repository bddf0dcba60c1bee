// The controls: one model class for each kind.

#pragma once

#include "toolkit/CWnd.h"

class CStatic : public CWnd {};

/// Push button, check box, radio button or group box.
class CButton : public CWnd {
public:
    bool GetCheck() const { return m_Checked; }
    void SetCheck(bool checked);

private:
    bool m_Checked = false;
};

class CEdit : public CWnd {
public:
    /// EM_SETREADONLY: whether a person can only read the text.
    void SetReadOnly(bool readOnly);
};

/// A drop-down list.
class CComboBox : public CWnd {
public:
    /// CB_RESETCONTENT: empties the list; nothing is selected then.
    void ResetContent();
    /// CB_ADDSTRING: adds an entry at the end and returns its index.
    int AddString(std::string_view text);
    const std::vector<std::string>& GetEntries() const { return m_Entries; }
    int GetCount() const { return static_cast<int>(m_Entries.size()); }
    /// Index of the selected entry, or -1.
    int GetCurSel() const { return m_Selection; }
    /// Selects entry `index`; one that does not exist selects nothing.
    void SetCurSel(int index);

private:
    std::vector<std::string> m_Entries;
    int m_Selection = -1;
};

/// A slider. It reports NM_CUSTOMDRAW before each repaint and NM_RELEASEDCAPTURE
/// when it lets go of the mouse.
class CSliderCtrl : public CWnd {
public:
    void SetRange(int minimum, int maximum);
    void SetPageSize(int size); // TBM_SETPAGESIZE
    void SetLineSize(int size); // TBM_SETLINESIZE
    void ClearTics();           // TBM_CLEARTICS
    void SetTicFreq(int every); // TBM_SETTICFREQ
    /// TBM_SETPOS with redraw; kept within the range.
    void SetPos(int position);
    int GetPos() const { return m_Position; } // TBM_GETPOS

    int GetMinimum() const { return m_Minimum; }
    int GetMaximum() const { return m_Maximum; }
    int GetPageSize() const { return m_PageSize; }
    int GetLineSize() const { return m_LineSize; }
    int GetTicFreq() const { return m_TicFreq; } // 0: no ticks

private:
    int m_Minimum = 0, m_Maximum = 100, m_PageSize = 20, m_LineSize = 1;
    int m_TicFreq = 1, m_Position = 0;
};

/// The tab control of a property sheet: titles and the one in front.
class CTabCtrl : public CWnd {
public:
    int AddTab(std::string_view title);
    const std::vector<std::string>& GetTitles() const { return m_Titles; }
    int GetCurSel() const { return m_Selection; }
    void SetCurSel(int index);

private:
    std::vector<std::string> m_Titles;
    int m_Selection = -1;
};

/// Makes the model for a template row.
std::unique_ptr<CWnd> MakeControl(ControlKind kind);
