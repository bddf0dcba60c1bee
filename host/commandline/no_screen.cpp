#include "host/commandline/screen.h"
#include "host/support/host_error.h"

namespace etmhost {

Screen PrepareDarkScreen() {
    throw HostError("--dark: this build of etmhost was made without Qt");
}

Screen PrepareTour(const TourOptions&) {
    throw HostError("this build of etmhost has no tour: it was made without Qt");
}

Status Tour(ModuleSession&, SimulatedHost&, const TourOptions&, std::ostream&) {
    return kBadInput; // there is no screen to come here with
}

} // namespace etmhost
