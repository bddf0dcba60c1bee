// Board initialisation files: text files of debugger commands, extension ".mac".
//
//   ;[OrnithalWorksTraceInitFile]    the first line makes it a board file
//   ;Title=My Board                  names the board
//   trace enable                     trace commands: generated, never shown
//   mem_init 1                       general commands: the board's own
//
// A byte order mark of UTF-8 in front of the first line does not count.
// Lines end at a line feed; what stands behind a carriage return or a NUL on a
// line does not count. A line longer than a reader's limit is read in pieces, and
// each piece counts as a line. Keywords are found in any case.

#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

#include "platform/directory.h"

inline constexpr const char* kTitleKeyword = "Title=";

/// The characters of the longest path that the host can store as its setting.
inline constexpr size_t kMaxBoardPath = 259;

/// True iff a file `name` in `directory` can be a board file: its extension is ".mac", in
/// any case, its path fits the host's setting, and its name has no ";".
bool CanBeBoardFile(const std::string& directory, const std::string& name);

/// Finds the first title keyword in `text`, in any case, and stores what follows it up
/// to the end of its line, 259 characters at most. Returns false, leaving `title`
/// alone, without a keyword. A title may be empty.
bool FindTitle(const char* text, std::string& title);

/// Reads `file`, which was just opened, up to the title. Returns false if it is not a board
/// file or has no title, and leaves `title` alone then.
bool ReadBoardTitle(InputFile& file, std::string& title);

/// What a person sees of a board file.
struct BoardCommands {
    std::string Text;
    bool IsCut = false;
};

/// Reads `file`, which was just opened, and returns the titles, each from its keyword on,
/// and the general commands, every line with CR LF behind it. Of a file of more than a
/// megabyte only the first one counts, and an ellipsis follows.
BoardCommands ReadBoardCommands(InputFile& file);

/// Returns the bytes of a new board file. `commands` is the text as it was typed;
/// the lines of it that hold the title keyword are left out. The two selections are
/// the indexes chosen in the lists of port sizes and port modes.
std::string ComposeBoardFile(const std::string& title, const char* commands, int32_t portSizeSel,
                             int32_t portModeSel);

/// Copies line `number`, counted from 1, of `text` with its line feed into the
/// `size` bytes at `buffer`, always terminated; what does not fit is dropped.
/// Returns false, with the buffer left alone, if there is no such line. A text that
/// ends in a line feed has an empty line behind it.
bool GetTextLine(int32_t number, const char* text, char* buffer, size_t size);
