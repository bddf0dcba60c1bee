// QtUser: a person at the Qt windows of the module, found by their object names.

#pragma once

#include <QApplication>
#include <QWidget>
#include <memory>
#include <set>

#include "frame/interfaces/IOrnKVETMCtrl.h"
#include "tests/support/PreparedUser.h"
#include "toolkit/constants.h"

class QFileDialog;
class QMessageBox;

/// That of a host.
struct Application {
    int argc = 1;
    char name[5] = "host";
    char* argv[2] = {name, nullptr};
    QApplication qt{argc, argv};
};

/// REQUIRES: a QApplication, while windows are open.
class QtUser final : public PreparedUser {
public:
    /// Watches for windows from now on and runs what was prepared for them.
    void Watch();
    bool Open(IOrnKVETMCtrl& control) { return Watch(), control.Open(); }
    bool Watching() const { return m_Context != nullptr; }

    void Click(int id) override;
    void Type(int id, const char* text) override;
    void Select(int id, int index) override;
    void Tab(int index) override;
    void Drag(int id, int position) override;
    void CloseFrame() override { Window()->close(); }
    void Wait(unsigned milliseconds) override;

    std::string Text(int id) override;
    bool Enabled(int id) override { return Find(id)->isEnabled(); }
    bool Visible(int id) override { return Find(id)->isVisible(); }
    bool Checked(int id) override { return Find(id)->property("checked").toBool(); }
    int Selection(int id) override { return Find(id)->property("currentIndex").toInt(); }
    int TabInFront() override { return Selection(IDC_TAB_CONTROL); }
    int Focus() override;

    /// The widget of a control of the window in front; fails the test without one.
    QWidget* Find(int id);
    /// The modal window in front, or null.
    static QWidget* Window();

private:
    void Poll();
    void AnswerBox(QMessageBox& box);
    void AnswerSaveDialog(QFileDialog& dialog);

    std::set<QWidget*> m_Seen;
    std::unique_ptr<QObject> m_Context; // its end stops the watch
};
