// On the screen: which one a window comes up on, how much room is there, and where.

#pragma once

#include <QWidget>
#include <functional>

namespace qt {

/// Gives `widget` the largest font, up to that of the application or its parent, for which
/// `fits` is true. `fits` is asked with the font set.
void ShrinkFont(QWidget& widget, const std::function<bool()>& fits);

/// Gives `window` the largest font, up to the application's own, in which it fits on its
/// screen with its frame. `measure` returns the size that it needs in the font that it has
/// then, without the frame.
void FitFont(QWidget& window, const std::function<QSize()>& measure);

/// The room for `window` on its screen, without what its frame takes.
QSize RoomFor(const QWidget& window);

/// A shown window knows its frame, which before can only be guessed. Returns true if the
/// guess was another one.
bool LearnFrame(const QWidget& window);

/// Moves a window that has a place already so that all of it lies on a screen.
void MoveOntoScreen(QWidget& window);

/// Gives a new window the place where the last one was left in this process, if that is
/// still on a screen.
void TakeKeptPlace(QWidget& window);
void KeepPlace(const QWidget& window);

} // namespace qt
