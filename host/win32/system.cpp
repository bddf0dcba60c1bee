#include "host/system.h"

#define WIN32_LEAN_AND_MEAN
#ifndef NOMINMAX // one standard library defines it already
#define NOMINMAX
#endif
#include <windows.h>

#include "host/host_error.h"

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
    if (length == 0 && size != 0) {
        return std::nullopt;
    }
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

Library::Library(const std::filesystem::path& file) {
    SetErrorMode(SEM_FAILCRITICALERRORS | SEM_NOOPENFILEERRORBOX); // no boxes: the text below tells
    handle_ = LoadLibraryW(file.c_str());
    if (handle_ == nullptr) {
        throw HostError("cannot load the module: \"" + PathText(file) + "\": system error " +
                        std::to_string(GetLastError()));
    }
}

Library::~Library() {
    FreeLibrary(static_cast<HMODULE>(handle_));
}

void* Library::Find(const char* name) const {
    return reinterpret_cast<void*>(GetProcAddress(static_cast<HMODULE>(handle_), name));
}

} // namespace etmhost
