// The dialog, driven by a script.

#pragma once

#include <functional>
#include <optional>

#include "host/commandline/actions.h"
#include "host/drive/Script.h"

namespace etmhost {

struct DriveOptions {
    std::string script;   ///< the name of a file; "-": the standard input
    std::string pictures; ///< receives the pictures; made if missing; empty: the directory at hand
    bool offScreen = false;
    std::string font;   ///< empty: the usual one
    double scale = 1.0; ///< of everything on the windows
};

/// Reads the script of `drive`. What is wrong with it goes to `errors`, by file and line; gives
/// nothing then. Throws HostError if it cannot be read at all.
std::optional<Script> ReadScript(const std::string& file, std::ostream& errors);

/// The script that this program has for its command `name`.
Script OwnScript(const std::string& name);

/// Makes the directory of the pictures and looks whether it can be written. Throws HostError.
void PreparePictures(const std::string& command, const std::string& directory);

/// Does what opens the dialog, and carries the script out. Its steps go to `events`, and a failure
/// to `errors`, headed by file and line. The dialog is closed in any case; where that is not
/// possible, the program ends.
/// REQUIRES: the screen of PrepareDrivenScreen.
Status Drive(const std::function<Status()>& open, record::EventStream& events, const Script& script,
             const std::string& pictures, std::ostream& errors);

} // namespace etmhost
