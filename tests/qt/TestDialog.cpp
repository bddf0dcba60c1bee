#include "tests/qt/TestDialog.h"

#include <gtest/gtest.h>

namespace {

using enum ControlKind;

constexpr const char* kEntries[] = {"one", "two", "three"};

constexpr ControlTemplate kControls[] = {
    {10, Static, "Name :", 7, 7, 40, 8},
    {11, Edit, "", 50, 5, 80, 14},
    {12, Edit, "", 7, 24, 123, 30, style::MultiLine | style::WantReturn, "Text"},
    {13, Edit, "", 7, 58, 123, 30, style::MultiLine | style::ReadOnly, "Note"},
    {20, RadioButton, "First", 14, 102, 40, 10, style::Group},
    {21, RadioButton, "Second", 54, 102, 40, 10},
    {22, RadioButton, "Third", 94, 102, 30, 10},
    {60, GroupBox, "Radio buttons", 7, 92, 123, 26, style::Group},
    {30, CheckBox, "Check", 7, 122, 50, 10},
    {31, ComboBox, "", 60, 120, 70, 60, style::None, "Number", kEntries},
    {32, Slider, "", 7, 136, 80, 18, style::TicksBothSides, "Level"},
    {50, Edit, "", 90, 138, 40, 14, style::DigitsOnly, "Level"},
    {33, CheckBox, "", 1000, 7, 10, 10, style::None, "Out of sight"},
    {40, PushButton, "Press", 7, 158, 40, 14},
    {1, PushButton, "OK", 48, 158, 40, 14, style::Default},
    {2, PushButton, "Cancel", 90, 158, 40, 14},
};

constexpr DialogTemplate kTemplate = {900, "Test", 137, 177, kControls};

const char* Name(Event event) {
    switch (event) {
    case Event::Clicked:
        return "click";
    case Event::TextChanged:
        return "text";
    case Event::SelectionChanged:
        return "select";
    case Event::ReleasedCapture:
        return "release";
    case Event::CustomDraw:
        break;
    }
    return "paint";
}

} // namespace

TestDialog::TestDialog(CWnd* parent) : CDialog(kTemplate.id, parent) {
    m_DialogTemplate = &kTemplate;
    m_Text = kTemplate.caption;
}

int TestDialog::Run(std::deque<Person::Step> steps) {
    m_Steps = std::move(steps);
    const int result = DoModal();
    EXPECT_FALSE(m_Person->HasStepsLeft());
    m_Person.reset();
    return result;
}

bool TestDialog::OnInitDialog() {
    if (onInit) onInit();
    m_Person = std::make_unique<Person>(std::move(m_Steps));
    return CDialog::OnInitDialog();
}

void TestDialog::OnNotify(Notification& notification) {
    if (notification.event != Event::CustomDraw)
        notes.push_back(std::string(Name(notification.event)) + " " +
                        std::to_string(notification.id));
    if (notification.event == Event::Clicked && onClick) onClick(notification.id);
}
