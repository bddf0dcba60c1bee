// The Qt application of the host, for the tour and for dark colours.

#pragma once

#include <memory>

class QApplication;

namespace etmhost {

/// Makes the application; dark if asked for.
/// REQUIRES: the platform of QT_QPA_PLATFORM works, or the program ends here.
std::shared_ptr<QApplication> MakeApplication(bool dark);

} // namespace etmhost
