// TestDialog: one control of each kind, and a list of what they report.

#pragma once

#include <QApplication>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "tests/qt/Person.h"
#include "toolkit/CPropertySheet.h"

/// The host's own application, for the length of a test.
struct Application {
    int argc = 1;
    char name[8] = "host";
    char* argv[2] = {name, nullptr};
    QApplication qt{argc, argv};
};

class TestDialog : public CDialog {
public:
    explicit TestDialog(CWnd* parent = nullptr);

    /// Runs the dialog with a person at it; returns its result.
    int Run(std::deque<Person::Step> steps);
    std::vector<std::string> TakeNotes() { return std::exchange(notes, {}); }

    template <class Control> Control& Item(int id) {
        return dynamic_cast<Control&>(*GetDlgItem(id));
    }
    void OnTimer(unsigned id) override {
        notes.push_back("tick");
        if (onTick) onTick(id);
    }

    std::function<void()> onInit;
    std::function<void(int id)> onClick;
    std::function<void(unsigned id)> onTick;
    std::vector<std::string> notes;

protected:
    bool OnInitDialog() override;
    void OnNotify(Notification& notification) override;

private:
    std::deque<Person::Step> m_Steps;
    std::unique_ptr<Person> m_Person;
};
