// The export, and the way to the module.

#include <cstdlib>

#include "check/Checker.h"
#include "check/module_proxies.h"
#include "check/system.h"
#include "frame/interfaces/IOrnAPIBase.h"

IOrnAPIBase* OrnDLL() {
    return hostcheck::ModuleObject();
}

namespace hostcheck {

namespace {

/// The module beside the checker; where links led to the checker, also beside what they name.
std::string ModuleBeside() {
    const std::string name = std::string("KVETMControl") + LibraryExtension();
    const std::string near = SplitPath(OwnFile()).folder + name;
    return IsSameFile(near, near) ? near : SplitPath(RealFile(OwnFile())).folder + name;
}

/// What the program ends with, behind all objects of the host that end with it.
[[gnu::destructor]] void AtTheEnd() {
    Quietly([] { Checker::End(); });
}

} // namespace

RealModule LoadModule(const void* checker) {
    const char* const told = std::getenv("KVETM_MODULE");
    RealModule module;
    module.file = told != nullptr && *told != '\0' ? FullPath(told) : ModuleBeside();
    std::string reason;
    void* const entry = LoadExport(module.file, "OrnDLL", reason);
    if (entry == checker)
        reason = module.file + " is the checker; KVETM_MODULE names the module";
    else if (entry != nullptr)
        module.object = reinterpret_cast<decltype(&OrnDLL)>(entry)();
    if (module.object == nullptr)
        Checker::Get().findings.Complain("cannot load the module: " + reason);
    return module;
}

} // namespace hostcheck
