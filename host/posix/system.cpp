#include "host/system.h"

#include <dlfcn.h>

#include "host/host_error.h"

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

Library::Library(const std::filesystem::path& file)
    : handle_(dlopen(file.c_str(), RTLD_NOW | RTLD_LOCAL)) {
    if (handle_ == nullptr) {
        const char* reason = dlerror();
        throw HostError("cannot load the module: " +
                        (reason != nullptr ? std::string(reason) : file.string()));
    }
}

Library::~Library() {
    dlclose(handle_);
}

void* Library::Find(const char* name) const {
    return dlsym(handle_, name);
}

} // namespace etmhost
