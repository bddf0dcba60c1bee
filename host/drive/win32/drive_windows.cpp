#include <thread>

#include "host/drive/win32/Win32User.h"
#include "host/drive/windows.h"

namespace etmhost {

std::unique_ptr<User> MakeUser() {
    return std::make_unique<Win32User>();
}

bool TakesPictures() {
    return false;
}

void DriveWindows(Interpreter& interpreter, const std::function<void()>& open) {
    constexpr DWORD pause = 5; // in ms
    struct Person {
        explicit Person(Interpreter& interpreter)
            : thread([this, &interpreter] {
                  while (!over)
                      if (!interpreter.Tick(GetTickCount64())) Sleep(pause);
                  gone = true;
              }) {}
        ~Person() {
            over = true;
            // It may wait for an answer of this thread.
            for (MSG message; !gone; Sleep(1)) PeekMessageA(&message, nullptr, 0, 0, PM_NOREMOVE);
            thread.join();
        }
        std::atomic<bool> over = false, gone = false;
        std::thread thread; // the last: it uses the others
    };
    const Person person(interpreter);
    open();
}

} // namespace etmhost
