#include "board/BoardFile.h"

#include <algorithm>
#include <cstring>
#include <iterator>

#include "platform/compare.h"
#include "platform/paths.h"
#include "text/file_names.h"
#include "text/shown_text.h"
#include "text/text_tools.h"

namespace {

constexpr char kBoardMarker[] = "[OrnithalWorksTraceInitFile]";

// What the generated trace commands begin with.
constexpr char kTraceWord[] = "trace";

constexpr char kByteOrderMark[] = "\xEF\xBB\xBF";

// What is shown of a file, in bytes; boxes and their readers choke on more.
constexpr size_t kMostShown = 1024 * 1024;

// A longer line of a file is shown in pieces.
constexpr size_t kLongestLine = 258;

void CutLineEnd(char* line) {
    CutAtChar(line, '\r');
    CutAtChar(line, '\n');
}

/// Takes a file apart into lines, and each of those into pieces that fit its reader.
class LinePieces {
public:
    explicit LinePieces(InputFile& file) : m_File(file) {
        const std::string_view mark = kByteOrderMark;
        while (m_End < m_Block + mark.size() && Fill()) continue;
        if (std::string_view(m_Block, m_End).starts_with(mark)) m_Next += mark.size();
    }

    /// Copies what follows, up to a line feed, which is copied too, or until the `size`
    /// bytes at `piece` are full, and ends it by a NUL. Returns false at the end of the file.
    bool Take(char* piece, size_t size) {
        char* const begin = piece;
        char* const limit = piece + size - 1;
        while (piece != limit && (m_Next != m_End || Refill())) {
            const auto most = static_cast<size_t>(std::min(limit - piece, m_End - m_Next));
            const void* const found = std::memchr(m_Next, '\n', most);
            const size_t count =
                found != nullptr ? static_cast<size_t>(static_cast<const char*>(found) + 1 - m_Next)
                                 : most;
            std::memcpy(piece, m_Next, count);
            piece += count;
            m_Next += count;
            if (found != nullptr) break;
        }
        *piece = '\0';
        return piece != begin;
    }

private:
    /// Reads more behind what is there.
    bool Fill() {
        const size_t count = m_File.Read(m_End, static_cast<size_t>(std::end(m_Block) - m_End));
        m_End += count;
        return count > 0;
    }
    /// Reads more over what was taken.
    bool Refill() {
        m_Next = m_End = m_Block;
        return Fill();
    }

    InputFile& m_File;
    char m_Block[4096];
    const char* m_Next = m_Block;
    char* m_End = m_Block;
};

/// Cuts a file that is too long to be shown, behind a whole line if one ends near by.
bool CutToShow(std::string& bytes) {
    if (bytes.size() <= kMostShown) return false;
    bytes.resize(FirstBytes(bytes, kMostShown).size());
    const size_t end = bytes.rfind('\n') + 1; // 0: there is none
    if (bytes.size() - end < kLongestLine) bytes.resize(end);
    return true;
}

const char* SkipWhiteSpace(const char* text) {
    return text + std::strspn(text, " \t\v\f");
}

} // namespace

bool FindTitle(const char* text, std::string& title) {
    const char* keyword = FindNoCase(text, kTitleKeyword);
    if (keyword == nullptr) return false;
    char line[260];
    CopyBounded(line, sizeof line, keyword + std::strlen(kTitleKeyword));
    CutLineEnd(line);
    title = line;
    return true;
}

bool CanBeBoardFile(const std::string& directory, const std::string& name) {
    if (!MatchFileName("*.mac", name.c_str()) || name.find(';') != std::string::npos) return false;
    const size_t separator = 1; // most paths have room for one that they may not need
    const size_t size = directory.size() + separator + name.size();
    return size <= kMaxBoardPath || JoinPath(directory, name).size() <= kMaxBoardPath;
}

bool ReadBoardTitle(InputFile& file, std::string& title) {
    LinePieces pieces(file);
    char first[254 + 1];
    if (!pieces.Take(first, sizeof first)) return false;
    if (first[0] != ';' || FindNoCase(first, kBoardMarker) == nullptr) return false;

    char line[255 + 1];
    while (pieces.Take(line, sizeof line))
        if (line[0] == ';' && FindTitle(line, title)) return true;
    return false;
}

BoardCommands ReadBoardCommands(InputFile& file) {
    BoardCommands commands;
    std::string bytes;
    char block[4096];
    for (size_t count = 1; count > 0 && bytes.size() <= kMostShown;) {
        count = file.Read(block, std::min(sizeof block, kMostShown + 1 - bytes.size()));
        bytes.append(block, count);
    }
    commands.IsCut = CutToShow(bytes);
    size_t next = bytes.starts_with(kByteOrderMark) ? std::strlen(kByteOrderMark) : 0;
    while (next < bytes.size()) {
        const std::string_view rest = std::string_view(bytes).substr(next, kLongestLine);
        std::string line(rest.substr(0, std::min(rest.find('\n'), rest.size() - 1) + 1));
        next += line.size();
        CutLineEnd(line.data());
        const char* shown = SkipWhiteSpace(line.c_str());
        if (*shown == ';')
            shown = FindNoCase(shown, kTitleKeyword);
        else if (CompareNoCaseN(shown, kTraceWord, std::strlen(kTraceWord)) == 0)
            continue;
        if (shown == nullptr || *shown == '\0') continue;
        commands.Text += shown;
        commands.Text += "\r\n";
    }
    if (commands.IsCut) commands.Text += kEllipsis;
    return commands;
}

bool GetTextLine(int32_t number, const char* text, char* buffer, size_t size) {
    if (number < 1) return false;
    for (; number > 1; --number) {
        text = std::strchr(text, '\n');
        if (text == nullptr) return false;
        ++text;
    }
    const char* end = std::strchr(text, '\n');
    size_t length = end != nullptr ? static_cast<size_t>(end - text) + 1 : std::strlen(text);
    if (length > size - 1) length = size - 1;
    std::memcpy(buffer, text, length);
    buffer[length] = '\0';
    return true;
}

std::string ComposeBoardFile(const std::string& title, const char* commands, int32_t portSizeSel,
                             int32_t portModeSel) {
    // As the shift instruction of a PC has it: the count is taken modulo 32, and no
    // selection at all, -1, gives the width 0.
    const auto width = static_cast<int32_t>(4u << (static_cast<uint32_t>(portSizeSel) & 31));

    std::string bytes = std::string(";") + kBoardMarker + "\r\n";
    bytes += std::string(";") + kTitleKeyword + title + "\r\n";
    bytes += "\r\n"
             "trace clear\r\n"
             "trace enable\r\n";
    bytes += "trace etm portsize=" + std::to_string(width) + "\r\n";
    // Unlike an apply this goes by the selection alone: where a chip offers half-rate clocking,
    // that entry is the first one.
    bytes += std::string("trace etm halfrate=") + (portModeSel == 0 ? "on" : "off") + "\r\n";
    bytes += "trace update\r\n"
             "\r\n";

    // Each line is taken as the first of what remains: to count from the top for
    // each would take time in the square of the number of lines.
    char line[260];
    for (const char* rest = commands; rest != nullptr && GetTextLine(1, rest, line, sizeof line);) {
        CutLineEnd(line);
        if (FindNoCase(line, kTitleKeyword) == nullptr) bytes += std::string(line) + "\r\n";
        rest = std::strchr(rest, '\n');
        if (rest != nullptr) ++rest;
    }
    return bytes;
}
