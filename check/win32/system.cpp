#include "check/system.h"

#define WIN32_LEAN_AND_MEAN
#ifndef NOMINMAX // one standard library defines it already
#define NOMINMAX
#endif
#include <windows.h>

#include <algorithm>
#include <cstdint>
#include <string_view>

namespace hostcheck {

size_t ReadMemory(const void* address, void* to, size_t size) {
    // The system copies: an address that is no good is an error here, and an exception elsewhere.
    SIZE_T count = 0;
    return ReadProcessMemory(GetCurrentProcess(), address, to, size, &count) ? count : 0;
}

namespace {

HMODULE ModuleAt(const void* address) {
    HMODULE module = nullptr;
    GetModuleHandleExA(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS |
                           GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
                       static_cast<const char*>(address), &module);
    return module;
}

const char g_InTheChecker = 0;

HANDLE OpenForLooking(const std::string& file) {
    return CreateFileA(file.c_str(), 0, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
                       nullptr, OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS, nullptr);
}

bool IsSeparator(char c) {
    return c == '\\' || c == '/';
}

} // namespace

std::string OwnFile() {
    std::string path(32768, '\0');
    path.resize(GetModuleFileNameA(ModuleAt(&g_InTheChecker), path.data(),
                                   static_cast<DWORD>(path.size())));
    return path;
}

std::string RealFile(const std::string& file) {
    return file; // the loader has followed the links
}

std::string FullPath(const std::string& file) {
    std::string path(32768, '\0');
    path.resize(
        GetFullPathNameA(file.c_str(), static_cast<DWORD>(path.size()), path.data(), nullptr));
    return path.empty() ? file : path;
}

bool IsFullPath(const std::string& path) {
    const bool onDrive = path.size() > 2 && path[1] == ':' && IsSeparator(path[2]);
    return onDrive || (path.size() > 1 && IsSeparator(path[0]) && IsSeparator(path[1]));
}

bool IsSameFile(const std::string& one, const std::string& other) {
    const HANDLE handles[] = {OpenForLooking(one), OpenForLooking(other)};
    BY_HANDLE_FILE_INFORMATION of[2] = {};
    bool known = true;
    for (int i = 0; i < 2; ++i) {
        known &= handles[i] != INVALID_HANDLE_VALUE &&
                 GetFileInformationByHandle(handles[i], &of[i]) != FALSE;
        if (handles[i] != INVALID_HANDLE_VALUE) CloseHandle(handles[i]);
    }
    return known && of[0].dwVolumeSerialNumber == of[1].dwVolumeSerialNumber &&
           of[0].nFileIndexHigh == of[1].nFileIndexHigh &&
           of[0].nFileIndexLow == of[1].nFileIndexLow;
}

FileName SplitPath(const std::string& path) {
    const size_t begin = path.find_last_of("\\/") + 1; // 0 without one
    return {path.substr(0, begin), path.substr(begin)};
}

const char* LibraryExtension() {
    return ".dll";
}

void* LoadExport(const std::string& file, const char* name, std::string& reason) {
    // Libraries that it needs are looked for beside it, as if the host had loaded it.
    const HMODULE library = LoadLibraryExA(file.c_str(), nullptr, LOAD_WITH_ALTERED_SEARCH_PATH);
    void* const found =
        library != nullptr ? reinterpret_cast<void*>(GetProcAddress(library, name)) : nullptr;
    if (found == nullptr) reason = file + ": system error " + std::to_string(GetLastError());
    // The module keeps pointers into the checker: that stays as well.
    HMODULE pinned = nullptr;
    GetModuleHandleExA(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_PIN,
                       &g_InTheChecker, &pinned);
    return found;
}

bool UsesOtherCxxLibrary(const void* address) {
    const auto* const base = reinterpret_cast<const char*>(ModuleAt(address));
    if (base == nullptr) return false;
    const auto* const dos = reinterpret_cast<const IMAGE_DOS_HEADER*>(base);
    const auto* const head = reinterpret_cast<const IMAGE_NT_HEADERS*>(base + dos->e_lfanew);
    const IMAGE_DATA_DIRECTORY& imports =
        head->OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_IMPORT];
    if (imports.VirtualAddress == 0) return false;
    bool other = false;
    for (auto* entry =
             reinterpret_cast<const IMAGE_IMPORT_DESCRIPTOR*>(base + imports.VirtualAddress);
         entry->Name != 0; ++entry) {
        std::string name = base + entry->Name;
        std::ranges::transform(name, name.begin(),
                               [](char c) { return c >= 'A' && c <= 'Z' ? c - 'A' + 'a' : c; });
        other |= name.starts_with("msvcp") || name.starts_with("libc++");
    }
    constexpr std::string_view kHelper = "orn_stream_write";
    const std::string_view image(base, head->OptionalHeader.SizeOfImage);
    return other && image.find(kHelper) == std::string_view::npos;
}

} // namespace hostcheck
