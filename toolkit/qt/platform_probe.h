// Whether Qt could reach a window system: asked before an application is made,
// whose constructor would end the process if there is none.

#pragma once

#include <string>

namespace qt {

/// Returns the platforms that Qt can be started with now, in the form of its
/// option "-platform", best first. Returns "" with a readable line in `reason` if
/// there are none.
std::string UsablePlatforms(std::string& reason);

} // namespace qt
