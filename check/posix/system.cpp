#include "check/system.h"

#include <dlfcn.h>
#include <elf.h>
#include <link.h>
#include <sys/stat.h>
#include <sys/uio.h>
#include <unistd.h>

#include <cerrno>
#include <climits>
#include <cstdlib>
#include <cstring>

namespace hostcheck {

size_t ReadMemory(const void* address, void* to, size_t size) {
    // The system copies: an address that is no good is an error here, and a signal elsewhere.
    const iovec from{const_cast<void*>(address), size}, into{to, size};
    const ssize_t count = process_vm_readv(getpid(), &into, 1, &from, 1, 0);
    if (count >= 0) return static_cast<size_t>(count);
    if (errno == EFAULT) return 0;
    std::memcpy(to, address, size); // not allowed in here: as everybody else reads it
    return size;
}

namespace {

std::string FindOwnFile() {
    static const char inTheChecker = 0;
    Dl_info info{};
    return dladdr(&inTheChecker, &info) != 0 ? FullPath(info.dli_fname) : "";
}

// Looked up while the checker is being loaded: the loader's name may be relative to the directory
// that is current then.
const std::string g_OwnFile = FindOwnFile();

} // namespace

std::string OwnFile() {
    return g_OwnFile;
}

std::string RealFile(const std::string& file) {
    char path[PATH_MAX];
    return realpath(file.c_str(), path) != nullptr ? path : file;
}

std::string FullPath(const std::string& file) {
    char folder[PATH_MAX];
    if (IsFullPath(file) || getcwd(folder, sizeof folder) == nullptr) return file;
    return std::string(folder) + '/' + file;
}

bool IsFullPath(const std::string& path) {
    return path.starts_with('/');
}

bool IsSameFile(const std::string& one, const std::string& other) {
    struct stat first, second;
    return stat(one.c_str(), &first) == 0 && stat(other.c_str(), &second) == 0 &&
           first.st_dev == second.st_dev && first.st_ino == second.st_ino;
}

FileName SplitPath(const std::string& path) {
    const size_t begin = path.rfind('/') + 1; // 0 without one
    return {path.substr(0, begin), path.substr(begin)};
}

const char* LibraryExtension() {
    return ".so";
}

void* LoadExport(const std::string& file, const char* name, std::string& reason) {
    void* const library = dlopen(file.c_str(), RTLD_NOW | RTLD_LOCAL);
    void* const found = library != nullptr ? dlsym(library, name) : nullptr;
    if (found == nullptr) {
        const char* const error = dlerror();
        reason = error != nullptr ? error : file + ": there is no " + name;
    }
    return found;
}

namespace {

/// Returns what the dynamic section of `object` has for `tag`, as an address.
const char* AddressIn(const link_map& object, ElfW(Sxword) tag) {
    for (const ElfW(Dyn)* entry = object.l_ld; entry->d_tag != DT_NULL; ++entry) {
        if (entry->d_tag != tag) continue;
        // The loader has usually turned it into an address; on some systems it can't.
        const ElfW(Addr) address = entry->d_un.d_ptr;
        // NOLINTNEXTLINE(performance-no-int-to-ptr): the loader has numbers
        return reinterpret_cast<const char*>(address < object.l_addr ? address + object.l_addr
                                                                     : address);
    }
    return nullptr;
}

bool Needs(const link_map& object, const char* library) {
    const char* const names = AddressIn(object, DT_STRTAB);
    for (const ElfW(Dyn)* entry = object.l_ld; names != nullptr && entry->d_tag != DT_NULL; ++entry)
        if (entry->d_tag == DT_NEEDED &&
            std::strncmp(names + entry->d_un.d_val, library, std::strlen(library)) == 0)
            return true;
    return false;
}

/// Looks for a text in what is loaded of an object, its names of imports among it.
int Contains(dl_phdr_info* info, size_t, void* object) {
    constexpr char kHelper[] = "orn_stream_write";
    if (info->dlpi_addr != static_cast<const link_map*>(object)->l_addr) return 0;
    for (int i = 0; i < info->dlpi_phnum; ++i) {
        const ElfW(Phdr)& part = info->dlpi_phdr[i];
        if (part.p_type != PT_LOAD || (part.p_flags & PF_R) == 0) continue;
        // NOLINTNEXTLINE(performance-no-int-to-ptr): the loader has numbers
        const auto* const begin = reinterpret_cast<const char*>(info->dlpi_addr + part.p_vaddr);
        if (memmem(begin, part.p_memsz, kHelper, sizeof kHelper - 1) != nullptr) return 1;
    }
    return 0;
}

} // namespace

bool UsesOtherCxxLibrary(const void* address) {
    Dl_info info{};
    link_map* object = nullptr;
    if (dladdr1(address, &info, reinterpret_cast<void**>(&object), RTLD_DL_LINKMAP) == 0 ||
        object == nullptr || object->l_ld == nullptr)
        return false;
    return Needs(*object, "libc++.so") && !Needs(*object, "libstdc++.so") &&
           dl_iterate_phdr(Contains, object) == 0;
}

} // namespace hostcheck
