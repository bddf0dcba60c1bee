// QtTest: an application, a person at it, and a dialog with controls of many kinds.

#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QTest>

#include "tests/module/QtPerson.h"
#include "toolkit/CPropertySheet.h"

inline constexpr ControlTemplate kTestControls[] = {
    {10, ControlKind::Static, "Name :", 7, 7, 40, 8},
    {11, ControlKind::Edit, "", 50, 5, 80, 14},
    {12, ControlKind::Edit, "", 7, 24, 123, 30, style::MultiLine | style::WantReturn, "Text"},
    {13, ControlKind::Edit, "", 7, 58, 123, 30, style::MultiLine | style::ReadOnly, "Note"},
    {20, ControlKind::RadioButton, "First", 14, 102, 40, 10, style::Group},
    {21, ControlKind::RadioButton, "Second", 54, 102, 40, 10},
    {22, ControlKind::RadioButton, "Third", 94, 102, 30, 10},
    {30, ControlKind::CheckBox, "Check", 7, 122, 50, 10, style::Group},
    {32, ControlKind::Slider, "", 7, 136, 80, 18},
    {50, ControlKind::Edit, "", 90, 138, 40, 14, style::DigitsOnly},
    {40, ControlKind::PushButton, "Press", 7, 158, 40, 14},
    {1, ControlKind::PushButton, "OK", 48, 158, 40, 14, style::Default},
    {2, ControlKind::PushButton, "Cancel", 90, 158, 40, 14},
};
inline constexpr DialogTemplate kTestTemplate = {900, "Test", 137, 177, kTestControls};

struct TestDialog : CDialog {
    TestDialog() : CDialog(900) { m_DialogTemplate = &kTestTemplate; }
    void OnNotify(Notification& notification) override {
        if (notification.event != Event::Clicked) return;
        clicks.push_back(notification.id);
        if (onClick) onClick();
    }
    void OnTimer(unsigned) override { onTick(); }
    std::function<void()> onTick, onClick;
    std::vector<int> clicks; // the numbers of the buttons
};

class QtTest : public ::testing::Test {
protected:
    ~QtTest() override { EXPECT_EQ(user.Surprises(), 0); }

    /// Runs a dialog or sheet with a person who follows `script` and then closes it.
    int Run(CDialog& modal, std::function<void()> script) {
        user.OnNextDialog([script](QtPerson&) {
            EXPECT_TRUE(QTest::qWaitForWindowActive(QtPerson::Window()));
            script();
        });
        if (!user.Watching()) user.Watch();
        return modal.DoModal();
    }
    int Run(std::function<void()> script) { return Run(dialog, std::move(script)); }
    void Press(Qt::Key key, Qt::KeyboardModifiers modifiers = {}) {
        QTest::keyClick(QtPerson::Window()->focusWidget(), key, modifiers);
    }
    void PressOn(int id, Qt::Key key, Qt::KeyboardModifiers modifiers = {}) {
        user.Find(id)->setFocus();
        Press(key, modifiers);
    }

    Application application;
    QtPerson user;
    TestDialog dialog;
};
