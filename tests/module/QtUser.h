// QtUser: a person at the Qt windows of the module, found by their object names.

#pragma once

#include <QObject>
#include <deque>
#include <set>
#include <string>
#include <vector>

#include "tests/scenarios/User.h"

class QFileDialog;
class QMessageBox;
class QWidget;

/// REQUIRES: a QApplication, while windows are open.
class QtUser final : public User {
public:
    QtUser();
    ~QtUser() override;

    /// Watches for windows from now on and runs what was prepared for them.
    void Watch();
    bool Watching() const { return m_Context != nullptr; }

    void OnNextDialog(Script script) override { m_Scripts.push_back(std::move(script)); }
    void Answer(int result) override { m_Answers.push_back(result); }
    void AnswerSave(const char* path) override { m_Saves.push_back(path != nullptr ? path : ""); }
    void Click(int id) override;
    void Type(int id, const char* text) override;
    void Select(int id, int index) override;
    void Tab(int index) override;
    void Drag(int id, int position) override;
    void CloseFrame() override;
    void Wait(unsigned milliseconds) override;

    std::string Text(int id) override;
    bool Enabled(int id) override;
    bool Visible(int id) override;
    bool Checked(int id) override;
    int Selection(int id) override;
    int TabInFront() override;
    std::vector<std::string> Boxes() override { return m_Boxes; }

    /// The widget of a control of the window in front; fails the test without one.
    QWidget* Find(int id);
    /// The modal window in front, or null.
    static QWidget* Window();
    /// Dialogs that opened although nothing was prepared for them.
    int Surprises() const { return m_Surprises; }

private:
    void Poll();
    void AnswerBox(QMessageBox& box);
    void AnswerSaveDialog(QFileDialog& dialog);

    std::deque<Script> m_Scripts;
    std::deque<int> m_Answers;
    std::deque<std::string> m_Saves;
    std::vector<std::string> m_Boxes;
    std::set<QWidget*> m_Seen;
    int m_Surprises = 0;
    QObject* m_Context = nullptr; // its end stops the watch
};
