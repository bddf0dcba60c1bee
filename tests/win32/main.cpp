// Runs the tests, and ends the program if they hang.

#include <gtest/gtest.h>
#include <windows.h>

#include <cstdio>
#include <thread>

namespace {

constexpr DWORD kLimit = 150000; // milliseconds

} // namespace

int main(int argc, char** argv) {
    ::testing::InitGoogleTest(&argc, argv);
    std::thread([] {
        Sleep(kLimit);
        std::puts("FAILED: the tests hang");
        std::fflush(stdout);
        TerminateProcess(GetCurrentProcess(), 3);
    }).detach();
    return RUN_ALL_TESTS();
}
