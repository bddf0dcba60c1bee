// DialogUnits: from the measures of a template to pixels.

#pragma once

#include <QFont>
#include <QRect>

#include "toolkit/template.h"

namespace qt {

/// A unit is a quarter of the mean width of the letters across, and an eighth of
/// the height of a line down, so that a layout fits every font.
class DialogUnits {
public:
    explicit DialogUnits(const QFont& font);

    /// Widens the units until each text of `dialog` that never changes has room: in some
    /// fonts, such as those of one width, the texts are wider than the letters promise.
    void MakeRoomFor(const DialogTemplate& dialog);

    int X(int units) const;
    int Y(int units) const;
    QSize Size(int width, int height) const { return {X(width), Y(height)}; }
    /// Edges that are equal in units are equal in pixels too.
    QRect Place(const ControlTemplate& row) const;

private:
    QFont m_Font;
    double m_BaseWidth;
    double m_BaseHeight;
};

} // namespace qt
