// QtDisplay: real windows, by Qt 6 Widgets.
//
// Every widget's objectName is its resource number in decimal, that of a dialog or
// page its dialog number, and that of a sheet "sheet"; so UI automation finds them.

#pragma once

#include <map>
#include <utility>

#include "toolkit/display.h"
#include "toolkit/qt/QtApplication.h"
#include "toolkit/qt/Ticker.h"
#include "toolkit/qt/modal.h"

class QtDisplay : public Display {
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
    void CancelBoxes() override { m_Modal.CancelBoxes(); }
    void StartTimer(CWnd& window, unsigned id, unsigned milliseconds) override;
    void StopTimer(CWnd& window, unsigned id) override;
    bool MeasureTabbedText(const CWnd& control, std::string_view text, int& width) override;
    void SetToolTip(CWnd& control, const char* text, int maxWidth) override;
    void Beep(unsigned flags) override;

private:
    /// The window that a new one belongs to: that of `model` or of the dialog around
    /// it; for null the innermost modal one. May be null.
    QWidget* OwnerWindow(const CWnd* model) const;

    qt::QtApplication m_Application; // the last to go
    qt::ModalStack m_Modal;
    std::map<std::pair<CWnd*, unsigned>, qt::Ticker> m_Tickers;
};
