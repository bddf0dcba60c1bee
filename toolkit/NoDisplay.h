// NoDisplay: what stands in for a display that can't be made.

#pragma once

#include "toolkit/display.h"

/// Shows nothing: to get ready fails for the reason given, and boxes count as refused.
class NoDisplay : public Display {
public:
    void SetReason(const char* reason) { m_Reason = reason; }

    bool Prepare(std::string& reason) override {
        reason = m_Reason;
        return false;
    }
    bool Create(CDialog&) override { return false; }
    void Destroy(CDialog&) override {}
    void Refresh(CWnd&, Change) override {}
    bool HasFocus(const CWnd&) override { return false; }
    void Focus(CWnd&) override {}
    void RunModal(CDialog&) override {}
    void EndModal(CDialog&) override {}
    int ShowMessage(CWnd*, const char*, const char*, unsigned flags) override {
        return (flags & MB_YESNO) != 0 ? IDNO : IDOK;
    }
    bool AskSaveFile(SaveFileRecord&) override { return false; }
    void CancelBoxes() override {}
    void StartTimer(CWnd&, unsigned, unsigned) override {}
    void StopTimer(CWnd&, unsigned) override {}
    bool MeasureTabbedText(const CWnd&, std::string_view, int&) override { return false; }
    void SetToolTip(CWnd&, const char*, int) override {}
    void Beep(unsigned) override {}

private:
    std::string m_Reason;
};
