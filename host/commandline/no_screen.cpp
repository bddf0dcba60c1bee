#include "host/commandline/screen.h"
#include "host/support/host_error.h"

namespace etmhost {

Screen PrepareDarkScreen() {
    throw HostError("--dark: this build of etmhost was made without Qt");
}

Screen PrepareDrivenScreen(const DriveOptions& options, bool dark) {
    if (dark) return PrepareDarkScreen();
    if (options.offScreen || !options.font.empty() || options.scale != 1.0)
        throw HostError("--off-screen, --font, --scale: this build of etmhost was made without Qt");
    return nullptr; // native windows need nothing ahead
}

} // namespace etmhost
