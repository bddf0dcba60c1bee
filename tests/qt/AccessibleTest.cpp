// What a screen reader is told of the windows, over the tree that it walks.

#include <QAccessible>
#include <QMessageBox>
#include <QTabBar>

#include "tests/qt/QtTest.h"

namespace {

using Kind = QAccessible::Role;

std::string NameOf(QAccessibleInterface& seen) {
    return seen.text(QAccessible::Name).toStdString();
}

/// The names of what labels a control, one behind the other.
std::string NamesOfLabels(QAccessibleInterface& seen) {
    std::string names;
    for (const auto& [label, relation] : seen.relations(QAccessible::Label))
        names += (names.empty() ? "" : "|") + NameOf(*label);
    return names;
}

/// Names what is wrong with the tree below `seen`, and counts what can be used.
std::string Faults(QAccessibleInterface& seen, const QRect& around, int& usable) {
    const std::string name = NameOf(seen);
    const QAccessible::State state = seen.state();
    if (state.invisible) return {};
    std::string faults;
    const auto fault = [&](const char* what) { faults += " [" + name + "] " + what; };
    const Kind role = seen.role();
    const bool silent =
        role == Kind::EditableText || role == Kind::ComboBox || role == Kind::Slider;
    if (state.focusable && name.empty()) fault("has no name");
    if (name.find('&') != std::string::npos) fault("has an ampersand");
    if (silent && NamesOfLabels(seen).empty()) fault("has no label");
    if (role == Kind::Slider && seen.valueInterface() == nullptr) fault("has no value");
    if (role == Kind::RadioButton &&
        (seen.parent()->role() != Kind::Grouping || NamesOfLabels(seen) != NameOf(*seen.parent())))
        fault("has no group");
    if (!around.contains(seen.rect())) fault("is outside");
    usable += state.focusable && !state.disabled ? 1 : 0;
    for (int i = 0; i < seen.childCount(); ++i) {
        QAccessibleInterface* const child = seen.child(i);
        if (child->parent() != &seen || seen.indexOfChild(child) != i) fault("loses a child");
        if (role != Kind::ComboBox) faults += Faults(*child, seen.rect(), usable);
    }
    return faults;
}

/// Names the controls of a dialog or page that are not told as they are.
std::string Faults(CDialog& dialog, QtPerson& user) {
    const std::map<ControlKind, Kind> roles = {
        {ControlKind::Static, Kind::StaticText}, {ControlKind::PushButton, Kind::Button},
        {ControlKind::CheckBox, Kind::CheckBox}, {ControlKind::RadioButton, Kind::RadioButton},
        {ControlKind::GroupBox, Kind::Grouping}, {ControlKind::Edit, Kind::EditableText},
        {ControlKind::ComboBox, Kind::ComboBox}, {ControlKind::Slider, Kind::Slider},
    };
    std::string faults;
    for (const auto& control : dialog.GetControls()) {
        const int id = control->GetDlgCtrlID();
        if (id <= 0 || !user.Has(id)) continue;
        auto& seen = *QAccessible::queryAccessibleInterface(user.Find(id));
        const QAccessible::State state = seen.state();
        const bool marked = seen.role() == Kind::RadioButton || seen.role() == Kind::CheckBox;
        if (seen.role() != roles.at(control->GetKind()) ||
            state.invisible == control->IsWindowVisible() ||
            state.disabled == control->IsWindowEnabled() ||
            (marked && bool(state.checked) != static_cast<CButton&>(*control).GetCheck()))
            faults += " " + std::to_string(id);
    }
    return faults;
}

struct ScreenReader : QtTest {
    std::string Label(int id) {
        return NamesOfLabels(*QAccessible::queryAccessibleInterface(user.Find(id)));
    }
};

TEST_F(ScreenReader, LearnsTheNameTheLabelAndTheGroupOfEachControl) {
    CPropertyPage control{107}, trigger{108}, status{106};
    CPropertySheet sheet("Sheet", nullptr, 0);
    for (CPropertyPage* page : {&control, &trigger, &status}) sheet.AddPage(page);
    const auto look = [&](CDialog& page, int least) {
        auto& window = *QAccessible::queryAccessibleInterface(QtPerson::Window());
        int usable = 0;
        EXPECT_EQ(Faults(window, window.rect(), usable), "");
        EXPECT_EQ(Faults(page, user), "");
        EXPECT_GE(usable, least);
    };
    Run(sheet, [&] {
        control.GetDlgItem(1009)->EnableWindow(false);
        for (const bool comesBack : {false, true}) { // in a disabled group, which stays so
            control.GetDlgItem(1003)->EnableWindow(false);
            control.GetDlgItem(1077)->EnableWindow(comesBack);
        }
        control.GetDlgItem(1029)->ShowWindow(SW_HIDE);
        control.CheckRadioButton(static_cast<CButton&>(*control.GetDlgItem(1034)));
        look(control, 18);
        EXPECT_EQ(Label(1007), "Before (%)|Trigger Settings");
        EXPECT_EQ(Label(1008), "Trigger Settings"); // a text names one control
        Press(Qt::Key_PageDown, Qt::ControlModifier);
        look(trigger, 18);
        EXPECT_EQ(Label(1014), "Begin:|Data Tracing Mode");
        EXPECT_EQ(Label(1019), "End:|Program Counter (PC) Tracing Mode");
        auto& tabs =
            *QAccessible::queryAccessibleInterface(QtPerson::Window()->findChild<QTabBar*>());
        EXPECT_EQ(tabs.role(), Kind::PageTabList);
        tabs.child(2)->actionInterface()->doAction(QAccessibleActionInterface::pressAction());
        QtPerson::Wait(1);
        EXPECT_EQ(user.TabInFront(), 2);
        for (int i = 0; i < 3; ++i) {
            EXPECT_EQ(tabs.child(i)->role(), Kind::PageTab);
            EXPECT_EQ(bool(tabs.child(i)->state().selected), i == 2);
            EXPECT_FALSE(tabs.child(i)->state().focused); // the keyboard is in the page
        }
        look(status, 8);
        EXPECT_EQ(Label(1063), "ETM Resources");
    });
    CDialog configuration(1001);
    Run(configuration, [&] {
        look(configuration, 8);
        EXPECT_EQ(Label(1080), "Board File Commands :");
    });
}

TEST_F(ScreenReader, ReadsTheTitleAndTheTextOfABox) {
    std::string read;
    QTimer::singleShot(0, &application.qt, [&] {
        auto& box = *QAccessible::queryAccessibleInterface(QApplication::activeModalWidget());
        EXPECT_EQ(box.role(), Kind::AlertMessage);
        read = NameOf(box) + ": " + box.text(QAccessible::Description).toStdString();
        static_cast<QDialog*>(QApplication::activeModalWidget())->reject();
    });
    MessageBoxWithoutOwner("The <text>.", "The title", MB_OK);
    EXPECT_EQ(read, "The title: The <text>.");
}

} // namespace
