// What needs windows of the host's own. qt/ implements it, and no_screen.cpp where there is no Qt.

#pragma once

#include <memory>

#include "host/commandline/drive.h"

namespace etmhost {

/// The window system's application object. It has to be there before the module is loaded and until
/// the module is gone.
using Screen = std::shared_ptr<void>;

/// Makes a dark application on the user's screen. Throws HostError if there is none.
Screen PrepareDarkScreen();

/// Makes an application for a script: on the user's screen, or off-screen where that is asked for
/// or there is no screen. Throws HostError if it cannot be as the options want it.
Screen PrepareDrivenScreen(const DriveOptions& options, bool dark);

} // namespace etmhost
