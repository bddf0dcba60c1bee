// BoardSelection: what the text of a board selection means.

#pragma once

#include <cstdint>

enum class BoardSelection : uint8_t {
    Unknown, // ORN_BOARD_UNKNOWN: nobody has chosen yet
    Empty,   // stored as ORN_BOARD_NONE; a list offers its default for it
    None,    // ORN_BOARD_NONE: no board file
    Startup, // ORN_BOARD_STARTUP: the debugger's startup macro does the work
    File,    // anything else: the path of a board file
};

/// Judges `text`, without regard to case.
BoardSelection KindOfBoard(const char* text);
