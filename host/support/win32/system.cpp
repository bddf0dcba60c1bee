#include "host/support/system.h"

#define WIN32_LEAN_AND_MEAN
#ifndef NOMINMAX // one standard library defines it already
#define NOMINMAX
#endif
#include <windows.h>

#include <cstdlib>

#include "host/support/host_error.h"

namespace etmhost {

std::filesystem::path ExecutableFile() {
    std::wstring buffer(32768, L'\0');
    const DWORD length =
        GetModuleFileNameW(nullptr, buffer.data(), static_cast<DWORD>(buffer.size()));
    buffer.resize(length < buffer.size() ? length : 0);
    return buffer;
}

const char* LibraryExtension() {
    return ".dll";
}

std::optional<std::filesystem::path> NativePath(const std::string& text) {
    const int size = static_cast<int>(text.size());
    const int length =
        MultiByteToWideChar(CP_ACP, MB_ERR_INVALID_CHARS, text.data(), size, nullptr, 0);
    if (length == 0 && size != 0) return std::nullopt;
    std::wstring wide(static_cast<size_t>(length), L'\0');
    MultiByteToWideChar(CP_ACP, MB_ERR_INVALID_CHARS, text.data(), size, wide.data(), length);
    return std::filesystem::path(wide);
}

std::string PathText(const std::filesystem::path& path) {
    const std::wstring& wide = path.native();
    const int size = static_cast<int>(wide.size());
    const int length =
        WideCharToMultiByte(CP_ACP, 0, wide.data(), size, nullptr, 0, nullptr, nullptr);
    std::string text(static_cast<size_t>(length), '\0');
    WideCharToMultiByte(CP_ACP, 0, wide.data(), size, text.data(), length, nullptr, nullptr);
    return text;
}

namespace {

HANDLE HandleOf(Output output) {
    return GetStdHandle(output == Output::Errors ? STD_ERROR_HANDLE : STD_OUTPUT_HANDLE);
}

} // namespace

bool IsTerminal(Output output) {
    DWORD mode = 0;
    return GetConsoleMode(HandleOf(output), &mode) != FALSE;
}

size_t TerminalWidth(Output output) {
    CONSOLE_SCREEN_BUFFER_INFO info{};
    const BOOL known = GetConsoleScreenBufferInfo(HandleOf(output), &info);
    return known ? static_cast<size_t>(info.srWindow.Right - info.srWindow.Left) + 1 : 0;
}

void SetVariable(const char* name, const std::string& value) {
    _putenv_s(name, value.c_str()); // not SetEnvironmentVariable, which the C library does not see
}

void OutliveReaders() {} // it is so

bool OutputIsPipe() {
    return GetFileType(GetStdHandle(STD_OUTPUT_HANDLE)) == FILE_TYPE_PIPE;
}

namespace {

// How long an operation that failed with `error` is worth another try, in ms: long where somebody
// has the file open, shorter where he may be removing it, or it may be out of reach for good.
ULONGLONG Patience(DWORD error) {
    return error == ERROR_SHARING_VIOLATION ? 10000 : error == ERROR_ACCESS_DENIED ? 1000 : 0;
}

} // namespace

bool MoveOver(const std::filesystem::path& from, const std::filesystem::path& to) {
    const ULONGLONG start = GetTickCount64();
    for (;;) { // a program that reads the file keeps it for a moment
        if (MoveFileExW(from.c_str(), to.c_str(), MOVEFILE_REPLACE_EXISTING)) return true;
        if (GetTickCount64() - start >= Patience(GetLastError())) return false;
        Sleep(1);
    }
}

FileLock::FileLock(const std::filesystem::path& file) : m_File(file) {
    const ULONGLONG start = GetTickCount64();
    for (;;) { // the system removes the file with its handle
        m_Handle = CreateFileW(m_File.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS,
                               FILE_ATTRIBUTE_NORMAL | FILE_FLAG_DELETE_ON_CLOSE, nullptr);
        if (m_Handle != INVALID_HANDLE_VALUE) return;
        const DWORD error = GetLastError();
        if (GetTickCount64() - start >= Patience(error)) {
            throw HostError("cannot write lock file \"" + PathText(m_File) + "\": system error " +
                            std::to_string(error));
        }
        Sleep(1);
    }
}

FileLock::~FileLock() {
    CloseHandle(m_Handle);
}

Library::Library(const std::filesystem::path& file) {
    SetErrorMode(SEM_FAILCRITICALERRORS | SEM_NOOPENFILEERRORBOX); // no boxes: the text below tells
    m_Handle = LoadLibraryW(file.c_str());
    if (m_Handle == nullptr) {
        throw HostError("cannot load the module: \"" + PathText(file) + "\": system error " +
                        std::to_string(GetLastError()));
    }
}

Library::~Library() {
    FreeLibrary(static_cast<HMODULE>(m_Handle));
}

void* Library::Find(const char* name) const {
    return reinterpret_cast<void*>(GetProcAddress(static_cast<HMODULE>(m_Handle), name));
}

} // namespace etmhost
