#include "toolkit/headless/HeadlessDisplay.h"

#include <algorithm>
#include <cstring>
#include <iostream>
#include <stdexcept>
#include <utility>

#include "toolkit/input.h"

namespace {

constexpr int kTabStop = 8; // characters

std::string Number(int id) {
    return std::to_string(id);
}

CPropertyPage* PageInFront(CDialog* dialog) {
    auto* sheet = dynamic_cast<CPropertySheet*>(dialog);
    return sheet != nullptr ? sheet->GetActivePage() : nullptr;
}

} // namespace

HeadlessDisplay::HeadlessDisplay() = default;
HeadlessDisplay::~HeadlessDisplay() = default;

// --- Before a dialog opens ---------------------------------------------------------

void HeadlessDisplay::OnNextDialog(Script script) {
    m_Scripts.push_back(std::move(script));
}

void HeadlessDisplay::AnswerSave(const char* path) {
    m_Saves.push_back({path != nullptr, path != nullptr ? path : ""});
}

CWnd& HeadlessDisplay::Use(int id) {
    CWnd& control = Control(id);
    if (control.IsWindowEnabled() && control.IsWindowVisible()) m_Focus = &control;
    return control;
}

// --- What a person does --------------------------------------------------------------

void HeadlessDisplay::Click(int id) {
    Note("click " + Number(id));
    input::Click(Use(id));
}

void HeadlessDisplay::Type(int id, std::string_view text) {
    Note("type " + Number(id) + " " + std::string(text));
    input::Type(Use(id), text);
}

void HeadlessDisplay::Select(int id, int index) {
    Note("select " + Number(id) + " " + Number(index));
    input::Select(Use(id), index);
}

void HeadlessDisplay::SelectText(int id, std::string_view text) {
    const std::vector<std::string> entries = Entries(id);
    const auto found = std::ranges::find(entries, text);
    if (found == entries.end())
        throw std::runtime_error("no entry \"" + std::string(text) + "\" in " + Number(id));
    Select(id, static_cast<int>(found - entries.begin()));
}

void HeadlessDisplay::Tab(int index) {
    Select(IDC_TAB_CONTROL, index);
}

void HeadlessDisplay::Drag(int id, int position) {
    Note("drag " + Number(id) + " " + Number(position));
    auto& slider = dynamic_cast<CSliderCtrl&>(Use(id));
    input::Slide(slider, position);
    input::Paint(slider);
}

void HeadlessDisplay::Release(int id) {
    Note("release " + Number(id));
    input::Release(dynamic_cast<CSliderCtrl&>(Control(id)));
}

void HeadlessDisplay::CloseFrame() {
    Note("close frame");
    if (CDialog* dialog = Front()) input::Close(*dialog);
}

void HeadlessDisplay::Advance(unsigned milliseconds) {
    const uint64_t until = m_Now + milliseconds;
    for (;;) {
        if (Front() != nullptr && Front()->HasEnded()) break; // its loop is over
        const auto next = std::ranges::min_element(m_Timers, {}, &Timer::due);
        if (next == m_Timers.end() || next->due > until) break;
        m_Now = std::max(m_Now, next->due);
        next->due = m_Now + next->period;
        input::Tick(*next->window, next->id); // may add and remove timers
    }
    m_Now = std::max(m_Now, until);
}

// --- What a person sees ------------------------------------------------------------------

CDialog* HeadlessDisplay::Front() const {
    return m_Modal.empty() ? nullptr : m_Modal.back();
}

CDialog* HeadlessDisplay::FrontPage() const {
    CPropertyPage* page = PageInFront(Front());
    return page != nullptr ? page : Front();
}

bool HeadlessDisplay::Has(int id) const {
    const CDialog* page = FrontPage();
    return page != nullptr &&
           (page->GetDlgItem(id) != nullptr || Front()->GetDlgItem(id) != nullptr);
}

CWnd& HeadlessDisplay::Control(int id) const {
    if (const CDialog* page = FrontPage()) {
        if (CWnd* control = page->GetDlgItem(id)) return *control;
        if (CWnd* control = Front()->GetDlgItem(id)) return *control;
    }
    throw std::runtime_error("no control " + Number(id) + " in front");
}

bool HeadlessDisplay::Checked(int id) const {
    return dynamic_cast<CButton&>(Control(id)).GetCheck();
}

std::vector<std::string> HeadlessDisplay::Entries(int id) const {
    CWnd& control = Control(id);
    if (const auto* tab = dynamic_cast<CTabCtrl*>(&control)) return tab->GetTitles();
    return dynamic_cast<CComboBox&>(control).GetEntries();
}

int HeadlessDisplay::Selection(int id) const {
    CWnd& control = Control(id);
    if (const auto* tab = dynamic_cast<CTabCtrl*>(&control)) return tab->GetCurSel();
    return dynamic_cast<CComboBox&>(control).GetCurSel();
}

