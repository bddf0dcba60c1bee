// What drives the windows of this build: qt/ and win32/ each implement all of it.

#pragma once

#include <functional>
#include <memory>

#include "host/drive/Interpreter.h"

namespace etmhost {

/// A person at the windows of this build.
std::unique_ptr<User> MakeUser();

/// Whether that person takes pictures.
bool TakesPictures();

/// Calls `open` and, while it runs, the interpreter: from inside the message loops or beside them.
/// REQUIRES: the interpreter has a user of MakeUser, made on this thread.
void DriveWindows(Interpreter& interpreter, const std::function<void()>& open);

} // namespace etmhost
