// What needs windows of the host's own. qt/ implements it, and no_screen.cpp where there is no Qt.

#pragma once

#include <memory>
#include <string>

#include "host/commandline/actions.h"

namespace etmhost {

struct TourOptions {
    std::string directory; ///< receives the pictures; made if missing
    bool dark = false;
    std::string font;   ///< empty: the usual one
    double scale = 1.0; ///< of everything on the pictures
};

/// The window system's application object. It has to be there before the module is loaded and until
/// the module is gone.
using Screen = std::shared_ptr<void>;

/// Makes a dark application on the user's screen. Throws HostError if there is none.
Screen PrepareDarkScreen();

/// Makes an application off-screen. Throws HostError if the pictures could not be taken or written.
Screen PrepareTour(const TourOptions& options);

/// Opens the dialog and goes through it: enables trace, takes a picture of every tab and of the ETM
/// Configuration dialog, starts and stops a capture, and leaves by OK. What it does goes into the
/// host's journal, a failure to `errors`. The dialog is closed in any case.
/// REQUIRES: the screen of PrepareTour.
Status Tour(ModuleSession& session, SimulatedHost& host, const TourOptions& options,
            std::ostream& errors);

} // namespace etmhost