int HeadlessDisplay::Position(int id) const {
    return dynamic_cast<CSliderCtrl&>(Control(id)).GetPos();
}

std::string HeadlessDisplay::ToolTip(int id) const {
    const auto found = m_ToolTips.find(&Control(id));
    return found != m_ToolTips.end() ? found->second : "";
}

std::vector<std::string> HeadlessDisplay::Boxes() const {
    std::vector<std::string> boxes;
    for (const std::string& line : m_Log)
        if (line.starts_with("box ")) boxes.push_back(line.substr(4, line.rfind(" -> ") - 4));
    return boxes;
}

// --- Display -----------------------------------------------------------------------------------

bool HeadlessDisplay::Prepare(std::string& reason) {
    reason = m_Refusal;
    return m_Refusal.empty();
}

bool HeadlessDisplay::Create(CDialog& dialog) {
    Note("create " + Number(dialog.GetDlgCtrlID()));
    ++m_OpenWindows;
    return true;
}

void HeadlessDisplay::Destroy(CDialog& dialog) {
    Note("destroy " + Number(dialog.GetDlgCtrlID()));
    --m_OpenWindows;
    m_Focus = nullptr;
    std::erase_if(m_Timers, [&](const Timer& timer) { return timer.window == &dialog; });
    for (const auto& control : dialog.GetControls()) m_ToolTips.erase(control.get());
}

void HeadlessDisplay::Refresh(CWnd&, Change) {} // scripts look at the models

void HeadlessDisplay::RunModal(CDialog& dialog) {
    if (dialog.HasEnded()) return;
    m_Modal.push_back(&dialog);
    Note("run " + Number(dialog.GetDlgCtrlID()));
    Script script = m_OtherDialogs;
    if (!m_Scripts.empty()) {
        script = std::move(m_Scripts.front());
        m_Scripts.pop_front();
    }
    try {
        if (script) script();
    } catch (const std::exception& error) {
        m_ScriptErrors.push_back(error.what());
        std::cerr << "script of dialog " << dialog.GetDlgCtrlID() << ": " << error.what() << '\n';
    }
    if (!dialog.HasEnded()) CloseFrame();
    if (!dialog.HasEnded()) dialog.EndDialog(IDCANCEL); // a handler threw on the way
    Note("end " + Number(dialog.GetDlgCtrlID()));
    m_Modal.pop_back();
}

void HeadlessDisplay::EndModal(CDialog&) {} // RunModal looks at HasEnded

int HeadlessDisplay::ShowMessage(CWnd*, const char* text, const char* title, unsigned flags) {
    m_CancelBox = false;
    if (m_DuringBox) std::exchange(m_DuringBox, nullptr)();
    int answer = (flags & MB_YESNO) != 0 ? IDNO : IDOK;
    if (m_CancelBox) {
        // the refusal, whatever was queued
    } else if (!m_Answers.empty()) {
        answer = m_Answers.front();
        m_Answers.pop_front();
    } else if (m_ChooseAnswer) {
        answer = m_ChooseAnswer(text, flags);
    } else {
        ++m_Unanswered;
    }
    Note(std::string("box [") + title + "] " + text + " -> " + Number(answer));
    return answer;
}

bool HeadlessDisplay::AskSaveFile(SaveFileRecord& record) {
    Save save{false, ""};
    if (!m_Saves.empty()) {
        save = m_Saves.front();
        m_Saves.pop_front();
    }
    Note(std::string("save in ") + record.initialDirectory + " -> " +
         (save.accepted ? save.path : "cancelled"));
    if (!save.accepted || save.path.size() >= record.maxFile) return false;
    std::memcpy(record.file, save.path.c_str(), save.path.size() + 1);
    return true;
}

void HeadlessDisplay::StartTimer(CWnd& window, unsigned id, unsigned milliseconds) {
    StopTimer(window, id);
    m_Timers.push_back({&window, id, milliseconds, m_Now + milliseconds});
}

void HeadlessDisplay::StopTimer(CWnd& window, unsigned id) {
    std::erase_if(
        m_Timers, [&](const Timer& timer) { return timer.window == &window && timer.id == id; });
}

bool HeadlessDisplay::MeasureTabbedText(const CWnd&, std::string_view text, int& width) {
    if (m_CharacterWidth == 0) return false;
    int column = 0;
    for (const char character : text)
        column = character == '\t' ? (column / kTabStop + 1) * kTabStop : column + 1;
    width = column * m_CharacterWidth;
    return true;
}

void HeadlessDisplay::SetToolTip(CWnd& control, const char* text, int) {
    m_ToolTips[&control] = text;
}

void HeadlessDisplay::Beep(unsigned) {
    Note("beep");
}

std::unique_ptr<Display> MakeDisplay() {
    return std::make_unique<HeadlessDisplay>();
}
