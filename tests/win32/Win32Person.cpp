#include "tests/win32/Win32Person.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <stdexcept>
#include <thread>

bool Win32Person::Open(IOrnKVETMCtrl& control) {
    std::thread person([this] {
        for (uint64_t waited = 0; FrontHandle() == nullptr; waited += 5) {
            if (waited > etmhost::kStepPatience) throw std::runtime_error("no dialog came up");
            Sleep(5);
        }
        Attend(FrontHandle());
    });
    const bool opened = control.Open();
    person.join();
    return opened;
}

void Win32Person::Settle() {
    const HWND window = m_Attended.back();
    while (LetWorkAt(window) && FrontHandle() != window) {
        const HWND front = FrontHandle();
        if (front != nullptr && std::ranges::count(m_Attended, front) == 0) Attend(front);
    }
}

void Win32Person::Attend(HWND window) {
    m_Attended.push_back(window);
    if (IsSaveDialog(window))
        AttendSaveDialog(window);
    else if (IsBox(window))
        AttendBox(window);
    else
        RunScript(window);
    const ULONGLONG limit = GetTickCount64() + etmhost::kStepPatience;
    while (LetWorkAt(window)) { // something may still come up, such as a question
        Settle();
        if (GetTickCount64() > limit) throw std::runtime_error("stays open: " + TextOf(window));
    }
    m_Attended.pop_back();
}

void Win32Person::RunScript(HWND window) {
    try {
        LetWorkAt(window); // it may not have its focus yet
        Next<Script>(m_Scripts, [](Win32Person&) {})(*this);
    } catch (const std::exception& error) {
        ADD_FAILURE() << error.what();
    }
    if (IsWindow(window)) PostMessageA(window, WM_SYSCOMMAND, SC_CLOSE, 0);
}

void Win32Person::AttendBox(HWND box) {
    const etmhost::FrontWindow front = Front();
    m_Boxes.push_back("[" + front.title + "] " + front.text);
    for (const WPARAM key : {VK_RETURN, VK_ESCAPE}) Post(box, WM_KEYDOWN, key, kHeld);
    const int answer = Next<int>(m_Answers, IDCANCEL);
    if (answer == kEscape) AnswerBox(etmhost::Answer::Escape);
    if (answer >= 0) PressAnswer(answer);
}

void Win32Person::AttendSaveDialog(HWND dialog) {
    do { // again if a question kept it open
        std::string path = Next<std::string>(m_Saves, "");
        if (path == kNoFile) return;
        std::ranges::replace(path, '/', '\\');
        Post(NameField(dialog), WM_KEYDOWN, VK_ESCAPE, kHeld);
        SaveAs(path);
    } while (IsWindow(dialog) && !m_Saves.empty());
}
