// Win32Display: the display of the Windows module, with the system's own controls.
//
// Each control has its resource number as its id; the buttons of a sheet and its tab
// control have the numbers that sheets always have. Text has the active code page.

#pragma once

#include <vector>

#include "toolkit/display.h"

class Win32Display final : public Display {
public:
    bool Prepare(std::string& reason) override;
    bool Create(CDialog& dialog) override;
    void Destroy(CDialog& dialog) override;
    void Refresh(CWnd& window, Change what) override;
    bool HasFocus(const CWnd& control) override;
    void Focus(CWnd& control) override;
    void RunModal(CDialog& dialog) override;
    void EndModal(CDialog& dialog) override;
    int ShowMessage(CWnd* owner, const char* text, const char* title, unsigned flags) override;
    bool AskSaveFile(SaveFileRecord& record) override;
    void CancelBoxes() override;
    void StartTimer(CWnd& window, unsigned id, unsigned milliseconds) override;
    void StopTimer(CWnd& window, unsigned id) override;
    bool MeasureTabbedText(const CWnd& control, std::string_view text, int& width) override;
    void SetToolTip(CWnd& control, const char* text, int maxWidth) override;
    void Beep(unsigned flags) override;

private:
    std::vector<CDialog*> m_Running; // the last one is in front
    unsigned long m_Thread = 0;      // on which they run
};
