// What the host gets in place of the module's objects.

#pragma once

#include <string>

class IOrnAPIBase;

namespace hostcheck {

/// Returns the module object of the checker, for the library's one export. The module is loaded
/// with the first call; where that is not possible, it has no rows, and why has been told.
IOrnAPIBase* ModuleObject();

/// The module that was loaded.
struct RealModule {
    IOrnAPIBase* object = nullptr; ///< null: there is none
    std::string file;              ///< in full
};

/// Loads the module that KVETM_MODULE names, else the one beside the checker. `checker` is the
/// checker's own export, which is no module. Tells why, if there is none.
RealModule LoadModule(const void* checker);

} // namespace hostcheck
