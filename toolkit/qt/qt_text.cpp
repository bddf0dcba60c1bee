#include "toolkit/qt/qt_text.h"

#include <QFontMetrics>
#include <QStringView>
#include <QTextLayout>
#include <cmath>

namespace qt {

namespace {

// A byte that can't be shown as it is stands as one half of a surrogate pair, which no
// text in UTF-8 contains: Qt draws it as the sign for an unknown character, and its
// edits take it for a character like others.
constexpr char16_t kByte = 0xDC00;
constexpr uchar kFirstByte = 0x80;

/// What Qt's edits take for the end of a line or of a block.
bool EndsABlock(char32_t character) {
    return character == QChar::LineSeparator || character == QChar::ParagraphSeparator ||
           character == 0xFDD0 || character == 0xFDD1;
}

/// Takes one character off the front of `text`, which is not empty, and returns it. Takes
/// nothing if no character in UTF-8 begins there.
char32_t TakeCharacter(std::string_view& text) {
    const auto at = [&text](size_t i) { return static_cast<uchar>(text[i]); };
    const uchar lead = at(0);
    const size_t size = lead < 0x80 ? 1 : lead < 0xE0 ? 2 : lead < 0xF0 ? 3 : 4;
    constexpr char32_t kSmallest[] = {0, 0, 0x80, 0x800, 0x10000}; // of each size
    if ((lead >= 0x80 && lead < 0xC0) || lead > 0xF4 || text.size() < size) return 0;
    char32_t character = size == 1 ? lead : lead & (0x7F >> size);
    for (size_t i = 1; i < size; ++i) {
        if ((at(i) & 0xC0) != 0x80) return 0;
        character = character << 6 | (at(i) & 0x3F);
    }
    if (character < kSmallest[size] || character > QChar::LastValidCodePoint) return 0;
    if (QChar::isSurrogate(character)) return 0;
    text.remove_prefix(size);
    return character;
}

} // namespace

QString FromModel(std::string_view text) {
    QString shown;
    shown.reserve(static_cast<qsizetype>(text.size()));
    while (!text.empty()) {
        const std::string_view before = text;
        const char32_t character = TakeCharacter(text);
        const bool invalid = text.size() == before.size();
        if (invalid) text.remove_prefix(1);
        if (!invalid && !EndsABlock(character))
            shown += QStringView(QChar::fromUcs4(character));
        else
            for (const char byte : before.substr(0, before.size() - text.size()))
                shown += QChar(kByte + static_cast<uchar>(byte));
    }
    return shown;
}

std::string ToModel(const QString& text) {
    std::string bytes;
    qsizetype done = 0;
    for (qsizetype i = 0; i < text.size(); ++i) {
        const QChar unit = text[i];
        if (unit.isHighSurrogate() && i + 1 < text.size() && text[i + 1].isLowSurrogate())
            ++i;
        else if (unit >= QChar(kByte + kFirstByte) && unit <= QChar(kByte + 0xFF)) {
            bytes += text.sliced(done, i - done).toStdString();
            bytes += static_cast<char>(unit.unicode() - kByte);
            done = i + 1;
        }
    }
    bytes += text.sliced(done).toStdString();
    return bytes;
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
    QTextOption option;
    option.setTabStopDistance(TabStop(font));
    option.setWrapMode(QTextOption::NoWrap);
    QTextLayout layout(text, font);
    layout.setTextOption(option);
    layout.beginLayout();
    const QTextLine line = layout.createLine();
    layout.endLayout();
    if (!line.isValid()) return 0;
    return static_cast<int>(std::lround(line.cursorToX(static_cast<int>(text.size()))));
}

} // namespace qt
