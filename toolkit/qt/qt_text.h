// Text between the models, which hold bytes, and Qt. The bytes are UTF-8; those that
// are not go to Qt and back one by one, unharmed.

#pragma once

#include <QFontMetricsF>
#include <QString>
#include <string>
#include <string_view>

namespace qt {

/// A byte that is no UTF-8 becomes a character of its own, as do those of a character
/// that Qt's edits would take for a line end. ToModel gives back the same bytes, also of
/// any part of the result.
QString FromModel(std::string_view text);
std::string ToModel(const QString& text);

/// Text of several lines: any line end of the model is '\n' here, and a '\n' or
/// paragraph mark of Qt is CR LF in the model.
QString LinesFromModel(std::string_view text);
std::string LinesToModel(const QString& text);

/// `text` with line feeds put in so that no line is wider than `maxWidth` pixels in
/// `font`; -1: no limit.
QString Wrapped(const QString& text, const QFont& font, int maxWidth);

/// Pixels between the default tab stops of `font`.
int TabStop(const QFont& font);
/// Width of one line with tabs, in pixels.
int TabbedWidth(const QFont& font, const QString& text);

} // namespace qt
