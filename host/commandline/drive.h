// The dialog, driven by a script.

#pragma once

#include <functional>
#include <optional>

#include "host/commandline/actions.h"
#include "host/drive/Script.h"
#include "host/replay/Recording.h"

namespace etmhost {

struct DriveOptions {
    std::string script;   ///< the name of a file; "-": the standard input
    std::string pictures; ///< receives the pictures; made if missing; empty: the directory at hand
    bool offScreen = false;
    std::string font;   ///< empty: the usual one
    double scale = 1.0; ///< of everything on the windows
};

/// A script with the text that it was read from.
struct ReadyScript {
    Script script;
    std::string text;
};

/// Reads the script of `drive`. What is wrong with it goes to `errors`, by file and line; gives
/// nothing then. Pictures are wrong where this build takes none, unless `pictures` says that nobody
/// wants them. Throws HostError if it cannot be read at all.
std::optional<ReadyScript> ReadScript(const std::string& file, std::ostream& errors,
                                      bool pictures = true);

/// The script that this program has for its command `name`.
ReadyScript OwnScript(const std::string& name);

/// Makes the directory of the pictures and looks whether it can be written. Throws HostError.
void PreparePictures(const std::string& command, const std::string& directory);

/// Does what opens the dialog, and carries the script out. Its text and its steps go to `events`,
/// and a failure to `errors`, headed by file and line. The dialog is closed in any case; where that
/// is not possible, the program ends.
/// REQUIRES: the screen of PrepareDrivenScreen.
Status Drive(const std::function<Status()>& open, record::EventStream& events,
             const ReadyScript& script, const std::string& pictures, std::ostream& errors);

/// Goes through a recording on a module, with `script` for the person, or with whoever is at the
/// windows if there is none. The first difference goes to `errors`, headed by file and line, and
/// what has become of it to `out`. Without `pictures` none are taken.
/// REQUIRES: as Drive, if there is a script.
Status ReplayWith(const Script* script, const Recording& recording, IOrnAPIBase& module,
                  record::EventStream& events, const std::string& pictures, std::ostream& out,
                  std::ostream& errors);

} // namespace etmhost
