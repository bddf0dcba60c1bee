// Program: a program that runs beside a test, and never longer. Not for Windows.

#pragma once

#include <fcntl.h>
#include <signal.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <sstream>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "host/remote/Connection.h"
#include "testkit/TemporaryDirectory.h"

/// Ends its program when it goes, and what it printed goes too.
class Program {
public:
    /// Starts `words`, whose first is a path or a name in PATH. It reads nothing.
    explicit Program(const std::vector<std::string>& words) {
        std::vector<char*> arguments;
        for (const std::string& word : words) arguments.push_back(const_cast<char*>(word.c_str()));
        arguments.push_back(nullptr);
        const std::string output = m_Directory.Write("output", "");
        const pid_t parent = getpid();
        m_Id = fork();
        if (m_Id < 0) throw std::runtime_error("no further process");
        if (m_Id > 0) return;
        prctl(PR_SET_PDEATHSIG, SIGKILL); // a test that is killed leaves nobody behind
        if (getppid() != parent) _exit(127);
        const int input = open("/dev/null", O_RDONLY),
                  file = open(output.c_str(), O_WRONLY | O_APPEND);
        dup2(input, 0);
        dup2(file, 1);
        dup2(file, 2);
        execvp(arguments[0], arguments.data());
        _exit(127);
    }
    ~Program() { Kill(); }
    Program(const Program&) = delete;
    Program& operator=(const Program&) = delete;

    /// Returns whether a program of that name is in PATH.
    static bool IsInstalled(const std::string& name) {
        const char* const path = std::getenv("PATH");
        std::istringstream folders(path != nullptr ? path : "");
        for (std::string folder; std::getline(folders, folder, ':');)
            if (access((std::filesystem::path(folder) / name).c_str(), X_OK) == 0) return true;
        return false;
    }

    /// Returns what it has printed so far, on both streams.
    std::string Output() const { return m_Directory.Read("output"); }

    /// Waits until it has printed `text`. Returns false if it has not for ten seconds.
    bool Prints(const std::string& text) const {
        return Within([&] { return Output().find(text) != std::string::npos; });
    }

    /// Waits until somebody listens at `port`, which may take it another moment to close again.
    /// Returns false if nobody has for ten seconds. Not for servers that notice a caller.
    static bool Listens(uint16_t port) {
        return Within([port] {
            try {
                etmhost::Connection::To("", port, etmhost::Deadline(std::chrono::seconds(1)));
                return true;
            } catch (const etmhost::ConnectionLost&) {
                return false;
            }
        });
    }

    /// Returns a port that nobody uses, so far.
    static uint16_t FreePort() { return etmhost::Listener(0).port(); }

    /// Asks it to end, as a person would.
    void Terminate() { kill(m_Id, SIGTERM); }

    /// Waits for its end. Returns its exit status; -1 if it has none, for ten seconds or ever.
    int Wait() {
        int status = 0;
        if (!Within([&] { return waitpid(m_Id, &status, WNOHANG) == m_Id; })) return -1;
        m_Id = 0;
        return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    }

    /// Stops it, so that it neither ends nor answers, and lets it go on.
    void Freeze() { kill(m_Id, SIGSTOP); }
    void Thaw() { kill(m_Id, SIGCONT); }

    /// Ends it at once.
    void Kill() {
        if (m_Id <= 0) return;
        kill(m_Id, SIGKILL);
        waitpid(m_Id, nullptr, 0);
        m_Id = 0;
    }

    /// Looks at `condition` until it holds. Returns false if it has not for ten seconds.
    static bool Within(const std::function<bool()>& condition) {
        for (const etmhost::Deadline deadline(std::chrono::seconds(10)); !deadline.IsOver();) {
            if (condition()) return true;
            std::this_thread::sleep_for(std::chrono::milliseconds(10));
        }
        return false;
    }

private:
    const TemporaryDirectory m_Directory;
    pid_t m_Id = 0;
};
