// Whether Qt could reach a window system: asked before an application is made,
// whose constructor would end the process if there is none.

#pragma once

#include <memory>
#include <string>
#include <vector>

namespace qt {

/// What a probe found. An X server that is left by its last client starts anew and
/// answers nobody meanwhile; so the connections stay open as long as this object,
/// which has to be until the application has its own.
struct PlatformProbe {
    std::string platforms; // in the form of Qt's option "-platform", best first
    std::string reason;    // why there are none
    std::vector<std::shared_ptr<void>> connections;
};

/// Looks for the platforms that Qt can be started with now.
PlatformProbe ProbePlatforms();

} // namespace qt
