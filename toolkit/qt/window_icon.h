// The icon of the windows.

#pragma once

#include <QIcon>

namespace qt {

/// The icon, in all the sizes of its file. REQUIRES: an application.
QIcon WindowIcon();

} // namespace qt
