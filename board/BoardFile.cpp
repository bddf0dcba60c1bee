#include "board/BoardFile.h"

#include <cstring>
#include <filesystem>

#include "platform/compare.h"
#include "text/text_tools.h"

namespace {

constexpr char kBoardMarker[] = "[OrnithalWorksTraceInitFile]";

// What the generated trace commands begin with.
constexpr char kTraceWord[] = "trace";

void CutLineEnd(char* line) {
    CutAtChar(line, '\r');
    CutAtChar(line, '\n');
}

/// False for what is no file: a directory, a pipe, a device, and a link where links are
/// not followed. A name that can't be asked about passes: opening it will tell.
bool MayBeOpened(const char* path, bool followLinks) {
    namespace fs = std::filesystem;
    try {
        const fs::path name(path);
        std::error_code ignored;
        const fs::file_status status =
            followLinks ? fs::status(name, ignored) : fs::symlink_status(name, ignored);
        return !fs::status_known(status) || !fs::exists(status) || fs::is_regular_file(status);
    } catch (const std::exception&) {
        return true;
    }
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

FilePointer OpenForReading(const char* path) {
    if (!MayBeOpened(path, true)) return nullptr;
    return FilePointer(std::fopen(path, "rb"));
}

bool ReadBoardTitle(std::FILE* file, std::string& title) {
    char first[254 + 1];
    if (!std::fgets(first, sizeof first, file)) return false;
    if (first[0] != ';' || !FindNoCase(first, kBoardMarker)) return false;

    char line[255 + 1];
    while (std::fgets(line, sizeof line, file))
        if (line[0] == ';' && FindTitle(line, title)) return true;
    return false;
}

std::string ReadBoardCommands(std::FILE* file) {
    std::string commands;
    char line[258 + 1];
    while (std::fgets(line, sizeof line, file)) {
        CutLineEnd(line);
        const char* shown = SkipWhiteSpace(line);
        if (*shown == ';')
            shown = FindNoCase(shown, kTitleKeyword);
        else if (CompareNoCaseN(shown, kTraceWord, std::strlen(kTraceWord)) == 0)
            continue;
        if (!shown || !*shown) continue;
        commands += shown;
        commands += "\r\n";
    }
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

FilePointer OpenForWriting(const char* path) {
    if (!MayBeOpened(path, false)) return nullptr;
    return FilePointer(std::fopen(path, "wb"));
}

bool WriteAndClose(FilePointer file, const std::string& bytes) {
    const bool written = std::fwrite(bytes.data(), 1, bytes.size(), file.get()) == bytes.size();
    const bool closed = std::fclose(file.release()) == 0;
    return written && closed;
}
