// Symbols of the program that the simulated target runs.

#pragma once

#include <filesystem>

#include "host/target/expression.h"

namespace etmhost {

/// Reads the symbol table of the ELF file `file`: functions, objects and labels with an address of
/// 32 bits. A global symbol goes before a local one of the same name. Throws HostError if the file
/// cannot be read, is no ELF file or has no symbols, and always in a build without libelf.
Symbols ReadSymbols(const std::filesystem::path& file);

} // namespace etmhost
