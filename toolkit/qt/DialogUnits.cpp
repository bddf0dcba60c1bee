#include "toolkit/qt/DialogUnits.h"

#include <QCheckBox>
#include <QFontMetrics>
#include <QRadioButton>
#include <algorithm>
#include <cmath>

#include "toolkit/qt/qt_text.h"

namespace qt {

namespace {

// Pixels beside a text.
constexpr int kGroupBoxIndents = 14;
constexpr int kPushButtonFrames = 6;

int Scaled(int units, double base, int parts) {
    return static_cast<int>(std::floor(units * base / parts + 0.5));
}

template <class Button> int ButtonWidth(const QFont& font, const QString& text) {
    Button button(text);
    button.setFont(font);
    return button.sizeHint().width();
}

/// Pixels that the text of a row takes, with what stands beside it; 0 for a row whose text
/// changes, wraps, or is not seen.
int NeededWidth(const ControlTemplate& row, const QFont& font) {
    constexpr int kTwoLines = 16; // units
    if ((row.styles & style::Hidden) != 0 || *row.text == '\0') return 0;
    const QString text = FromModel(row.text);
    const int plain = QFontMetrics(font).horizontalAdvance(text);
    switch (row.kind) {
    case ControlKind::Static:
        return row.height < kTwoLines ? plain : 0;
    case ControlKind::GroupBox:
        return plain + kGroupBoxIndents;
    case ControlKind::PushButton:
        return plain + kPushButtonFrames;
    case ControlKind::CheckBox:
        return ButtonWidth<QCheckBox>(font, text);
    case ControlKind::RadioButton:
        return ButtonWidth<QRadioButton>(font, text);
    default:
        return 0;
    }
}

/// Units from the left edge of a row to what stands beside it or to the dialog's edge.
int RoomOf(const ControlTemplate& row, const DialogTemplate& dialog) {
    const bool reaches = row.kind == ControlKind::CheckBox ||
                         row.kind == ControlKind::RadioButton || row.kind == ControlKind::Static;
    if (!reaches || (row.styles & style::Centered) != 0) return row.width;
    int end = dialog.width;
    for (const ControlTemplate& other : dialog.controls) {
        const int height = other.kind == ControlKind::ComboBox ? 12 : other.height;
        if (other.x > row.x && (other.styles & style::Hidden) == 0 &&
            other.y < row.y + row.height && other.y + height > row.y)
            end = std::min(end, other.x);
    }
    return end - row.x;
}

} // namespace

DialogUnits::DialogUnits(const QFont& font) : m_Font(font) {
    const QFontMetrics metrics(font);
    constexpr const char* letters = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz";
    // In whole pixels, as the dialog manager computes it.
    const int width = (metrics.horizontalAdvance(letters) / 26 + 1) / 2;
    m_BaseWidth = width;
    m_BaseHeight = metrics.height();
}

void DialogUnits::MakeRoomFor(const DialogTemplate& dialog) {
    for (const ControlTemplate& row : dialog.controls) {
        const int needed = NeededWidth(row, m_Font);
        if (needed == 0) continue;
        // Both edges are rounded.
        m_BaseWidth = std::max(m_BaseWidth, 4.0 * (needed + 1) / RoomOf(row, dialog));
    }
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
