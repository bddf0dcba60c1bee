// The libraries that come with this program.

#pragma once

#include <filesystem>
#include <string>

namespace etmhost {

/// Returns the file of the library `name`, such as "KVETMControl": the one beside this program, as
/// in a build, else where it is when both are installed. It need not be there.
std::filesystem::path LibraryFile(const std::string& name);

} // namespace etmhost
