// The module's side: finds the library of its display, loads it and checks it.

#include <climits>
#include <cstdlib>
#include <dlfcn.h>
#include <pthread.h>
#include <stdexcept>

#include "platform/paths.h"
#include "toolkit/library/display_library.h"

namespace {

using namespace display_library;

/// The directory in which the module itself lies, whatever link led to it; empty if the
/// loader does not know.
std::string FindOwnDirectory() {
    static const char inTheModule = 0;
    Dl_info module{};
    char path[PATH_MAX];
    if (dladdr(&inTheModule, &module) == 0 || realpath(module.dli_fname, path) == nullptr)
        return {};
    return DirectoryOf(path);
}

// Looked up while the module is being loaded: the loader's name may be relative to the
// directory that is current then. What the host says of the module's path is about its
// boards, and need not be where the file lies.
const std::string g_OwnDirectory = FindOwnDirectory();

// --- Forks -----------------------------------------------------------------------------

// A fork takes the host's Qt application along, but not its threads; the display has to
// tell it from one that was made later. It watches forks itself once it is loaded.
const void* g_Application = nullptr; // at the latest fork
const void* g_OfParent = nullptr;

/// Before a fork: in the child the loader may be in an odd state.
void NoteApplication() {
    void* qt = dlopen("libQt6Core.so.6", RTLD_LAZY | RTLD_NOLOAD);
    if (qt == nullptr) return;
    const auto* self = static_cast<void**>(dlsym(qt, "_ZN16QCoreApplication4selfE"));
    g_Application = self != nullptr ? *self : nullptr;
    dlclose(qt);
}

const int g_ForkWatched =
    pthread_atfork(NoteApplication, nullptr, [] { g_OfParent = g_Application; });

// --- The library -----------------------------------------------------------------------

constexpr Toolkit kToolkit = {
    AfxGetApp,
    &CWinApp::CancelAll,
    &CDialog::GetDlgItem,
    &CDialog::GetRadioGroup,
    IsInSight,
    NextHelp,
    HelpText,
    GroupAround,
    LabelsOf,
    ReportException,
    input::Click,
    input::Type,
    input::Select,
    input::Slide,
    input::Paint,
    input::Release,
    input::Close,
    input::Tick,
    [] { return g_OfParent; },
};

[[noreturn]] void Fail(const std::string& reason) {
    throw std::runtime_error("The module's display can't be loaded: " + reason);
}

} // namespace

std::unique_ptr<Display> MakeDisplay() {
    if (g_OwnDirectory.empty()) Fail("it is unknown where the module lies.");
    const std::string file = JoinPath(g_OwnDirectory, KVETM_DISPLAY_LIBRARY);
    void* library = dlopen(file.c_str(), RTLD_NOW | RTLD_LOCAL);
    if (library == nullptr) Fail(dlerror());
    auto* entry = reinterpret_cast<Entry*>(dlsym(library, kEntryName));
    std::unique_ptr<Display> display(entry != nullptr ? entry(kBuildIdentity, &kToolkit) : nullptr);
    if (display == nullptr) {
        dlclose(library);
        Fail(file + (entry != nullptr ? " is of another build." : " is none."));
    }
    // At the process's exit the display has to go before the library's own objects do,
    // and those of the window system, all younger than the module's.
    static const bool goesInTime = std::atexit([] { AfxGetApp()->DropDisplay(); }) == 0;
    static_cast<void>(goesInTime);
    return display;
}
