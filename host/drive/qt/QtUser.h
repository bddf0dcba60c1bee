// QtUser: a person at Qt windows whose widgets bear the resource numbers as object names.

#pragma once

#include <QWidget>

#include "host/drive/User.h"

class QFileDialog;
class QMessageBox;

namespace etmhost {

/// Sends the widgets the events of mouse and keyboard. REQUIRES: a QApplication, on its thread.
class QtUser : public User {
public:
    FrontWindow Front() override;
    bool Has(int id) override { return Look(id) != nullptr; }
    std::vector<int> WithCaption(const std::string& caption) override;

    void Click(int id) override;
    void Type(int id, const std::string& text) override;
    void Select(int id, int index) override;
    void Tab(int index) override;
    void Drag(int id, int position) override;
    void Press(const KeyName& key) override;
    void Write(const std::string& text) override;
    void CloseFrame() override;
    void AnswerBox(Answer answer) override;
    void SaveAs(const std::string& path) override;
    void TakePicture(const std::filesystem::path& file) override;

    std::string Text(int id) override;
    bool Enabled(int id) override { return Find(id)->isEnabled(); }
    bool Visible(int id) override { return Find(id)->isVisible(); }
    bool Checked(int id) override;
    int Selection(int id) override { return Find(id)->property("currentIndex").toInt(); }
    std::vector<std::string> Entries(int id) override;
    std::string Help() override;
    int Focus() override;

    /// The widget of a control of the window in front; throws std::runtime_error without one.
    QWidget* Find(int id);
    /// The modal window in front, or null.
    static QWidget* Window();

private:
    static QWidget* Look(int id);
    /// What gets a key in the window in front.
    static QWidget* FocusWidget();
};

} // namespace etmhost
