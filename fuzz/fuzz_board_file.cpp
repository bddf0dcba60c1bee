// Board files with any bytes: the title that the catalogue takes, the commands that
// the dialog shows, and the file that would be made from them.

#include <sys/mman.h>
#include <unistd.h>

#include <string>

#include "board/BoardFile.h"
#include "fuzz/target.h"
#include "platform/compare.h"
#include "text/text_tools.h"

namespace {

/// A file that lies in memory. Its bytes count until the next is made.
const char* FileOf(const void* bytes, size_t size) {
    static const int file = memfd_create("board", 0);
    static const std::string path = "/proc/self/fd/" + std::to_string(file);
    Require(ftruncate(file, 0) == 0 && pwrite(file, bytes, size, 0) == static_cast<ssize_t>(size));
    return path.c_str();
}

bool Title(const char* path, std::string& title) {
    InputFile file(path);
    Require(file.IsOpen());
    return ReadBoardTitle(file, title);
}

std::string Commands(const char* path) {
    InputFile file(path);
    return ReadBoardCommands(file).Text;
}

/// Checks that each line shown has an end, is not blank, and is neither a comment nor a
/// trace command. Returns the lines without the title keyword.
std::string CheckCommands(const std::string& commands) {
    std::string general;
    for (size_t at = 0; at < commands.size();) {
        const size_t end = commands.find("\r\n", at);
        Require(end != commands.npos && end > at && commands[at] != ';');
        const std::string line = commands.substr(at, end - at);
        Require(line.find_first_of("\r\n") == line.npos);
        Require(CompareNoCaseN(line.c_str(), "trace", 5) != 0);
        if (!FindNoCase(line.c_str(), kTitleKeyword)) general += line + "\r\n";
        at = end + 2;
    }
    return general;
}

} // namespace

static void BoardFile(const uint8_t* data, size_t size) {
    const char* path = FileOf(data, size);
    std::string title;
    const bool listed = Title(path, title);
    Require(title.size() <= 248 && title.find_first_of("\r\n") == title.npos);
    const std::string commands = Commands(path);
    const std::string general = CheckCommands(commands);
    if (!listed) return;

    // A file made from what is shown is listed under the title and shows the same.
    const std::string made = ComposeBoardFile(title, commands.c_str(), 1, 0);
    path = FileOf(made.data(), made.size());
    std::string again;
    Require(Title(path, again) && again == title);
    Require(Commands(path) == kTitleKeyword + title + "\r\n" + general);
}

static const FuzzTarget kBoardFile("fuzz_board_file", BoardFile);
