#include "board/BoardFile.h"

#include <algorithm>
#include <cstring>
#include <filesystem>

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

/// False for what is no file: a directory, a pipe or a device. A name that can't be
/// asked about passes: opening it will tell.
bool MayBeOpened(const char* path) {
    namespace fs = std::filesystem;
    try {
        std::error_code ignored;
        const fs::file_status status = fs::status(fs::path(path), ignored);
        return !fs::status_known(status) || !fs::exists(status) || fs::is_regular_file(status);
    } catch (const std::exception&) {
        return true;
    }
}

/// Reads on from the start of `file` for `most` bytes.
std::string ReadStart(std::FILE* file, size_t most) {
    std::string bytes;
    std::rewind(file);
    char block[4096];
    for (size_t count = 1; count > 0 && bytes.size() < most;) {
        count = std::fread(block, 1, std::min(sizeof block, most - bytes.size()), file);
        bytes.append(block, count);
    }
    return bytes;
}

void SkipByteOrderMark(std::FILE* file) {
    if (ReadStart(file, std::strlen(kByteOrderMark)) != kByteOrderMark) std::rewind(file);
}

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
    if (!keyword) return false;
    char line[260];
    CopyBounded(line, sizeof line, keyword + std::strlen(kTitleKeyword));
    CutLineEnd(line);
    title = line;
    return true;
}

bool CanBeBoardFile(const std::string& directory, const std::string& name) {
    return MatchFileName("*.mac", name.c_str()) && name.find(';') == std::string::npos &&
           JoinPath(directory, name).size() <= kMaxBoardPath;
}

FilePointer OpenForReading(const char* path) {
    if (!MayBeOpened(path)) return nullptr;
    return FilePointer(std::fopen(path, "rb"));
}

bool ReadBoardTitle(std::FILE* file, std::string& title) {
    char first[254 + 1];
    SkipByteOrderMark(file);
    if (!std::fgets(first, sizeof first, file)) return false;
    if (first[0] != ';' || !FindNoCase(first, kBoardMarker)) return false;

    char line[255 + 1];
    while (std::fgets(line, sizeof line, file))
        if (line[0] == ';' && FindTitle(line, title)) return true;
    return false;
}

BoardCommands ReadBoardCommands(std::FILE* file) {
    BoardCommands commands;
    std::string bytes = ReadStart(file, kMostShown + 1);
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
        if (!shown || !*shown) continue;
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
        if (!text) return false;
        ++text;
    }
    const char* end = std::strchr(text, '\n');
    size_t length = end ? static_cast<size_t>(end - text) + 1 : std::strlen(text);
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
    bytes += std::string("trace etm halfrate=") + (portModeSel == 0 ? "on" : "off") + "\r\n";
    bytes += "trace update\r\n"
             "\r\n";

    // Each line is taken as the first of what remains: to count from the top for
    // each would take time in the square of the number of lines.
    char line[260];
    for (const char* rest = commands; rest && GetTextLine(1, rest, line, sizeof line);) {
        CutLineEnd(line);
        if (!FindNoCase(line, kTitleKeyword)) bytes += std::string(line) + "\r\n";
        rest = std::strchr(rest, '\n');
        if (rest) ++rest;
    }
    return bytes;
}
