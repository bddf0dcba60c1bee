#include "toolkit/qt/qt_text.h"

#include <QFontMetrics>
#include <QTextLayout>
#include <cmath>

namespace qt {

QString FromModel(std::string_view text) {
    return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

std::string ToModel(const QString& text) {
    return text.toStdString();
}

QString LinesFromModel(std::string_view text) {
    QString lines = FromModel(text);
    lines.replace("\r\n", "\n");
    lines.replace(u'\r', u'\n');
    return lines;
}

std::string LinesToModel(const QString& text) {
    QString lines = text;
    lines.replace(QChar(QChar::ParagraphSeparator), u'\n');
    lines.replace(QChar(QChar::LineSeparator), u'\n');
    lines.replace(u'\n', "\r\n");
    return ToModel(lines);
}

QString Wrapped(const QString& text, const QFont& font, int maxWidth) {
    if (maxWidth < 0) return text;
    QTextOption option;
    option.setWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
    QStringList lines;
    for (const QString& paragraph : text.split(u'\n')) {
        QTextLayout layout(paragraph, font);
        layout.setTextOption(option);
        layout.beginLayout();
        QTextLine line = layout.createLine();
        if (!line.isValid()) lines << QString();
        for (; line.isValid(); line = layout.createLine()) {
            line.setLineWidth(maxWidth);
            lines << paragraph.mid(line.textStart(), line.textLength()).trimmed();
        }
        layout.endLayout();
    }
    return lines.join(u'\n');
}

int TabStop(const QFont& font) {
    return 8 * QFontMetrics(font).averageCharWidth();
}

int TabbedWidth(const QFont& font, const QString& text) {
    const QFontMetricsF metrics(font);
    const double stop = TabStop(font);
    double width = 0;
    const QStringList pieces = text.split(u'\t');
    for (qsizetype i = 0; i < pieces.size(); ++i) {
        if (i > 0 && stop > 0) width = (std::floor(width / stop) + 1) * stop;
        width += metrics.horizontalAdvance(pieces[i]);
    }
    return static_cast<int>(std::lround(width));
}

} // namespace qt
