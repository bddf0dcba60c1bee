#include "toolkit/qt/QtDisplay.h"

#include "toolkit/CWinApp.h"
#include "toolkit/guarded.h"
#include "toolkit/input.h"
#include "toolkit/qt/HelpTip.h"
#include "toolkit/qt/QtWindow.h"
#include "toolkit/qt/boxes.h"
#include "toolkit/qt/on_screen.h"
#include "toolkit/qt/qt_text.h"

std::unique_ptr<Display> MakeDisplay() {
    return std::make_unique<QtDisplay>();
}

bool QtDisplay::Prepare(std::string& reason) {
    constexpr auto cancel = [] { Guarded([] { AfxGetApp()->CancelAll(); }); };
    return m_Application.Prepare(AfxGetApp()->GetTitle(), cancel, reason);
}

QWidget* QtDisplay::OwnerWindow(const CWnd* model) const {
    for (; model != nullptr; model = model->GetParent())
        if (const qt::QtPeer* peer = qt::PeerOf(*model);
            peer != nullptr && peer->Widget() != nullptr)
            return peer->Widget()->window();
    return m_Modal.Innermost();
}

bool QtDisplay::Create(CDialog& dialog) {
    std::string reason;
    if (!Prepare(reason)) return false;
    return qt::MakeWindow(dialog, m_Modal, OwnerWindow(dialog.GetParent()));
}

void QtDisplay::Destroy(CDialog& dialog) {
    std::erase_if(m_Tickers, [&](const auto& entry) {
        const CWnd* window = entry.first.first;
        return window == &dialog || window->GetParent() == &dialog;
    });
    qt::TakeDownWindow(dialog);
}

void QtDisplay::Refresh(CWnd& window, Change what) {
    qt::QtPeer* peer = qt::PeerOf(window);
    if (peer != nullptr && peer->Widget() != nullptr) peer->Refresh(what);
}

bool QtDisplay::HasFocus(const CWnd& control) {
    const qt::QtPeer* peer = qt::PeerOf(control);
    return peer != nullptr && peer->Widget() != nullptr && peer->HasFocus();
}

void QtDisplay::Focus(CWnd& control) {
    const qt::QtPeer* peer = qt::PeerOf(control);
    if (peer != nullptr && peer->Widget() != nullptr) peer->FocusWidget()->setFocus();
}

void QtDisplay::RunModal(CDialog& dialog) {
    auto* peer = static_cast<qt::WindowPeer*>(qt::PeerOf(dialog));
    qt::TopWindow* window = peer != nullptr ? peer->Top() : nullptr;
    if (window == nullptr || dialog.HasEnded()) return;
    if (QWidget* first = peer->FocusWidget()) {
        first->setFocus(Qt::TabFocusReason);
        window->ShowDefault(first);
    }
    const qt::ModalRun run(m_Modal, *window);
    if (window->testAttribute(Qt::WA_Moved)) qt::MoveOntoScreen(*window);
    window->exec();
    if (dialog.AsSheet() != nullptr) qt::KeepPlace(*window);
    // The host may have ended all loops: then the dialog was not asked yet.
    if (!dialog.HasEnded()) input::Close(dialog);
}

void QtDisplay::EndModal(CDialog& dialog) {
    if (auto* peer = static_cast<qt::WindowPeer*>(qt::PeerOf(dialog)))
        if (qt::TopWindow* window = peer->Top()) window->WantEnd();
}

int QtDisplay::ShowMessage(CWnd* owner, const char* text, const char* title, unsigned flags) {
    std::string reason;
    if (!Prepare(reason)) return qt::Refusal(flags); // nobody can be asked
    return qt::ShowMessageBox(m_Modal, OwnerWindow(owner), qt::LinesFromModel(text),
                              qt::FromModel(title), flags);
}

bool QtDisplay::AskSaveFile(SaveFileRecord& record) {
    std::string reason;
    return Prepare(reason) && qt::ShowSaveDialog(m_Modal, OwnerWindow(record.owner), record);
}

void QtDisplay::StartTimer(CWnd& window, unsigned id, unsigned milliseconds) {
    m_Tickers.try_emplace({&window, id}, window, id).first->second.Start(milliseconds);
}

void QtDisplay::StopTimer(CWnd& window, unsigned id) {
    // It may be this timer's own tick that is running: it goes with its window.
    if (const auto found = m_Tickers.find({&window, id}); found != m_Tickers.end())
        found->second.Stop();
}

bool QtDisplay::MeasureTabbedText(const CWnd& control, std::string_view text, int& width) {
    const qt::QtPeer* peer = qt::PeerOf(control);
    if (peer == nullptr || peer->Widget() == nullptr) return false;
    width = qt::TabbedWidth(peer->Widget()->font(), qt::FromModel(text));
    return true;
}

void QtDisplay::SetToolTip(CWnd& control, const char* text, int maxWidth) {
    const qt::QtPeer* peer = qt::PeerOf(control);
    if (peer == nullptr || peer->Widget() == nullptr || text == nullptr) return;
    peer->Widget()->setToolTip(qt::TipText(text, maxWidth));
}

void QtDisplay::Beep(unsigned) {
    qt::QtApplication::Beep();
}
