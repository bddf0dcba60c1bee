#include "host/support/libraries.h"

#include "host/support/system.h"

namespace etmhost {

std::filesystem::path LibraryFile(const std::string& name) {
    const std::filesystem::path directory = ExecutableFile().parent_path();
    const std::string file = name + LibraryExtension();
    std::error_code error;
    if (std::filesystem::exists(directory / file, error)) return directory / file;
    return (directory / ETMHOST_WAY_TO_LIBRARIES / file).lexically_normal();
}

} // namespace etmhost
