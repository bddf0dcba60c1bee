// On the screen: whether a window fits, and where it comes up.

#pragma once

#include "toolkit/win32/windows_api.h"

/// True iff a window fits on the screen that it comes up on, beside what the system keeps
/// there for itself.
bool FitsScreen(HWND window);

/// Puts a window into the middle of its owner, or else of the screen.
void PlaceOverOwner(HWND window);

/// Puts a window to the place that was kept, and all of it onto the screen. Returns false if
/// there is none, or if it is on no screen any more.
bool PutWhereItWas(HWND window);
/// Keeps the place of a window as long as the process lives, also if the module goes.
void KeepPlace(HWND window);
