// Any bytes to Qt and back. They come back as they were, whole or in two parts, line ends
// aside; and Qt's edits find no line end in them that is none.

#include <string>

#include "fuzz/target.h"
#include "toolkit/qt/qt_text.h"

/// `text` with CR LF for each of its line ends.
static std::string WithLineEnds(const std::string& text) {
    std::string lines;
    for (size_t i = 0; i < text.size(); ++i) {
        const bool ends = text[i] == '\r' || text[i] == '\n';
        if (!ends) lines += text[i];
        if (ends) lines += "\r\n";
        if (text[i] == '\r' && i + 1 < text.size() && text[i + 1] == '\n') ++i;
    }
    return lines;
}

static void QtText(const uint8_t* data, size_t size) {
    if (size == 0) return;
    const std::string text(reinterpret_cast<const char*>(data) + 1, size - 1);
    const QString shown = qt::FromModel(text);
    Require(qt::ToModel(shown) == text);
    // An edit ends one part and begins another, where the first byte says.
    const qsizetype cut = shown.size() * data[0] / 255;
    if (cut == 0 || !shown[cut - 1].isHighSurrogate())
        Require(qt::ToModel(shown.first(cut)) + qt::ToModel(shown.sliced(cut)) == text);
    for (const char16_t end : {u'\u2028', u'\u2029', u'\uFDD0', u'\uFDD1'})
        Require(!shown.contains(QChar(end)));
    Require(qt::LinesToModel(qt::LinesFromModel(text)) == WithLineEnds(text));
}

static const FuzzTarget kQtText("fuzz_qt_text", QtText);
