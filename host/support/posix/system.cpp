#include "host/support/system.h"

#include <dlfcn.h>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <thread>

#include "host/support/host_error.h"

namespace etmhost {

std::filesystem::path ExecutableFile() {
    std::error_code error;
    const std::filesystem::path file = std::filesystem::read_symlink("/proc/self/exe", error);
    return error ? std::filesystem::path() : file;
}

const char* LibraryExtension() {
    return ".so";
}

std::optional<std::filesystem::path> NativePath(const std::string& text) {
    return std::filesystem::path(text);
}

std::string PathText(const std::filesystem::path& path) {
    return path.string();
}

namespace {

int HandleOf(Output output) {
    return output == Output::Errors ? STDERR_FILENO : STDOUT_FILENO;
}

} // namespace

bool IsTerminal(Output output) {
    return isatty(HandleOf(output)) != 0;
}

size_t TerminalWidth(Output output) {
    winsize size{};
    return ioctl(HandleOf(output), TIOCGWINSZ, &size) == 0 ? size.ws_col : 0;
}

void SetVariable(const char* name, const std::string& value) {
    setenv(name, value.c_str(), 1);
}

void OutliveReaders() {
    std::signal(SIGPIPE, SIG_IGN);
}

bool OutputIsPipe() {
    struct stat output;
    return fstat(STDOUT_FILENO, &output) == 0 &&
           (S_ISFIFO(output.st_mode) || S_ISSOCK(output.st_mode));
}

bool MoveOver(const std::filesystem::path& from, const std::filesystem::path& to) {
    std::error_code error;
    std::filesystem::rename(from, to, error);
    return !error;
}

namespace {

enum class Attempt { Locked, Busy, Failed };

// Another program may have removed the file between its opening and its locking: the lock counts
// only on the file that bears the name.
Attempt TryLock(const char* file, int& handle) {
    handle = open(file, O_RDWR | O_CREAT | O_CLOEXEC, 0666);
    if (handle < 0) return Attempt::Failed;
    struct stat opened, named;
    if (flock(handle, LOCK_EX | LOCK_NB) == 0) {
        if (fstat(handle, &opened) == 0 && stat(file, &named) == 0 &&
            opened.st_dev == named.st_dev && opened.st_ino == named.st_ino)
            return Attempt::Locked;
        errno = EWOULDBLOCK;
    }
    const bool busy = errno == EWOULDBLOCK || errno == EINTR;
    close(handle);
    return busy ? Attempt::Busy : Attempt::Failed;
}

} // namespace

FileLock::FileLock(const std::filesystem::path& file) : m_File(file), m_Handle(-1) {
    using namespace std::chrono;
    const auto deadline = steady_clock::now() + seconds(10);
    Attempt attempt;
    while ((attempt = TryLock(m_File.c_str(), m_Handle)) == Attempt::Busy &&
           steady_clock::now() < deadline)
        std::this_thread::sleep_for(milliseconds(1));
    if (attempt != Attempt::Locked) {
        throw HostError(attempt == Attempt::Busy
                            ? "another program keeps the lock file \"" + PathText(m_File) + "\""
                            : "cannot write lock file \"" + PathText(m_File) + "\"");
    }
}

FileLock::~FileLock() {
    unlink(m_File.c_str()); // ahead of the release, so that nobody locks a file without a name
    close(m_Handle);
}

Library::Library(const std::filesystem::path& file)
    : m_Handle(dlopen(file.c_str(), RTLD_NOW | RTLD_LOCAL)) {
    if (m_Handle == nullptr) {
        const char* reason = dlerror();
        throw HostError("cannot load the module: " +
                        (reason != nullptr ? std::string(reason) : file.string()));
    }
}

Library::~Library() {
    dlclose(m_Handle);
}

void* Library::Find(const char* name) const {
    return dlsym(m_Handle, name);
}

} // namespace etmhost
