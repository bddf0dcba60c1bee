// Board files with any bytes: the title that the catalogue takes, the commands that
// the dialog shows, and the file that would be made from them.

#include <cstdlib>
#include <cstring>

#include "board/BoardFile.h"
#include "platform/compare.h"
#include "text/text_tools.h"

namespace {

void Require(bool holds) {
    if (!holds) std::abort();
}

FilePointer FileOf(const void* bytes, size_t size) {
    FilePointer file(fmemopen(const_cast<void*>(bytes), size, "rb"));
    Require(file != nullptr);
    return file;
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

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size == 0) return 0; // fmemopen wants a byte
    const FilePointer file = FileOf(data, size);
    std::string title;
    const bool listed = ReadBoardTitle(file.get(), title);
    Require(title.size() <= 248 && title.find_first_of("\r\n") == title.npos);
    std::rewind(file.get());
    const std::string commands = ReadBoardCommands(file.get()).Text;
    const std::string general = CheckCommands(commands);
    if (!listed) return 0;

    // A file made from what is shown is listed under the title and shows the same.
    const std::string made = ComposeBoardFile(title, commands.c_str(), 1, 0);
    const FilePointer copy = FileOf(made.data(), made.size());
    std::string again;
    Require(ReadBoardTitle(copy.get(), again) && again == title);
    std::rewind(copy.get());
    Require(ReadBoardCommands(copy.get()).Text == kTitleKeyword + title + "\r\n" + general);
    return 0;
}
