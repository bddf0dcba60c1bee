// PreparedUser: what a person at real windows was told beforehand, whatever draws them.

#pragma once

#include <deque>
#include <utility>

#include "tests/scenarios/User.h"

class PreparedUser : public User {
public:
    void OnNextDialog(Script script) override { m_Scripts.push_back(std::move(script)); }
    void Answer(int result) override { m_Answers.push_back(result); }
    void AnswerSave(const char* path) override { m_Saves.push_back(path != nullptr ? path : ""); }
    std::vector<std::string> Boxes() override { return m_Boxes; }

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

    std::deque<Script> m_Scripts;
    std::deque<int> m_Answers;
    std::deque<std::string> m_Saves;
    std::vector<std::string> m_Boxes;

private:
    int m_Surprises = 0;
};
