// Readable: texts that stand out from what is behind them, in any palette.

#pragma once

#include <QColor>

class QWidget;

namespace qt {

/// The contrast of two colours, 1 to 21, as the guidelines for web content define it.
double Contrast(const QColor& one, const QColor& other);

/// Lifts the disabled texts of `widget` and its children to a contrast at which they can
/// be made out, and those of edits of several lines, which are there to be read, to one at
/// which they can be read. Gives notes that can only be read a background that no field has.
/// Starts from the application's palette each time, so it may be called again when that or
/// the style has changed.
void MakeReadable(QWidget& widget);

} // namespace qt
