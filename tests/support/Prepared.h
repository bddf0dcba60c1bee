// Prepared: a person at real windows who was told beforehand what to do in each.

#pragma once

#include <deque>
#include <functional>
#include <stdexcept>
#include <utility>

#include "host/drive/User.h"
#include "toolkit/constants.h"

/// `Person` derives from this; `Base` is the user of the windows that it sits at.
template <class Person, class Base> class Prepared : public Base {
public:
    using Script = std::function<void(Person&)>;

    // Said before the click that brings the window up.
    void OnNextDialog(Script script) { m_Scripts.push_back(std::move(script)); }
    void Answer(int result) { m_Answers.push_back(result); } // to the next message box
    /// In the save dialog; null: cancel.
    void AnswerSave(const char* path) { m_Saves.push_back(path != nullptr ? path : ""); }

    /// The message boxes so far: "[title] text".
    const std::vector<std::string>& Boxes() const { return m_Boxes; }
    /// Windows that came up although nothing was prepared for them.
    int Surprises() const { return m_Surprises; }

protected:
    /// Takes the first of `prepared`; without one, counts a surprise and gives `otherwise`.
    template <class T> T Next(std::deque<T>& prepared, T otherwise) {
        if (prepared.empty()) return ++m_Surprises, otherwise;
        T next = std::move(prepared.front());
        prepared.pop_front();
        return next;
    }

    /// Answers the box in front by a button, or, where it has none such, by closing it.
    void PressAnswer(int result) {
        try {
            this->AnswerBox(result == IDYES  ? etmhost::Answer::Yes
                            : result == IDNO ? etmhost::Answer::No
                                             : etmhost::Answer::Ok);
        } catch (const std::runtime_error&) {
            this->CloseFrame();
        }
    }

    std::deque<Script> m_Scripts;
    std::deque<int> m_Answers;
    std::deque<std::string> m_Saves;
    std::vector<std::string> m_Boxes;

private:
    int m_Surprises = 0;
};
