#include "toolkit/qt/DialogUnits.h"

#include <QFontMetrics>

namespace qt {

namespace {

constexpr int Scaled(int units, int base, int parts) {
    return (units * base + parts / 2) / parts;
}

} // namespace

DialogUnits::DialogUnits(const QFont& font) {
    const QFontMetrics metrics(font);
    constexpr const char* letters = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz";
    m_BaseWidth = (metrics.horizontalAdvance(letters) / 26 + 1) / 2;
    m_BaseHeight = metrics.height();
}

int DialogUnits::X(int units) const {
    return Scaled(units, m_BaseWidth, 4);
}

int DialogUnits::Y(int units) const {
    return Scaled(units, m_BaseHeight, 8);
}

QRect DialogUnits::Place(const ControlTemplate& row) const {
    const QPoint topLeft(X(row.x), Y(row.y));
    const QPoint end(X(row.x + row.width), Y(row.y + row.height));
    return QRect(topLeft, QSize(end.x() - topLeft.x(), end.y() - topLeft.y()));
}

} // namespace qt
